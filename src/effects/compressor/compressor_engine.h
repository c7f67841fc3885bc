// The compressor's signal path: stereo-linked, in place, in all sample formats.
#pragma once

#include <cstdint>

#include "effects/compressor/compressor_coefficients.h"
#include "effects/compressor/compressor_meters.h"
#include "effects/compressor/compressor_plain.h"
#include "effects/compressor/compressor_settings.h"
#include "effects/compressor/peak_levels.h"
#include "shell/automated_engine.h"

namespace tervan {

// What the engine asks of the filter that owns it. Each call takes the filter's lock for a copy.
class CompressorEngineOwner : public SettingsSource<CompressorSettings> {
 public:
  virtual void PublishMeters(const CompressorMeters& meters) = 0;  // of a chunk
  virtual void EndMeters() = 0;                                    // nothing more comes: idle from here on
  virtual bool IsWatched() const = 0;                              // a window is registered for notifications

 protected:
  ~CompressorEngineOwner() = default;
};

class CompressorEngine final : public AutomatedEngine<CompressorEngine, CompressorSettings, CompressorEngineOwner> {
 public:
  using AutomatedEngine::AutomatedEngine;

  // The detector starts anew.
  void SetFormat(const StreamFormat& format);

 private:
  friend class AutomatedEngine<CompressorEngine, CompressorSettings, CompressorEngineOwner>;

  // The detector starts anew in any case.
  void Design(const CompressorSettings& settings, ProcessMode mode);
  void RestartDetector();

  // 32-bit floats are metered only while the filter is watched.
  template <typename Codec>
  void Run(typename Codec::Sample* data, std::uint32_t frames);

  bool EndStream();

  template <typename Codec>
  void RunMetered(typename Codec::Sample* data, std::uint32_t frames, bool untouched);
  // The smallest gain, if kMetered.
  template <typename Codec, bool kSingle, bool kMetered>
  double RunFrames(typename Codec::Sample* data, std::uint32_t frames);
  template <typename Codec>
  compressor::PeakLevels LevelsOf(const typename Codec::Sample* data, std::uint32_t frames) const;
  void Publish(const compressor::PeakLevels& input, const compressor::PeakLevels& output, double least_gain);

  CompressorCoefficients coefficients_;
  compressor::State state_;
};

}  // namespace tervan
