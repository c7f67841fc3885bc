// Peak and RMS level of everything that passes, over all channels together.
#pragma once

#include <cstddef>
#include <cstdint>

#include "host/audio_format.h"

namespace tervan::host {

class LevelMeter {
 public:
  // Samples that are not finite count as silence.
  void Add(SampleType type, const void* data, size_t samples);

  // dBFS: a square wave of full scale has peak 0 and RMS 0. Minus infinity for silence.
  double PeakDb() const;
  double RmsDb() const;

 private:
  double peak_ = 0.0;  // linear
  double square_sum_ = 0.0;
  std::uint64_t samples_ = 0;
};

// 20 log10 of a linear factor.
double ToDecibels(double gain);

}  // namespace tervan::host
