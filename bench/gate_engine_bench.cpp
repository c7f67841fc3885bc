// The gate's engine, opening and closing with the programme, against the plain routine; formats and kinds of material
// against each other.

#include "effects/gate/gate_engine.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "comparison.h"
#include "effects/gate/gate_coefficients.h"
#include "effects/gate/gate_plain.h"
#include "shell/engine_dispatch.h"
#include "testing/formats.h"

namespace tervan::bench {
namespace {

constexpr std::uint32_t kRateHz = 44100;
constexpr GateSettings kSettings{10, 500, -320, 0};

struct StartedGate : SettingsSource<GateSettings> {
  explicit StartedGate(std::size_t channels) {
    engine.SetFormat(testing::FormatOf(channels, kRateHz));
    engine.Start();
  }
  bool HasChange() const override { return false; }
  bool SnapshotSettings(GateSettings* settings) override {
    *settings = kSettings;
    return false;
  }
  GateEngine engine{*this};
};

template <typename Codec, std::size_t kChannels = 2>
auto Engine(Material material = Material::kProgramme) {
  using Sample = typename Codec::Sample;
  const auto process = [gate = std::make_shared<StartedGate>(kChannels)](Sample* samples, std::uint32_t frames) {
    ProcessWith(gate->engine, testing::kFormatOf<Sample>, ProcessMode::kContinuous, samples, &frames, false);
  };
  return Timed<Sample>(process, material, kChannels);
}

template <typename Codec, std::size_t kChannels>
auto Plain(Material material) {
  using Sample = typename Codec::Sample;
  const auto process = [c = gate::DesignGate(kSettings, kRateHz), state = gate::State{}](Sample* samples,
                                                                                         std::uint32_t frames) mutable {
    gate::RunPlain<Codec, kChannels>(c, state, samples, frames);
  };
  return Timed<Sample>(process, material, kChannels);
}

template <typename Codec, std::size_t kChannels = 2>
void AgainstPlain(const std::string& name, Material material = Material::kProgramme) {
  RegisterComparison(
      "BM_Gate_" + name, [=] { return Plain<Codec, kChannels>(material); },
      [=] { return Engine<Codec, kChannels>(material); });
}

template <typename Codec>
void AgainstNoise(const std::string& name, Material material) {
  RegisterComparison(
      "BM_Gate_" + name, [] { return Engine<Codec>(Material::kNoise); }, [=] { return Engine<Codec>(material); });
}

[[maybe_unused]] const bool registered = [] {
  AgainstPlain<Float32Codec>("StereoFloat32");
  AgainstPlain<Float32Codec>("StereoFloat32_Noise", Material::kNoise);
  AgainstPlain<Float32Codec, 1>("MonoFloat32");
  AgainstPlain<Float64Codec>("StereoFloat64");
  AgainstPlain<Pcm8Codec>("StereoPcm8");
  AgainstPlain<Pcm16Codec>("StereoPcm16");
  AgainstPlain<Pcm32Codec>("StereoPcm32");
  RegisterComparison(
      "BM_Gate_Pcm16_AgainstFloat32", [] { return Engine<Float32Codec>(); }, [] { return Engine<Pcm16Codec>(); });
  AgainstNoise<Float32Codec>("Float32_Silence_AgainstNoise", Material::kSilence);
  AgainstNoise<Float32Codec>("Float32_Subnormal_AgainstNoise", Material::kSubnormal);
  AgainstNoise<Float64Codec>("Float64_Silence_AgainstNoise", Material::kSilence);
  AgainstNoise<Float64Codec>("Float64_Subnormal_AgainstNoise", Material::kSubnormal);
  return true;
}();

}  // namespace
}  // namespace tervan::bench
