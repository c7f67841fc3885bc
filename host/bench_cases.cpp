#include "host/bench_cases.h"

#include <algorithm>
#include <limits>

#include "host/failure.h"
#include "host/sample_convert.h"
#include "testing/programme.h"

namespace tervan::host {
namespace {

constexpr std::array kCases{
    BenchCase{"compressor", "", "compressor:threshold=-24:amount=4", false, true},
    BenchCase{"compressor", "with meters", "compressor:threshold=-24:amount=4", true},
    BenchCase{"compressor", "smooth saturation", "compressor:threshold=-24:amount=4:smooth saturation=on"},
    BenchCase{"eq", "four stages",
              "eq:band1.gain=4.5:band1.rolloff=6:band2.gain=-3:band3.gain=6:band4.gain=-7.5:band4.rolloff=6", false,
              true},
    BenchCase{"eq", "ten stages",
              "eq:band1.gain=4.5:band1.rolloff=24:band2.gain=-3:band3.gain=6:band4.gain=-7.5:band4.rolloff=24"},
    BenchCase{"gate", "", "gate:threshold level=-32:attack time=1:release time=50", false, true},
    BenchCase{"dither", "no shaping", "dither:depth=12:type=triangular", false, true},
    BenchCase{"dither", "first-order shaping", "dither:depth=12:type=triangular:shaping=high-pass contour"},
    BenchCase{"dither", "second-order shaping", "dither:depth=12:type=triangular:shaping=equal loudness contour"}};

}  // namespace

std::string BenchCase::Label() const {
  return std::string(effect) + (variant.empty() ? "" : ", ") + std::string(variant);
}

std::vector<BenchCase> BenchCases(const Module& module, std::span<const EffectRequest> wanted) {
  std::vector<const EffectType*> types;
  for (const EffectRequest& request : wanted) types.push_back(&FindEffect(module, request.name));
  if (wanted.empty()) types = AvailableEffects(module);
  std::vector<BenchCase> cases;
  std::ranges::copy_if(kCases, std::back_inserter(cases), [&](const BenchCase& bench_case) {
    return std::ranges::find(types, bench_case.effect, &EffectType::name) != types.end();
  });
  if (cases.empty()) throw Failure("the module has none of the effects that are measured");
  return cases;
}

EffectInstance MakeEffect(const Module& module, const BenchCase& bench_case) {
  const EffectRequest request = ParseEffectRequest(bench_case.settings);
  return std::move(MakeChain(module, {&request, 1}).front());
}

std::vector<float> MaterialOf(Material material) {
  constexpr size_t kPartFrames = 6000;
  constexpr std::uint32_t kNoiseKind = 1;
  const bool is_noise = material == Material::kNoise;
  auto samples = testing::SamplesOf<float>(testing::Programme(
      kMaterialFrames, kBenchFormat.channels, is_noise ? kMaterialFrames : kPartFrames, is_noise ? kNoiseKind : 0));
  for (float& sample : samples) {
    if (material == Material::kSilence) sample = 0.0f;
    if (material == Material::kSubnormal) sample *= std::numeric_limits<float>::min();
  }
  return samples;
}

std::vector<std::uint8_t> ProgrammeAs(SampleType type) {
  const std::vector<float> samples = MaterialOf(Material::kProgramme);
  std::vector<std::uint8_t> bytes(kMaterialFrames * kBenchFormat.With(type).FrameBytes());
  ConvertSamples(SampleType::kFloat32, samples.data(), type, bytes.data(), samples.size());
  return bytes;
}

}  // namespace tervan::host
