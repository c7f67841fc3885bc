// The EQ: one band, four bands of a stage each, and four bands whose two shelves have four stages.

#include "effects/eq/eq_engine.h"

#include "engine_bench.h"

namespace tervan::bench {
namespace {

constexpr EqSettings kFourBands{
    {45, -30, 60, -75}, {10, 10, 10, 10}, {100, 300, 1000, 5000}, {1, 2, 2, 3}, {1, 1, 1, 1}, {1, 1, 1, 1}, 0, 0};

struct Variant {
  const char* name;
  std::int32_t shelf_rolloff;
  bool one_band;
};
constexpr Variant kVariants[] = {{"1Stage", 1, true}, {"4Stages", 1, false}, {"10Stages", 4, false}};

template <typename Sample>
void RegisterFormat(const std::string& format) {
  for (const Variant& variant : kVariants) {
    Register("Eq_" + std::string(variant.name) + "_Stereo" + format, [variant](benchmark::State& state) {
      EqSettings record = kFourBands;
      record.rolloff[0] = record.rolloff[3] = variant.shelf_rolloff;
      if (variant.one_band) record.enable[0] = record.enable[1] = record.enable[3] = 0;
      FixedSettings<EqSettings> settings(record);
      TimeEngine<Sample, EqEngine>(state, settings);
    });
  }
}

[[maybe_unused]] const bool registered = [] {
  RegisterFormat<float>("Float32");
  RegisterFormat<double>("Float64");
  RegisterFormat<std::uint8_t>("Pcm8");
  RegisterFormat<std::int16_t>("Pcm16");
  RegisterFormat<std::int32_t>("Pcm32");
  return true;
}();

}  // namespace
}  // namespace tervan::bench
