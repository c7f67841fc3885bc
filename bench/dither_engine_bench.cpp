// The dither's engine on floats, to 16 bits.

#include "effects/dither/dither_engine.h"

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

[[maybe_unused]] const bool registered = [] {
  RegisterFormat<float>("Float32");
  RegisterFormat<double>("Float64");
  return true;
}();

}  // namespace
}  // namespace tervan::bench
