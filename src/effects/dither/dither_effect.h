// The Dither as the shell sees it. It has no parameters: buffers are never cut, and settings change between them.
#pragma once

#include <cstdint>
#include <memory>

#include "effects/dither/dither_control.h"
#include "effects/dither/dither_engine.h"
#include "shell/effect.h"

namespace tervan {

extern const EffectTraits kDitherTraits;

class DitherEffect final : public Effect {
 public:
  // Starts from preset 0. clock seeds the noise.
  explicit DitherEffect(WindowPoster& poster, MillisecondClock clock = ModuleMilliseconds);

  DitherControl& settings_control() { return control_; }

  const EffectTraits& traits() const override { return kDitherTraits; }
  ControlState& control() override { return control_; }
  ParamManager* params() override { return nullptr; }
  void GetRecord(void* record) override { control_.GetSettings(static_cast<DitherSettings*>(record)); }
  HRESULT SetRecord(const void* record) override {
    return control_.SetSettings(static_cast<const DitherSettings*>(record));
  }
  void SetFormat(const StreamFormat& format) override { channels_ = format.nChannels; }

  // Makes the engine; E_OUTOFMEMORY.
  HRESULT Start() override;
  HRESULT Stop() override;

  bool FetchSettings() override { return control_.SnapshotSettings(&fetched_); }
  bool NeedsSettings() const override { return !is_configured_; }

  // Either mode starts a new noise and clears the feedback. E_OUTOFMEMORY while there is no engine.
  HRESULT PushSettings(ProcessMode mode) override;

  // kDiscontinuity configures anew when something has been processed since. stop: S_FALSE, nothing is touched.
  HRESULT Process(SampleFormat format, ProcessMode mode, void* data, std::uint32_t* frames, bool stop) override;

 private:
  DitherControl control_;
  const MillisecondClock clock_;
  std::unique_ptr<CLmDither> engine_;  // between start and stop
  DitherSettings fetched_{};
  std::uint32_t channels_ = 0;
  bool is_configured_ = false;
  bool has_processed_ = true;  // since the last reset
};

}  // namespace tervan
