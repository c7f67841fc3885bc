// A repeatable signal with what programme material has: decaying bursts, a noise floor, steady tones, clipping, digital
// silence.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <random>
#include <type_traits>
#include <vector>

namespace tervan::testing {

// One sample of a kind of material, n frames after its begin. noise: -1..1.
inline double ProgrammeSample(std::size_t kind, std::size_t n, double noise) {
  const double t = static_cast<double>(n);
  switch (kind % 5) {
    case 0: return 0.99 * std::exp(-t / 250.0) * std::sin(0.11 * t);
    case 1: return 1e-4 * noise;
    case 2: return 0.5 * std::sin(0.057 * t);
    case 3: return 0.0;
  }
  return std::clamp(2.0 * std::sin(0.013 * t) + 0.3 * noise, -1.0, 1.0);
}

// frames × channels interleaved samples, -1..1. The kind of material changes every part_frames frames; channel 1 is
// quieter.
inline std::vector<double> Programme(std::size_t frames, std::size_t channels, std::size_t part_frames,
                                     std::uint32_t seed) {
  std::mt19937 random(seed);
  const auto noise = [&random] { return static_cast<double>(random()) * 0x1p-31 - 1.0; };
  std::vector<double> signal(frames * channels);
  for (std::size_t i = 0; i < signal.size(); ++i) {
    const std::size_t frame = i / channels;
    const std::size_t channel = i % channels;
    const double gain = channel == 0 ? 1.0 : 0.7;
    signal[i] = gain * ProgrammeSample(frame / part_frames + seed, frame % part_frames + 3 * channel, noise());
  }
  return signal;
}

template <typename Sample>
std::vector<Sample> SamplesOf(const std::vector<double>& signal) {
  std::vector<Sample> samples(signal.size());
  std::transform(signal.begin(), signal.end(), samples.begin(), [](double x) {
    if constexpr (std::is_floating_point_v<Sample>) {
      return static_cast<Sample>(x);
    } else {
      constexpr double kHigh = std::is_signed_v<Sample> ? std::numeric_limits<Sample>::max() : 127.0;
      constexpr double kZero = std::is_signed_v<Sample> ? 0.0 : 128.0;
      return static_cast<Sample>(std::round(x * kHigh) + kZero);
    }
  });
  return samples;
}

}  // namespace tervan::testing
