// The dither to 16 bits: the engine against the plain routine, formats and kinds of material against each other.

#include "effects/dither/dither_engine.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <type_traits>

#include "comparison.h"
#include "effects/dither/dither_plain.h"
#include "effects/dither/dither_rig.h"
#include "shell/sample_codec.h"

namespace tervan::bench {
namespace {

constexpr std::uint32_t kBits = 16;
constexpr std::uint32_t kSeed = 1;
constexpr std::uint32_t kNone = 0, kRectangular = 2, kTriangular = 3, kHighpassTriangular = 4, kGaussian = 5;

struct Row {
  std::uint32_t type, shaping;
  std::size_t channels = 2;
  Material material = Material::kProgramme;
};

template <typename Codec>
auto PlainRoutine(const Row& row) {
  using Sample = typename Codec::Sample;
  testing::DitherRig rig(kBits, row.type, row.shaping, kSeed);
  const auto process = [rig, channels = static_cast<std::uint32_t>(row.channels)](Sample* block,
                                                                                  std::uint32_t frames) mutable {
    if constexpr (std::is_integral_v<Sample>) {
      dither_plain::ProcessFrames<Codec>(rig.State(), block, frames, channels);
    } else {
      dither_plain::Process<Codec>(rig.State(), block, frames, channels);
    }
  };
  return Timed<Sample>(process, row.material, row.channels);
}

template <typename Codec>
auto EngineRoutine(const Row& row) {
  using Sample = typename Codec::Sample;
  auto engine = std::make_shared<CLmDither>(kBits, static_cast<DitherType>(row.type),
                                            static_cast<NoiseShaping>(row.shaping), [] { return kSeed; });
  const auto process = [engine, channels = static_cast<std::uint32_t>(row.channels)](
                           Sample* block, std::uint32_t frames) { engine->Process(block, frames, channels); };
  return Timed<Sample>(process, row.material, row.channels);
}

template <typename Codec>
void RegisterFormat(const std::string& name, const Row& row) {
  RegisterComparison(
      "Dither_" + name, [=] { return PlainRoutine<Codec>(row); }, [=] { return EngineRoutine<Codec>(row); });
}

template <typename Base, typename Codec>
void RegisterPair(const std::string& name, const Row& base, const Row& row) {
  RegisterComparison(
      "Dither_" + name, [=] { return EngineRoutine<Base>(base); }, [=] { return EngineRoutine<Codec>(row); });
}

[[maybe_unused]] const bool registered = [] {
  const char* const kShapings[] = {"Flat", "FirstOrder", "SecondOrder"};
  for (std::uint32_t shaping = 0; shaping < 3; ++shaping) {
    const std::string name = kShapings[shaping];
    RegisterFormat<Float32Codec>("Triangular_" + name + "_StereoFloat32", {kTriangular, shaping});
    RegisterFormat<Float32Codec>("Triangular_" + name + "_MonoFloat32", {kTriangular, shaping, 1});
    RegisterFormat<Float64Codec>("Triangular_" + name + "_StereoFloat64", {kTriangular, shaping});
    RegisterFormat<Pcm8Codec>("Triangular_" + name + "_StereoPcm8", {kTriangular, shaping});
    RegisterFormat<Pcm16Codec>("Triangular_" + name + "_StereoPcm16", {kTriangular, shaping});
    RegisterFormat<Pcm32Codec>("Triangular_" + name + "_StereoPcm32", {kTriangular, shaping});
    RegisterFormat<Float32Codec>("None_" + name + "_StereoFloat32", {kNone, shaping});
    RegisterFormat<Float32Codec>("Rectangular_" + name + "_StereoFloat32", {kRectangular, shaping});
    RegisterFormat<Float32Codec>("HighpassTriangular_" + name + "_StereoFloat32", {kHighpassTriangular, shaping});
    RegisterFormat<Float32Codec>("Gaussian_" + name + "_StereoFloat32", {kGaussian, shaping});

    const Row row{kTriangular, shaping};
    RegisterPair<Float32Codec, Pcm16Codec>("Triangular_" + name + "_Float32ToPcm16", row, row);
    const Row noise{kTriangular, shaping, 2, Material::kNoise};
    RegisterPair<Float32Codec, Float32Codec>("Triangular_" + name + "_NoiseToSilence", noise,
                                             {kTriangular, shaping, 2, Material::kSilence});
    RegisterPair<Float32Codec, Float32Codec>("Triangular_" + name + "_NoiseToSubnormal", noise,
                                             {kTriangular, shaping, 2, Material::kSubnormal});
  }
  return true;
}();

}  // namespace
}  // namespace tervan::bench
