// What the benchmark measures, and with what audio: every effect with settings that make it work, on stereo programme
// at 48 kHz.
#pragma once

#include <array>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/audio_format.h"
#include "host/effect_instance.h"

namespace tervan::host {

struct BenchCase {
  std::string_view effect;
  std::string_view variant;   // may be empty
  std::string_view settings;  // as --effect takes them
  bool is_watched = false;    // somebody looks at the meters
  bool is_first = false;      // of its effect; stands for it where one case of an effect is enough

  // "eq, ten stages"
  std::string Label() const;
};

// Those of these effects, or of all that the module has; at least one. Throws a UsageError for an effect that it does
// not have, or a Failure.
std::vector<BenchCase> BenchCases(const Module& module, std::span<const EffectRequest> wanted);

// A new effect for this case.
EffectInstance MakeEffect(const Module& module, const BenchCase& bench_case);

inline constexpr double kNsPerSecond = 1e9;
inline constexpr AudioFormat kBenchFormat{SampleType::kFloat32, 2, 48000};
inline constexpr std::array<size_t, 3> kBlockFrames{64, 512, 4096};
inline constexpr size_t kMaterialFrames = 1 << 15;  // a multiple of all blocks

enum class Material {
  kProgramme,  // decaying bursts, a noise floor, steady tones, clipping, silence
  kNoise,      // a floor of -80 dBFS
  kSilence,
  kSubnormal,
};

// kMaterialFrames of stereo.
std::vector<float> MaterialOf(Material material);
// Programme in this type.
std::vector<std::uint8_t> ProgrammeAs(SampleType type);

// How many times faster than real time.
constexpr double TimesRealTime(double ns_per_frame) { return kNsPerSecond / (ns_per_frame * kBenchFormat.rate_hz); }

}  // namespace tervan::host
