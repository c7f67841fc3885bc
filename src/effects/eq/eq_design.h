// From the settings of a band to the coefficients of its filter.
//
// Every band is the dry signal plus a scaled filter of it whose gain is 1 where the band acts, so that 0 dB does
// nothing and the bottom of the gain range removes the band's region. With G the gain factor:
//
//   low shelf, high shelf   first-order sections in a cascade of 1 to 4, for 6 to 24 dB per octave
//   band                    one second-order band-pass, both edges prewarped
//
// Bilinear transform as in J. G. Proakis, D. G. Manolakis, "Digital Signal Processing", design of IIR filters.
#pragma once

#include <cstdint>

#include "effects/eq/eq_settings.h"

namespace tervan {

enum class EqMode : std::int32_t { kLowShelf = 1, kBand = 2, kHighShelf = 3 };

inline constexpr std::int32_t kEqMaxStages = 4;

// A band's settings in the units of the formulas.
struct EqBandDesign {
  double gain_db;            // of each stage; 0: the band takes no part
  double frequency;          // corner or centre, in parts of the sample rate: above 0, at most 0.5
  double bandwidth_octaves;  // of a band
  EqMode mode;
  std::int32_t stages;  // of a shelf
};

// A designed filter. Per sample x with the states w1 (the newest) and w2, for each stage:
//
//   low shelf    w = c0 w1 + gain x            y = x + w + w1
//   high shelf   w = c0 w1 + gain x            y = x + w - w1
//   band         w = c0 w1 + c1 w2 + gain x    y = x + w - w2
struct EqSection {
  EqMode mode = EqMode::kBand;
  std::int32_t stages = 1;
  double c0 = 0.0;
  double c1 = 0.0;
  double gain = 0.0;
};

// band: 0..3. Safe for any record: what no setter would accept is brought into the range where the formulas hold.
EqBandDesign DescribeBand(const EqSettings& settings, std::uint32_t band, std::uint32_t sample_rate_hz);

// Stable and finite for whatever DescribeBand gives.
EqSection DesignSection(const EqBandDesign& band);

}  // namespace tervan
