// The compressor frame by frame, in separate steps: level detector with valley fill, gain computer with peak hold, gain
// smoothing, metering. What the fast routine must equal in every bit.
//
// Per frame, with the level p = max |x| over its channels:
//
//   valley fill     v = b v' + a p;  d = v - v';  L = p + max(d, 0)
//   gain computer   t = r + offset while the held level is above the threshold, where r = numerator / level,
//                   t = gain_below otherwise
//   smoothing       g = k g' + (1 - k) t,  k the attack's or the release's coefficient
//   low-pass        y = A g + B y';  g = y + y'                              ("smooth saturation" only)
//   output          x g
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <type_traits>

#include "effects/compressor/compressor_coefficients.h"
#include "effects/dynamics/frame_level.h"
#include "shell/sample_codec.h"

namespace tervan::compressor {

// First-order bilinear high-pass, 50 Hz at 44100 Hz, used at every rate.
inline constexpr dynamics::ValleyFilter kValleyFilter{.in = -0.99645073068706, .feedback = 0.99290146137413};

inline constexpr double kHoldDecay = 0.999;  // of the held level, per frame
inline constexpr double kHoldGrowth = 1.0 / kHoldDecay;
inline constexpr float kHoldDecaySingle = 0.999f;

// A gain that fades to silence ends at 0: subnormals would make every frame several times as expensive.
inline constexpr double kLeastGain = std::numeric_limits<double>::min();

// What the loop carries from frame to frame.
struct State {
  double gain = 0.0;       // applied to the last frame
  double hold = 0.0;       // decaying peak hold of the level
  double reduction = 0.0;  // numerator / the level in force
  double valley = 0.0;
  double low_pass = 0.0;
  float hold_single = 0.0f;  // the hold of the single-precision path
};

// Target gain for a level. Level and Hold are double, or float for the single-precision path.
template <typename Level>
inline double TargetGain(const CompressorCoefficients& c, Level level, Level threshold, Level decay, Level& hold,
                         double& reduction) noexcept {
  if (level > hold) {
    hold = level;
    if (!(level > threshold)) return c.gain_below;
    reduction = c.numerator / static_cast<double>(level);
    hold = decay * level;
    return reduction + c.offset;
  }
  if (!(hold > threshold)) return c.gain_below;
  reduction *= kHoldGrowth;
  hold *= decay;
  return reduction + c.offset;
}

inline double SmoothedGain(const CompressorCoefficients& c, double gain, double target, double& low_pass) noexcept {
  gain =
      target < gain ? c.attack * gain + c.attack_complement * target : c.release * gain + c.release_complement * target;
  if (c.smooth) gain = dynamics::LowPassed(gain, low_pass);
  if (gain < kLeastGain) [[unlikely]]
    gain = 0.0;
  return gain;
}

// The lowest 16-bit integer counts as if it were the opposite of the highest.
inline constexpr double kHighestLevel16 = 32767.0 / 32768.0;

// The magnitude that a meter shows for a sample, full scale 1.0. Samples that are not finite do not count.
template <typename Codec>
double MeterLevel(typename Codec::Sample sample) noexcept {
  const double level = std::fabs(Codec::Decode(sample));
  if constexpr (std::is_same_v<Codec, Pcm16Codec>) return std::min(level, kHighestLevel16);
  return level <= dynamics::kLevelLimit<typename Codec::Sample> ? level : 0.0;
}

// Of no frames.
inline constexpr double kNoGainYet = std::numeric_limits<double>::infinity();

// Metering of the loop: peaks of channels 0 and 1 before and after, and the smallest gain.
struct PeakMeter {
  double input[2] = {0.0, 0.0};
  double output[2] = {0.0, 0.0};
  double least_gain = kNoGainYet;

  template <typename Codec>
  void In(std::size_t channel, typename Codec::Sample sample) noexcept {
    input[channel] = std::max(input[channel], MeterLevel<Codec>(sample));
  }
  template <typename Codec>
  void Out(std::size_t channel, typename Codec::Sample sample) noexcept {
    output[channel] = std::max(output[channel], MeterLevel<Codec>(sample));
  }
  void Gain(double gain) noexcept { least_gain = std::min(least_gain, gain); }
};

struct LeastGainMeter {
  double least_gain = kNoGainYet;

  template <typename Codec>
  void In(std::size_t, typename Codec::Sample) noexcept {}
  template <typename Codec>
  void Out(std::size_t, typename Codec::Sample) noexcept {}
  void Gain(double gain) noexcept { least_gain = std::min(least_gain, gain); }
};

// frames × kChannels interleaved samples, in place. The state lives in locals meanwhile.
// kSingle: level, hold and threshold in single precision, which is allowed to differ in the last bits.
template <typename Codec, std::size_t kChannels, bool kSingle, typename Meter>
void RunPlain(const CompressorCoefficients& coefficients, State& state, typename Codec::Sample* samples,
              std::uint32_t frames, Meter& meter_out) noexcept {
  const CompressorCoefficients c = coefficients;
  const auto threshold_single = static_cast<float>(c.threshold_in);
  State s = state;
  Meter meter = meter_out;
  for (std::uint32_t frame = 0; frame < frames; ++frame, samples += kChannels) {
    double x[kChannels];
    for (std::size_t channel = 0; channel < kChannels; ++channel) meter.template In<Codec>(channel, samples[channel]);
    const double peak = dynamics::DecodeFrame<Codec>(samples, x);
    const double level = dynamics::FilledLevel(kValleyFilter, peak, s.valley);
    double target;
    if constexpr (kSingle) {
      target = TargetGain(c, static_cast<float>(level), threshold_single, kHoldDecaySingle, s.hold_single, s.reduction);
    } else {
      target = TargetGain(c, level, c.threshold_in, kHoldDecay, s.hold, s.reduction);
    }
    s.gain = SmoothedGain(c, s.gain, target, s.low_pass);
    meter.Gain(s.gain);

    for (std::size_t channel = 0; channel < kChannels; ++channel) {
      samples[channel] = Codec::Encode(x[channel] * s.gain);
      meter.template Out<Codec>(channel, samples[channel]);
    }
  }
  state = s;
  meter_out = meter;
}

}  // namespace tervan::compressor
