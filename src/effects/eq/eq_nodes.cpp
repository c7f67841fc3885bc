#include "effects/eq/eq_nodes.h"

#include <cmath>

#include "support/saturate.h"

namespace tervan {
namespace {

constexpr double kTenth = 0.1;  // gains and bandwidths are kept in tenths

std::int32_t Rounded(double value) { return SaturatingTruncate<std::int32_t>(std::round(value)); }

}  // namespace

void ShowBand(const EqBand& band, const EqFrequencyAxis& axis, ui::EqCurveNode& node) {
  node.x = axis.XOf(band.frequency);
  node.y = static_cast<float>(band.gain * kTenth);
  node.width = static_cast<float>(band.IsBand() ? band.bandwidth * kTenth : band.rolloff);
  node.mode = band.mode;
  node.enable = band.enable;
}

EqBand BandOf(const ui::EqCurveNode& node, const EqFrequencyAxis& axis) {
  EqBand band{.frequency = axis.FrequencyAt(node.x),
              .gain = Rounded(node.y * 10.0),
              .bandwidth = 0,
              .rolloff = 0,
              .mode = node.mode,
              .enable = node.enable};
  if (band.IsBand()) {
    band.bandwidth = Rounded(node.width * 10.0);
  } else {
    band.rolloff = Rounded(node.width);
  }
  return band;
}

}  // namespace tervan
