#include "effects/compressor/compressor_coefficients.h"

#include <algorithm>
#include <cmath>

namespace tervan {
namespace {

constexpr double kSilenceDb = -60.0;       // the lowest gain setting: silence
constexpr double kLowestThreshold = 1e-3;  // of the lowest threshold setting, exactly
constexpr double kHighestWorkingThresholdDb = -3.0;
constexpr double kInGainOfSilence = 1e-9;  // keeps the raw threshold finite
constexpr double kMakeUpShare = 0.7;
constexpr double kMinimumAttackS = 0.001;
constexpr double kSecondsPerMs = 0.001;
constexpr double kSmoothSecondsPerMs = 0.0001;  // ten times faster: the low-pass adds its own time

// The gains' factor is a 32-bit constant, the threshold's a 64-bit one.
constexpr double kGainDbFactor = static_cast<double>(0.05f);
constexpr double kDbFactor = 0.05;

// Stored records may hold anything. Far beyond every setting, and still finite in all that follows.
constexpr double kSafeDb = 200.0;

double SafeDb(float db) { return std::isnan(db) ? 0.0 : std::min(static_cast<double>(db), kSafeDb); }
double SafeAmount(float amount) { return amount >= 1.0f ? std::min(amount, kAmountInfinite) : 1.0; }
double SafeMs(float ms) { return std::isnan(ms) ? 0.0 : static_cast<double>(ms); }

double GainOf(double db) { return db > kSilenceDb ? std::pow(10.0, db * kGainDbFactor) : 0.0; }

// Covers 90 % of a step in that many frames.
double CoefficientOf(double frames) {
  const double whole = std::trunc(frames);
  return whole > 0.0 ? std::pow(0.1, 1.0 / whole) : 0.0;
}

void DesignTimes(const CompressorSettings& settings, double rate_hz, CompressorCoefficients& c) {
  const double attack_ms = SafeMs(settings.attack_time_ms);
  const double release_ms = SafeMs(settings.release_time_ms);
  if (c.smooth) {
    c.attack = CoefficientOf(attack_ms * kSmoothSecondsPerMs * rate_hz);
    c.release = CoefficientOf(release_ms * kSmoothSecondsPerMs * rate_hz);
  } else {
    c.attack = CoefficientOf(attack_ms == 0.0 ? rate_hz * kMinimumAttackS : rate_hz * attack_ms * kSecondsPerMs);
    c.release = CoefficientOf(rate_hz * release_ms * kSecondsPerMs);
  }
  c.attack_complement = 1.0 - c.attack;
  c.release_complement = 1.0 - c.release;
}

}  // namespace

CompressorCoefficients DesignCompressor(const CompressorSettings& settings, std::uint32_t sample_rate_hz) {
  CompressorCoefficients c;
  c.bypass = settings.bypass != 0;
  c.smooth = settings.smooth_saturation != 0;
  c.unity = settings.amount == 1.0f && settings.input_gain_db == 0.0f && settings.output_gain_db == 0.0f;

  const double threshold_db = SafeDb(settings.threshold_db);
  c.in_gain = c.meter_in_gain = GainOf(SafeDb(settings.input_gain_db));
  c.out_gain = GainOf(SafeDb(settings.output_gain_db));
  double threshold = threshold_db > kSilenceDb ? std::pow(10.0, threshold_db * kDbFactor) : kLowestThreshold;

  // A higher threshold is realised by attenuating the input, compressing at -3 dB and restoring the level behind,
  // so that 1 - threshold stays away from 0.
  if (threshold_db > kHighestWorkingThresholdDb) {
    const double pad = std::pow(10.0, (kHighestWorkingThresholdDb - threshold_db) * kDbFactor);
    c.in_gain *= pad;
    threshold *= pad;
    c.out_gain /= pad;
  }

  const double amount = SafeAmount(settings.amount);
  const bool infinite = amount >= static_cast<double>(kAmountInfinite);
  const double full_scale_gain = infinite ? threshold : std::pow(threshold, 1.0 - 1.0 / amount);
  const double slope = infinite ? 1.0 : (1.0 - full_scale_gain) / (1.0 - threshold);
  if (settings.auto_gain_compensation) c.out_gain /= std::pow(10.0, kMakeUpShare * std::log10(full_scale_gain));

  c.start_gain = c.out_gain;
  if (c.in_gain == 0.0) {
    c.in_gain = kInGainOfSilence;
    c.out_gain = 0.0;
  }
  c.numerator = threshold * c.out_gain * slope;
  c.offset = (1.0 - slope) * c.out_gain * c.in_gain;
  c.threshold_in = threshold / c.in_gain;
  c.gain_below = c.out_gain * c.in_gain;
  DesignTimes(settings, sample_rate_hz, c);
  return c;
}

}  // namespace tervan
