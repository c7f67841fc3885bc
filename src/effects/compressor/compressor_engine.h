// The compressor's signal path: stereo-linked, in place, in all sample formats. Streaming thread only; no allocation,
// no lock of its own.
#pragma once

#include <cstdint>

#include "effects/compressor/compressor_coefficients.h"
#include "effects/compressor/compressor_kernel.h"
#include "effects/compressor/compressor_meters.h"
#include "effects/compressor/compressor_settings.h"
#include "shell/effect.h"
#include "shell/record_control.h"
#include "shell/stream_format.h"
#include "support/result.h"

namespace tervan {

// What the engine asks of the filter that owns it. Each call takes the filter's lock for a copy.
class CompressorEngineOwner : public SettingsSource<CompressorSettings> {
 public:
  virtual void PublishMeters(const CompressorMeters& meters) = 0;
  virtual bool IsWatched() const = 0;  // a window is registered for notifications

 protected:
  ~CompressorEngineOwner() = default;
};

class CompressorEngine {
 public:
  explicit CompressorEngine(CompressorEngineOwner& owner) : owner_(owner) {}

  // Another rate than before asks for new settings.
  void SetFormat(const StreamFormat& format);

  // Loads the settings with a reset.
  void Start() { LoadSnapshot(ProcessMode::kDiscontinuity, true); }

  bool loaded() const { return loaded_; }

  // Derives the coefficients. keep_state kDiscontinuity: gain and low-pass start anew; the detector does in any case.
  void LoadParameters(const CompressorSettings& settings, ProcessMode keep_state);

  // *frames interleaved frames in place, with the format's channel count. In kDrain mode nothing is touched: S_FALSE
  // and no frames.
  HRESULT ProcessPcm8(ProcessMode mode, std::uint8_t* data, std::uint32_t* frames);
  HRESULT ProcessPcm16(ProcessMode mode, std::int16_t* data, std::uint32_t* frames);
  HRESULT ProcessPcm32(ProcessMode mode, std::int32_t* data, std::uint32_t* frames);
  HRESULT ProcessFloat64(ProcessMode mode, double* data, std::uint32_t* frames);

  // Meters only while the filter is watched. stop: publishes the idle record, asks for new settings, S_FALSE and no
  // frames.
  HRESULT ProcessFloat32(ProcessMode mode, float* data, std::uint32_t* frames, bool stop);

 private:
  template <typename Codec>
  HRESULT ProcessSnapshot(ProcessMode mode, typename Codec::Sample* data, std::uint32_t* frames);
  template <typename Codec>
  void ProcessMetered(typename Codec::Sample* data, std::uint32_t frames, bool untouched);
  template <typename Codec, bool kSingle, typename Meter>
  void Run(typename Codec::Sample* data, std::uint32_t frames, Meter& meter);
  void Publish(const compressor::PeakMeter& meter);
  void LoadSnapshot(ProcessMode mode, bool always);

  CompressorEngineOwner& owner_;
  StreamFormat format_{};
  CompressorCoefficients coefficients_;
  compressor::State state_;
  bool loaded_ = false;
};

}  // namespace tervan
