#include "effects/eq/eq_design.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
#include <numbers>

namespace tervan {
namespace {

constexpr double kFullCut_db = -15.0;  // and below: minus infinity
constexpr double kMostGain_db = 100.0;

constexpr std::int32_t kLeastFrequency_hz = 1;
constexpr double kLeastFrequency = 1e-6;
constexpr double kMostFrequency = 0.5;
constexpr double kMostCorner = 0.4999;       // of a shelf, after the correction of its cascade
constexpr double kMostUpperEdge = 0.49;      // of a band
constexpr std::int32_t kLeastBandwidth = 1;  // tenths of an octave
constexpr std::int32_t kMostBandwidth = 200;

// A cascade reaches 1.25 times the set gain at the far end of the shelf.
constexpr double kStageShare = static_cast<double>(0.8f);

// By how much the corner of a cascade lies off that of its stages. Column: 2, 3, 4 stages.
constexpr double kRowSpacing = 0.125;
constexpr double kCornerCorrection[][kEqMaxStages - 1] = {
    {1.67, 2.035, 2.385},      // f = 0
    {1.4944, 1.7751, 1.9735},  // 0.125
    {1.2882, 1.4132, 1.4891},  // 0.25
    {1.1176, 1.1609, 1.1854},  // 0.375
    {1.0, 1.0, 1.0},           // 0.5
};
constexpr std::size_t kLastRow = std::size(kCornerCorrection) - 1;

// The offset into a row is not scaled to the spacing of the rows: the factor falls slowly within a row and steps down
// at the next one.
double CornerCorrection(double frequency, std::int32_t stages) {
  const auto row = static_cast<std::size_t>(frequency / kRowSpacing);
  const auto column = static_cast<std::size_t>(stages - 2);
  if (row >= kLastRow) return kCornerCorrection[kLastRow][column];
  const double here = kCornerCorrection[row][column];
  const double next = kCornerCorrection[row + 1][column];
  return here + (frequency - static_cast<double>(row) * kRowSpacing) * (next - here);
}

double GainFactor(double gain_db) { return gain_db > kFullCut_db ? std::pow(10.0, gain_db * 0.05) : 0.0; }

EqSection DesignShelf(const EqBandDesign& band) {
  const bool is_low = band.mode == EqMode::kLowShelf;
  double corner = band.frequency;
  if (band.stages >= 2) {
    const double correction = CornerCorrection(corner, band.stages);
    corner = is_low ? corner / correction : corner * correction;
  }
  if (corner >= kMostFrequency) corner = kMostCorner;

  const double t = std::tan(std::numbers::pi * corner);
  const double c0 = (1.0 - t) / (1.0 + t);
  // Gain 1 of the filtered path at 0 Hz or at half the sample rate.
  const double path_scale = is_low ? (1.0 - c0) / 2.0 : (1.0 + c0) / 2.0;
  return {.mode = band.mode, .stages = band.stages, .c0 = c0, .gain = path_scale * (GainFactor(band.gain_db) - 1.0)};
}

// 1 / |H| at the mean of the edges, H(z) = (1 - z^-2) / (1 - c0 z^-1 - c1 z^-2).
double BandScale(double c0, double c1, double lower_edge, double upper_edge) {
  const double theta = std::numbers::pi * (lower_edge + upper_edge);
  const std::complex<double> z1 = std::polar(1.0, -theta);
  const std::complex<double> z2 = z1 * z1;
  const double response = std::abs((1.0 - z2) / (1.0 - c0 * z1 - c1 * z2));
  return response == 0.0 ? 1.0 : 1.0 / response;
}

EqSection DesignBand(const EqBandDesign& band) {
  const double half_width = std::sqrt(std::exp2(band.bandwidth_octaves));
  const double lower_edge = band.frequency / half_width;
  const double upper_edge = std::min(band.frequency * half_width, kMostUpperEdge);

  const double lower = 2.0 * std::tan(std::numbers::pi * lower_edge);
  const double upper = 2.0 * std::tan(std::numbers::pi * upper_edge);
  const double width = upper - lower;
  const double product = lower * upper;
  const double denominator = 4.0 + 2.0 * width + product;
  const double c0 = (8.0 - 2.0 * product) / denominator;
  const double c1 = -(4.0 - 2.0 * width + product) / denominator;
  return {.mode = EqMode::kBand,
          .stages = 1,
          .c0 = c0,
          .c1 = c1,
          .gain = BandScale(c0, c1, lower_edge, upper_edge) * (GainFactor(band.gain_db) - 1.0)};
}

}  // namespace

EqBandDesign DescribeBand(const EqSettings& settings, std::uint32_t band, std::uint32_t sample_rate_hz) {
  EqBandDesign design{
      .gain_db = settings.enable[band] != 0 ? std::min(settings.gain[band] * 0.1, kMostGain_db) : 0.0,
      .frequency =
          std::clamp(static_cast<double>(std::max(settings.frequency[band], kLeastFrequency_hz)) / sample_rate_hz,
                     kLeastFrequency, kMostFrequency),
      .bandwidth_octaves = std::clamp(settings.bandwidth[band], kLeastBandwidth, kMostBandwidth) * 0.1,
      .mode = static_cast<EqMode>(std::clamp(settings.mode[band], static_cast<std::int32_t>(EqMode::kLowShelf),
                                             static_cast<std::int32_t>(EqMode::kHighShelf))),
      .stages = std::clamp(settings.rolloff[band], 1, kEqMaxStages),
  };
  if (design.mode != EqMode::kBand && design.stages >= 2 && design.gain_db > kFullCut_db) {
    design.gain_db /= design.stages * kStageShare;
  }
  return design;
}

EqSection DesignSection(const EqBandDesign& band) {
  return band.mode == EqMode::kBand ? DesignBand(band) : DesignShelf(band);
}

}  // namespace tervan
