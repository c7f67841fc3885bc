// What the compressor's tests share: an owner for the engine that keeps what it is told, settings, and runs over whole
// signals.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <random>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "effects/compressor/compressor_engine.h"
#include "testing/engine_rig.h"

namespace tervan::testing {

struct FakeOwner : FakeSource<CompressorSettings, CompressorEngineOwner> {
  FakeOwner() { settings = {0, 0, 0, 1, 15, 250, 1, 0, 0, 0}; }
  void PublishMeters(const CompressorMeters& meters) override { published.push_back(meters); }
  bool IsWatched() const override { return watched; }

  bool watched = false;
  std::vector<CompressorMeters> published;
};

// An engine at the start of a stream, and its owner.
struct StartedCompressor : FakeOwner {
  StartedCompressor(const CompressorSettings& with, std::size_t channels, std::uint32_t rate_hz,
                    bool is_watched = false) {
    settings = with;
    watched = is_watched;
    engine.SetFormat(FormatOf(channels, rate_hz));
    engine.Start();
  }
  CompressorEngine engine{*this};
};

// The engine with one set of settings over a whole signal.
template <typename Sample>
std::vector<Sample> Compressed(const CompressorSettings& settings, std::vector<Sample> data, std::size_t channels,
                               std::uint32_t rate_hz = 44100, bool watched = false) {
  StartedCompressor started(settings, channels, rate_hz, watched);
  RunAll(started.engine, data, channels);
  return data;
}

// Settings as records may hold them: mostly in range, often on a boundary, sometimes far outside.
class RandomSettings {
 public:
  explicit RandomSettings(std::uint32_t seed) : random_(seed) {}

  CompressorSettings Next() {
    const float above_silence = std::nextafter(-60.0f, 0.0f);
    return {
        .input_gain_db = Pick({-60.0f, -61.0f, above_silence, 0.0f, 25.0f}, -70.0f, 40.0f),
        .output_gain_db = Pick({-60.0f, -61.0f, above_silence, 0.0f, 25.0f}, -70.0f, 40.0f),
        .threshold_db = Pick({-60.0f, -80.0f, above_silence, -3.0f, std::nextafter(-3.0f, 0.0f), 0.0f}, -70.0f, 20.0f),
        .amount = Pick({1.0f, std::nextafter(1.0f, 2.0f), std::nextafter(50.0f, 0.0f), 50.0f, 80.0f}, 1.0f, 20.0f),
        .attack_time_ms = Pick({0.0f, 0.01f, 1.0f, 500.0f, -1.0f, 9000.0f}, 0.0f, 60.0f),
        .release_time_ms = Pick({0.0f, 0.01f, 5000.0f, -1.0f, 90000.0f}, 0.0f, 300.0f),
        .auto_gain_compensation = Chance(2),
        .smooth_saturation = Chance(2),
        .reserved = 0,
        .bypass = Chance(12)};
  }

 private:
  std::int32_t Chance(std::uint32_t one_in) { return random_() % one_in == 0 ? 1 : 0; }
  float Pick(std::initializer_list<float> boundaries, float low, float high) {
    if (Chance(3)) return boundaries.begin()[random_() % boundaries.size()];
    return low + (high - low) * static_cast<float>(static_cast<double>(random_()) * 0x1p-32);
  }
  std::mt19937 random_;
};

// {in dB, out dB, threshold dB, amount, attack ms, release ms, auto gain, smooth, reserved, bypass}
inline constexpr CompressorSettings kHeavy{3, 2, -30, 4, 5, 60, 1, 0, 0, 0};
inline constexpr CompressorSettings kHeavySmooth{3, 2, -30, 4, 5, 60, 1, 1, 0, 0};

inline std::string Text(const CompressorSettings& s) {
  const double values[] = {s.input_gain_db, s.output_gain_db, s.threshold_db,
                           s.amount,        s.attack_time_ms, s.release_time_ms};
  std::string text;
  for (const double value : values) text += std::to_string(value) + " ";
  for (const std::int32_t value : {s.auto_gain_compensation, s.smooth_saturation, s.bypass})
    text += std::to_string(value);
  return text;
}

}  // namespace tervan::testing
