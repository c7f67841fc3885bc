// The gate once more, written down formula by formula, without regard for speed. Tests hold the engine against it.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <set>
#include <string>

#include "effects/gate/gate_settings.h"
#include "testing/sample_model.h"

namespace tervan::testing {

class GateModel {
 public:
  GateModel(std::uint32_t rate_hz, std::size_t channels) : fs_(rate_hz), channels_(channels) {}

  void Start(const GateSettings& p) {
    Load(p, false);
    window_length_ = std::max<std::int64_t>(1, static_cast<std::int64_t>(fs_ * 0.02));
    hold_length_ = static_cast<std::int64_t>(fs_ * 0.004);
    window_counter_ = 0;
  }

  void Load(const GateSettings& p, bool keep_state) {
    bypass_ = p.bypass != 0 || p.threshold_tenth_db <= -800;
    open_ = std::pow(10.0, p.threshold_tenth_db * 0.005);
    close_ = open_ * 0.85;
    attack_ = std::fmax(0.0, std::trunc(p.attack_ms * 0.001 * fs_));
    release_ = std::fmax(0.0, std::trunc(p.release_ms * 0.001 * fs_));
    if (keep_state) return;
    state_ = 'C';
    ramp_ = vf_ = 0.0;
    lp_ = 0.5;
    hold_counter_ = 0;
  }

  template <typename Sample>
  void Process(Sample* data, std::size_t frames) {
    for (std::size_t i = 0; i < frames && !bypass_; ++i, data += channels_) {
      double p = 0.0;
      for (std::size_t c = 0; c < channels_; ++c) p = std::fmax(p, std::fabs(ToReal(data[c])));
      const double gain = Smooth(MachineGain(WindowPeak(Filled(p))));
      for (std::size_t c = 0; c < channels_; ++c) FromReal(ToReal(data[c]) * gain, data[c]);
    }
  }

  std::set<std::string> transitions;  // "OH": from open to hold

 private:
  static double Flush(double state) { return std::fabs(state) < std::ldexp(1.0, -32) ? 0.0 : state; }

  double Filled(double p) {
    vf_ = Flush(vf_);
    const double v = -0.99786741651855 * p + 0.99573483303711 * vf_;
    const double d = v - vf_;
    vf_ = v;
    return d > 0.0 ? p + d : p;
  }

  double WindowPeak(double level) {
    if (window_counter_ % window_length_ == 0) window_peak_ = 0.0;
    ++window_counter_;
    return window_peak_ = std::fmax(window_peak_, level);
  }

  double Smooth(double gain) {
    lp_ = Flush(lp_);
    const double y = 0.014048380811045 * gain + 0.97190323837791 * lp_;
    const double smoothed = y + lp_;
    lp_ = y;
    return smoothed;
  }

  void Go(char state) {
    transitions.insert({state_, state});
    state_ = state;
  }

  // C closed, A attack, O open, H hold, R release
  double MachineGain(double w) {
    double gain = state_ == 'C' ? 0.0 : 1.0;
    if (state_ == 'C') {
      if (w >= open_) ramp_ = 0.0, Go('A');
    } else if (state_ == 'A' && ramp_ < attack_) {
      gain = ramp_++ / attack_;
    } else if (state_ == 'A') {
      ramp_ = 0.0;
      Go(w >= open_ ? 'O' : 'H');
    } else if (state_ == 'O') {
      if (w < close_) Go('H');
    } else if (state_ == 'H') {
      hold_counter_ = w >= close_ ? 0 : hold_counter_ + 1;
      if (hold_counter_ > hold_length_) hold_counter_ = 0, Go('R');
    } else if (ramp_ < release_) {
      gain = (release_ - ramp_++) / release_;
      if (w >= open_) ramp_ = gain * attack_, Go('A');  // from the gain where the release was
    } else {
      gain = ramp_ = 0.0;
      Go('C');
    }
    return gain;
  }

  const double fs_;
  const std::size_t channels_;
  bool bypass_ = false;
  double open_ = 0.0, close_ = 0.0, attack_ = 0.0, release_ = 0.0;
  std::int64_t window_length_ = 1, window_counter_ = 0, hold_length_ = 0, hold_counter_ = 0;
  double window_peak_ = 0.0, ramp_ = 0.0, vf_ = 0.0, lp_ = 0.0;
  char state_ = 'C';
};

}  // namespace tervan::testing
