// The Track Compressor as the shell sees it.
#pragma once

#include "effects/compressor/compressor_control.h"
#include "effects/compressor/compressor_engine.h"
#include "shell/effect.h"

namespace tervan {

extern const EffectTraits kCompressorTraits;

class CompressorEffect final : public Effect {
 public:
  // Starts from preset 0. May throw std::bad_alloc.
  explicit CompressorEffect(WindowPoster& poster);
  ~CompressorEffect() override;

  CompressorControl& compressor_control() { return control_; }

  const EffectTraits& traits() const override { return kCompressorTraits; }
  ControlState& control() override { return control_; }
  ParamManager* params() override { return &control_.params(); }
  void GetRecord(void* record) override { control_.GetSettings(static_cast<CompressorSettings*>(record)); }
  HRESULT SetRecord(const void* record) override {
    return control_.SetSettings(static_cast<const CompressorSettings*>(record));
  }
  void SetFormat(const StreamFormat& format) override;
  HRESULT Start() override;
  HRESULT Stop() override;
  bool FetchSettings() override { return control_.SnapshotSettings(&fetched_); }
  bool NeedsSettings() const override { return !engine_.loaded(); }
  HRESULT PushSettings(ProcessMode mode) override;
  HRESULT Process(SampleFormat format, ProcessMode mode, void* data, std::uint32_t* frames, bool stop) override;
  void AdvanceStreamTime(std::uint32_t frames) override;
  HRESULT SetParam(std::uint32_t index, float value) override;

 private:
  CompressorControl control_;
  CompressorEngine engine_{control_};
  CompressorSettings fetched_{};
  std::uint32_t sample_rate_hz_ = 0;
};

}  // namespace tervan
