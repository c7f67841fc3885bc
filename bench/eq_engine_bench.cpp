// The EQ: one band, four bands of a stage each, and four bands whose two shelves have four stages.

#include "effects/eq/eq_engine.h"

#include "engine_bench.h"

namespace tervan::bench {
namespace {

constexpr EqSettings kFourBands{
    {45, -30, 60, -75}, {10, 10, 10, 10}, {100, 300, 1000, 5000}, {1, 2, 2, 3}, {1, 1, 1, 1}, {1, 1, 1, 1}, 0, 0};

[[maybe_unused]] const bool registered = [] {
  EqSettings settings = kFourBands;
  RegisterFormats<EqEngine>("Eq_4Stages", settings);
  settings.rolloff[0] = settings.rolloff[3] = 4;
  RegisterFormats<EqEngine>("Eq_10Stages", settings);
  settings.enable[0] = settings.enable[1] = settings.enable[3] = 0;
  RegisterFormats<EqEngine>("Eq_1Stage", settings);
  return true;
}();

}  // namespace
}  // namespace tervan::bench
