// The compressor's engine against its plain routine, and against itself on material and formats that must not be slow.
// Only 32-bit floats have a path without meters.

#include "effects/compressor/compressor_engine.h"

#include <memory>

#include "comparison.h"
#include "effects/compressor/compressor_plain.h"
#include "shell/engine_dispatch.h"
#include "testing/formats.h"

namespace tervan::bench {
namespace {

constexpr std::uint32_t kRateHz = 44100;

struct Owner : CompressorEngineOwner {
  bool HasChange() const override { return false; }
  bool SnapshotSettings(CompressorSettings* out) override {
    *out = settings;
    return false;
  }
  void PublishMeters(const CompressorMeters& meters) override { benchmark::DoNotOptimize(meters); }
  void EndMeters() override {}
  bool IsWatched() const override { return watched; }

  CompressorSettings settings{0, 0, -24, 4, 15, 250, 1, 0, 0, 0};
  bool watched = false;
};

struct Case {
  bool metered = false;
  bool smooth = false;
  std::size_t channels = 2;
  Material material = Material::kProgramme;
};

struct StartedEngine {
  explicit StartedEngine(const Case& c) {
    owner.settings.smooth_saturation = c.smooth ? 1 : 0;
    owner.watched = c.metered;
    engine.SetFormat(testing::FormatOf(c.channels, kRateHz));
    engine.Start();
  }
  Owner owner;
  CompressorEngine engine{owner};
};

template <typename Codec>
auto Engine(const Case& c) {
  using Sample = typename Codec::Sample;
  return Timed<Sample>(
      [started = std::make_shared<StartedEngine>(c)](Sample* samples, std::uint32_t frames) {
        ProcessWith(started->engine, testing::kFormatOf<Sample>, ProcessMode::kContinuous, samples, &frames, false);
      },
      c.material, c.channels);
}

struct NoMeter : compressor::LeastGainMeter {
  void Gain(double) noexcept {}
};

template <typename Codec>
auto Plain(const Case& c) {
  using Sample = typename Codec::Sample;
  CompressorSettings settings = Owner{}.settings;
  settings.smooth_saturation = c.smooth ? 1 : 0;
  const CompressorCoefficients coefficients = DesignCompressor(settings, kRateHz);
  compressor::State state{.gain = coefficients.start_gain, .low_pass = dynamics::kLowPassStart};
  return Timed<Sample>(
      [=](Sample* samples, std::uint32_t frames) mutable {
        if (c.metered) {
          compressor::PeakMeter meter;
          if (c.channels == 1) {
            compressor::RunPlain<Codec, 1, false>(coefficients, state, samples, frames, meter);
          } else {
            compressor::RunPlain<Codec, 2, false>(coefficients, state, samples, frames, meter);
          }
          benchmark::DoNotOptimize(meter);
        } else {
          NoMeter meter;
          if (c.channels == 1) {
            compressor::RunPlain<Codec, 1, false>(coefficients, state, samples, frames, meter);
          } else {
            compressor::RunPlain<Codec, 2, true>(coefficients, state, samples, frames, meter);
          }
        }
      },
      c.material, c.channels);
}

template <typename Codec>
void AgainstPlain(const std::string& what, const Case& c) {
  RegisterComparison(
      "BM_Compressor_" + what, [c] { return Plain<Codec>(c); }, [c] { return Engine<Codec>(c); });
}

// Base and routine are both engines: the ratio says how much more the base takes.
template <typename BaseCodec, typename Codec>
void Against(const std::string& what, const Case& base, const Case& c) {
  RegisterComparison(
      "BM_Compressor_" + what, [base] { return Engine<BaseCodec>(base); }, [c] { return Engine<Codec>(c); });
}

[[maybe_unused]] const bool registered = [] {
  AgainstPlain<Float32Codec>("StereoFloat32", {});
  AgainstPlain<Float32Codec>("StereoFloat32_Metered", {.metered = true});
  AgainstPlain<Float32Codec>("StereoFloat32_Smooth", {.smooth = true});
  AgainstPlain<Float32Codec>("StereoFloat32_Metered_Smooth", {.metered = true, .smooth = true});
  AgainstPlain<Float32Codec>("MonoFloat32", {.channels = 1});
  AgainstPlain<Float32Codec>("MonoFloat32_Metered", {.metered = true, .channels = 1});
  AgainstPlain<Float64Codec>("StereoFloat64", {.metered = true});
  AgainstPlain<Pcm8Codec>("StereoPcm8", {.metered = true});
  AgainstPlain<Pcm16Codec>("StereoPcm16", {.metered = true});
  AgainstPlain<Pcm32Codec>("StereoPcm32", {.metered = true});
  Against<Pcm16Codec, Float32Codec>("Pcm16_ToFloat32", {.metered = true}, {.metered = true});
  for (const bool metered : {false, true}) {
    const std::string suffix = metered ? "_Metered" : "";
    const Case noise{.metered = metered, .material = Material::kNoise};
    Against<Float32Codec, Float32Codec>("Silence_ToNoise" + suffix,
                                        {.metered = metered, .material = Material::kSilence}, noise);
    Against<Float32Codec, Float32Codec>("Subnormal_ToNoise" + suffix,
                                        {.metered = metered, .material = Material::kSubnormal}, noise);
  }
  return true;
}();

}  // namespace
}  // namespace tervan::bench
