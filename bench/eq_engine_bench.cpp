// The EQ's engine against its plain passes: four bands of a stage each, four bands whose two shelves have four stages
// each, and one band; formats and kinds of material against each other.

#include "effects/eq/eq_engine.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "comparison.h"
#include "effects/eq/eq_plain.h"
#include "shell/engine_dispatch.h"
#include "testing/formats.h"

namespace tervan::bench {
namespace {

constexpr std::uint32_t kRateHz = 44100;
constexpr EqSettings kFourStages{
    {45, -30, 60, -75}, {10, 10, 10, 10}, {100, 300, 1000, 5000}, {1, 2, 2, 3}, {1, 1, 1, 1}, {1, 1, 1, 1}, 0, 0};
constexpr EqSettings kTenStages{
    {45, -30, 60, -75}, {10, 10, 10, 10}, {100, 300, 1000, 5000}, {1, 2, 2, 3}, {4, 1, 1, 4}, {1, 1, 1, 1}, 0, 0};
constexpr EqSettings kOneStage{
    {45, -30, 60, -75}, {10, 10, 10, 10}, {100, 300, 1000, 5000}, {1, 2, 2, 3}, {1, 1, 1, 1}, {0, 0, 1, 0}, 0, 0};

struct StartedEq : SettingsSource<EqSettings> {
  StartedEq(const EqSettings& with, std::size_t channels) : settings(with) {
    engine.SetFormat(testing::FormatOf(channels, kRateHz));
    engine.Start();
  }
  bool HasChange() const override { return false; }
  bool SnapshotSettings(EqSettings* out) override {
    *out = settings;
    return false;
  }
  const EqSettings settings;
  EqEngine engine{*this};
};

// The stages of an engine, with states of their own.
struct Stages {
  explicit Stages(const EqSettings& settings) {
    for (std::uint32_t band = 0; band < kEqBands; ++band) {
      const EqBandDesign design = DescribeBand(settings, band, kRateHz);
      if (design.gain_db != 0.0) sections.push_back(DesignSection(design));
    }
    states.resize(std::size_t{2} * kEqBands * kEqMaxStages);
    for (const EqSection& section : sections) {
      for (std::int32_t i = 0; i < section.stages; ++i) {
        eq::StatePair* const pair = &states[2 * runs.size()];
        runs.push_back({&section, {pair, pair + 1}});
      }
    }
  }
  std::vector<EqSection> sections;
  std::vector<eq::StatePair> states;
  std::vector<eq::StageRun> runs;
};

template <typename Codec, std::size_t kChannels = 2>
auto Engine(const EqSettings& settings, Material material = Material::kProgramme) {
  using Sample = typename Codec::Sample;
  const auto process = [eq = std::make_shared<StartedEq>(settings, kChannels)](Sample* samples, std::uint32_t frames) {
    ProcessWith(eq->engine, testing::kFormatOf<Sample>, ProcessMode::kContinuous, samples, &frames, false);
  };
  return Timed<Sample>(process, material, kChannels);
}

template <typename Codec, std::size_t kChannels>
auto Plain(const EqSettings& settings, Material material) {
  using Sample = typename Codec::Sample;
  const auto process = [stages = std::make_shared<Stages>(settings)](Sample* samples, std::uint32_t frames) {
    eq::RunStagesPlainly<Codec, kChannels>(stages->runs, samples, frames);
  };
  return Timed<Sample>(process, material, kChannels);
}

template <typename Codec, std::size_t kChannels = 2>
void AgainstPlain(const std::string& name, const EqSettings& settings, Material material = Material::kProgramme) {
  RegisterComparison(
      "BM_Eq_" + name, [=] { return Plain<Codec, kChannels>(settings, material); },
      [=] { return Engine<Codec, kChannels>(settings, material); });
}

template <typename Codec>
void AgainstNoise(const std::string& name, Material material) {
  RegisterComparison(
      "BM_Eq_4Stages_" + name, [] { return Engine<Codec>(kFourStages, Material::kNoise); },
      [=] { return Engine<Codec>(kFourStages, material); });
}

[[maybe_unused]] const bool registered = [] {
  AgainstPlain<Float32Codec>("1Stage_StereoFloat32", kOneStage);
  for (const auto& [name, settings] : {std::pair{"4Stages_", kFourStages}, std::pair{"10Stages_", kTenStages}}) {
    const std::string prefix = name;
    AgainstPlain<Float32Codec>(prefix + "StereoFloat32", settings);
    AgainstPlain<Float32Codec>(prefix + "StereoFloat32_Noise", settings, Material::kNoise);
    AgainstPlain<Float32Codec, 1>(prefix + "MonoFloat32", settings);
    AgainstPlain<Float64Codec>(prefix + "StereoFloat64", settings);
    AgainstPlain<Pcm8Codec>(prefix + "StereoPcm8", settings);
    AgainstPlain<Pcm16Codec>(prefix + "StereoPcm16", settings);
    AgainstPlain<Pcm32Codec>(prefix + "StereoPcm32", settings);
    RegisterComparison(
        "BM_Eq_" + prefix + "Pcm16_AgainstFloat32", [=] { return Engine<Float32Codec>(settings); },
        [=] { return Engine<Pcm16Codec>(settings); });
  }
  AgainstNoise<Float32Codec>("Float32_Silence_AgainstNoise", Material::kSilence);
  AgainstNoise<Float32Codec>("Float32_Subnormal_AgainstNoise", Material::kSubnormal);
  AgainstNoise<Float64Codec>("Float64_Silence_AgainstNoise", Material::kSilence);
  AgainstNoise<Float64Codec>("Float64_Subnormal_AgainstNoise", Material::kSubnormal);
  return true;
}();

}  // namespace
}  // namespace tervan::bench
