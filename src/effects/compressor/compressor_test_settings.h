// Settings for randomised tests of the compressor.
#pragma once

#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

#include "effects/compressor/compressor_settings.h"

namespace tervan::testing {

// The presets, and settings as records may hold them: mostly in range, often on a boundary, sometimes far outside.
inline std::vector<CompressorSettings> ManySettings() {
  std::vector<CompressorSettings> all;
  std::mt19937 random(1);
  const auto chance = [&random](std::uint32_t one_in) { return random() % one_in == 0 ? 1 : 0; };
  const auto pick = [&](std::vector<float> boundaries, float low, float high) {
    if (chance(3)) return boundaries[random() % boundaries.size()];
    return low + (high - low) * static_cast<float>(static_cast<double>(random()) * 0x1p-32);
  };
  const float above_silence = std::nextafter(-60.0f, 0.0f);
  for (const auto& preset : compressor::kPresets) all.push_back(preset.settings);
  while (all.size() < 300) {
    all.push_back(
        {.input_gain_db = pick({-60.0f, -61.0f, above_silence, 0.0f, 25.0f}, -70.0f, 40.0f),
         .output_gain_db = pick({-60.0f, -61.0f, above_silence, 0.0f, 200.0f}, -70.0f, 40.0f),
         .threshold_db = pick({-60.0f, -80.0f, above_silence, -3.0f, std::nextafter(-3.0f, 0.0f), 0.0f}, -70.0f, 20.0f),
         .amount = pick({1.0f, std::nextafter(1.0f, 2.0f), std::nextafter(50.0f, 0.0f), 50.0f, 80.0f}, 1.0f, 20.0f),
         .attack_time_ms = pick({0.0f, 0.01f, 72.5f, 500.0f, -1.0f, 9000.0f}, 0.0f, 60.0f),
         .release_time_ms = pick({0.0f, 0.01f, 145.0f, -1.0f, 90000.0f}, 0.0f, 300.0f),
         .auto_gain_compensation = chance(2),
         .smooth_saturation = chance(2),
         .reserved = 0,
         .bypass = 2 * chance(12)});
  }
  return all;
}

}  // namespace tervan::testing
