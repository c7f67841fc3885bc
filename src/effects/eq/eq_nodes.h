// A band of the EQ as a node of its graph.
#pragma once

#include <cstdint>

#include "effects/eq/eq_frequency_axis.h"
#include "ui/controls/eq_curve.h"

namespace tervan {

// One band's settings, in the units of EqSettings.
struct EqBand {
  std::int32_t frequency;
  std::int32_t gain;
  std::int32_t bandwidth;
  std::int32_t rolloff;
  std::int32_t mode;
  std::int32_t enable;
  bool operator==(const EqBand&) const = default;

  bool IsBand() const { return mode == ui::kBandNode; }  // else a shelf: rolloff instead of bandwidth
};

// What the node shows of the band; whether it is selected stays as it is.
void ShowBand(const EqBand& band, const EqFrequencyAxis& axis, ui::EqCurveNode& node);

// The way back, rounded half away from zero. Of bandwidth and rolloff the one that the mode does not use is 0.
EqBand BandOf(const ui::EqCurveNode& node, const EqFrequencyAxis& axis);

}  // namespace tervan
