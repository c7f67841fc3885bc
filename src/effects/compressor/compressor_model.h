// The compressor once more, written down formula by formula, without regard for speed. Tests hold the engine against
// it.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <type_traits>

#include "effects/compressor/compressor_meters.h"
#include "effects/compressor/compressor_settings.h"
#include "testing/sample_model.h"

namespace tervan::testing {

// What a meter shows for a sample.
inline double LevelOf(std::uint8_t sample) { return std::abs(sample - 128) / 128.0; }
inline double LevelOf(std::int16_t sample) { return (sample == -32768 ? 32767 : std::abs(sample)) / 32768.0; }
inline double LevelOf(std::int32_t sample) { return std::fabs(static_cast<double>(sample)) / 2147483648.0; }
inline double LevelOf(float sample) { return static_cast<double>(std::fabs(sample)); }
inline double LevelOf(double sample) { return std::fabs(sample); }

class CompressorModel {
 public:
  CompressorModel(std::uint32_t rate_hz, std::size_t channels, bool single_precision_hold = false)
      : fs_(rate_hz), channels_(channels), single_(single_precision_hold) {}

  void Load(const CompressorSettings& p, bool keep_state) {
    const double in_db = static_cast<double>(p.input_gain_db);
    const double out_db = static_cast<double>(p.output_gain_db);
    const double thr_db = static_cast<double>(p.threshold_db);
    const double amount = static_cast<double>(p.amount);
    bypass_ = p.bypass != 0;
    in_gain_ = in_db > -60.0 ? std::pow(10.0, in_db * static_cast<double>(0.05f)) : 0.0;
    meter_in_gain_ = in_gain_;
    out_gain_ = out_db > -60.0 ? std::pow(10.0, out_db * static_cast<double>(0.05f)) : 0.0;
    double thr = thr_db > -60.0 ? std::pow(10.0, thr_db * 0.05) : 0.001;
    hold_ = 0.0;
    if (thr_db > -3.0) {
      const double k = std::pow(10.0, (-3.0 - thr_db) * 0.05);
      in_gain_ = in_gain_ * k;
      thr = thr * k;
      out_gain_ = out_gain_ / k;
    }
    double full_scale_gain = thr;
    double slope = 1.0;
    if (amount < 50.0) {
      full_scale_gain = std::pow(thr, 1.0 - 1.0 / amount);
      slope = (1.0 - full_scale_gain) / (1.0 - thr);
    }
    unity_ = amount == 1.0 && in_db == 0.0 && out_db == 0.0;
    if (p.auto_gain_compensation) out_gain_ = out_gain_ / std::pow(10.0, 0.7 * std::log10(full_scale_gain));
    const double attack_ms = static_cast<double>(p.attack_time_ms);
    const double release_ms = static_cast<double>(p.release_time_ms);
    attack_ = Coefficient(std::trunc(fs_ * attack_ms * 0.001));
    release_ = Coefficient(std::trunc(fs_ * release_ms * 0.001));
    if (!keep_state) gain_ = out_gain_;
    if (in_gain_ == 0.0) {
      in_gain_ = 1e-9;
      out_gain_ = 0.0;
    }
    reduction_ = 1.0;
    hold_single_ = 0.0f;
    numer_ = thr * out_gain_ * slope;
    offset_ = (1.0 - slope) * out_gain_ * in_gain_;
    thr_in_ = thr / in_gain_;
    gain_below_ = out_gain_ * in_gain_;
    if (!keep_state) lp_state_ = 0.5;
    smooth_ = p.smooth_saturation != 0;
    if (smooth_) {
      attack_ = Coefficient(std::trunc(attack_ms * 0.0001 * fs_));
      release_ = Coefficient(std::trunc(release_ms * 0.0001 * fs_));
    } else if (attack_ms == 0.0) {
      attack_ = Coefficient(std::trunc(fs_ * 0.001));
    }
    vf_state_ = 0.0;
  }

