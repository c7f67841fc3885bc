// The dither to 16 bits: the engine on floats, the effect on integers, which it converts.

#include "effects/dither/dither_effect.h"

#include "engine_bench.h"

namespace tervan::bench {
namespace {

constexpr std::uint32_t kBits = 16;

struct Named {
  const char* name;
  std::uint32_t value;
};
constexpr Named kTypes[] = {
    {"None", 0}, {"Rectangular", 2}, {"Triangular", 3}, {"Gaussian", 5}, {"HighpassTriangular", 4}};
constexpr Named kShapings[] = {{"Flat", 0}, {"FirstOrder", 1}, {"SecondOrder", 2}};

template <typename Sample>
void RegisterFormat(const std::string& format) {
  for (const Named& type : kTypes) {
    for (const Named& shaping : kShapings) {
      Register("Dither_" + std::string(type.name) + "_" + shaping.name + "_Stereo" + format,
               [type, shaping](benchmark::State& state) {
                 CLmDither engine(kBits, static_cast<DitherType>(type.value), static_cast<NoiseShaping>(shaping.value));
                 TimeBlocks<Sample>(state, [&engine](Sample* block, std::uint32_t frames) {
                   engine.Process(block, frames, kChannels);
                 });
               });
    }
  }
}

struct NoWindows : WindowPoster {
  bool Exists(WindowHandle) override { return false; }
  void PostCommand(WindowHandle, std::int32_t, std::uint16_t) override {}
};

template <typename Sample>
void RegisterInteger(const std::string& format) {
  Register("Dither_Triangular_SecondOrder_Stereo" + format, [](benchmark::State& state) {
    NoWindows windows;
    DitherEffect effect(windows);
    const DitherSettings settings{2, 3, 2};
    effect.SetRecord(&settings);
    effect.SetFormat(testing::FormatOf(kChannels, 44100));
    effect.Start();
    TimeBlocks<Sample>(state, [&effect](Sample* block, std::uint32_t frames) {
      effect.Process(testing::kFormatOf<Sample>, ProcessMode::kContinuous, block, &frames, false);
    });
  });
}

[[maybe_unused]] const bool registered = [] {
  RegisterInteger<std::uint8_t>("Pcm8");
  RegisterInteger<std::int16_t>("Pcm16");
  RegisterInteger<std::int32_t>("Pcm32");
  RegisterFormat<float>("Float32");
  RegisterFormat<double>("Float64");
  return true;
}();

}  // namespace
}  // namespace tervan::bench
