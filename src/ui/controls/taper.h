// Shapes that spread the low values of a slider's range along its track.
#pragma once

#include <cstdint>

namespace tervan::ui {

enum class Taper {
  kNone,
  kTimesAndLevels,  // table A: half of the track up to 120, all of it at 1000
  kFrequencies,     // table B: octave by octave
};

// The place of a value on the tapered track, and the value at a place: piecewise linear, truncated towards zero, odd.
// Beyond the last point of its table both leave the number as it is.
std::int64_t Tapered(Taper taper, std::int64_t value);
std::int64_t Untapered(Taper taper, std::int64_t place);

}  // namespace tervan::ui