  // One frame in place.
  void Frame(double* x) {
    double p = 0.0;
    for (std::size_t c = 0; c < channels_; ++c) p = std::fmax(p, std::fabs(x[c]));
    const double t = single_ ? TargetSingle(Filled(p)) : Target(Filled(p));
    if (t < gain_) {
      gain_ = attack_ * gain_ + (1.0 - attack_) * t;
    } else {
      gain_ = release_ * gain_ + (1.0 - release_) * t;
    }
    if (smooth_) {
      if (std::fabs(lp_state_) < std::ldexp(1.0, -32)) lp_state_ = 0.0;
      const double y = 0.014048380811045 * gain_ + 0.97190323837791 * lp_state_;
      gain_ = y + lp_state_;
      lp_state_ = y;
    }
    if (gain_ < std::ldexp(1.0, -1022)) gain_ = 0.0;
    for (std::size_t c = 0; c < channels_; ++c) x[c] *= gain_;
  }

  // A chunk in place, and its meter record.
  template <typename Sample>
  CompressorMeters Process(Sample* data, std::size_t frames) {
    CompressorMeters meters{};
    meters.input_left = Peak(data, frames, 0) * meter_in_gain_;
    meters.input_right = Peak(data, frames, channels_ - 1) * meter_in_gain_;
    double min_gain = 1e6;
    const bool untouched = bypass_ || (std::is_same_v<Sample, float> && unity_);
    for (std::size_t i = 0; i < frames && !untouched; ++i) {
      double x[2] = {};
      for (std::size_t c = 0; c < channels_; ++c) x[c] = ToReal(data[i * channels_ + c]);
      Frame(x);
      for (std::size_t c = 0; c < channels_; ++c) FromReal(x[c], data[i * channels_ + c]);
      min_gain = std::fmin(min_gain, gain_ / in_gain_);
    }
    meters.reduction = untouched || out_gain_ == 0.0 ? 1.0 : min_gain / out_gain_;
    meters.output_left = Peak(data, frames, 0);
    meters.output_right = Peak(data, frames, channels_ - 1);
    return meters;
  }

 private:
  static double Coefficient(double count) { return count > 0.0 ? std::pow(0.1, 1.0 / count) : 0.0; }

  template <typename Sample>
  double Peak(const Sample* data, std::size_t frames, std::size_t channel) const {
    double peak = 0.0;
    for (std::size_t i = 0; i < frames; ++i) peak = std::fmax(peak, LevelOf(data[i * channels_ + channel]));
    return peak;
  }

  double Filled(double p) {
    if (std::fabs(vf_state_) < std::ldexp(1.0, -32)) vf_state_ = 0.0;
    const double v = 0.99290146137413 * vf_state_ + -0.99645073068706 * p;
    const double d = v - vf_state_;
    vf_state_ = v;
    return d > 0.0 ? p + d : p;
  }

  double Target(double level) {
    if (level > hold_) {
      hold_ = level;
      if (!(level > thr_in_)) return gain_below_;
      reduction_ = numer_ / level;
      hold_ = 0.999 * level;
    } else {
      if (!(hold_ > thr_in_)) return gain_below_;
      reduction_ = reduction_ * (1.0 / 0.999);
      hold_ = 0.999 * hold_;
    }
    return reduction_ + offset_;
  }

  // Level, hold and threshold in single precision.
  double TargetSingle(double level_double) {
    const auto level = static_cast<float>(level_double);
    const auto threshold = static_cast<float>(thr_in_);
    if (level > hold_single_) {
      hold_single_ = level;
      if (!(level > threshold)) return gain_below_;
      reduction_ = numer_ / static_cast<double>(hold_single_);
      hold_single_ = 0.999f * level;
    } else {
      if (!(hold_single_ > threshold)) return gain_below_;
      reduction_ = reduction_ * (1.0 / 0.999);
      hold_single_ = 0.999f * hold_single_;
    }
    return reduction_ + offset_;
  }

  const double fs_;
  const std::size_t channels_;
  const bool single_;
  bool bypass_ = false, unity_ = false, smooth_ = false;
  double in_gain_ = 0.0, meter_in_gain_ = 0.0, out_gain_ = 0.0, attack_ = 0.0, release_ = 0.0;
  double numer_ = 0.0, offset_ = 0.0, thr_in_ = 0.0, gain_below_ = 0.0;
  double gain_ = 0.0, hold_ = 0.0, reduction_ = 0.0, vf_state_ = 0.0, lp_state_ = 0.0;
  float hold_single_ = 0.0f;
};

}  // namespace tervan::testing
