#include "effects/dither/dither_effect.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <type_traits>
#include <vector>

#include "effects/dither/dither_model.h"
#include "shell/stream_processor.h"
#include "testing/engine_rig.h"
#include "testing/fakes.h"
#include "testing/programme.h"

namespace tervan {
namespace {

using namespace tervan::testing;

constinit std::uint32_t now_ms = 0;

DitherModel ModelOf(const DitherSettings& s) {
  constexpr std::uint32_t kBits[] = {8, 12, 16, 18, 20, 24, 32};
  return {kBits[s.quantization_depth], static_cast<std::uint32_t>(s.dither_type),
          static_cast<std::uint32_t>(s.noise_shaping), now_ms};
}

struct DitherEffectTest : ::testing::Test {
  template <typename Sample>
  void Start(const DitherSettings& settings, std::uint16_t channels) {
    const std::uint16_t tag = std::is_floating_point_v<Sample> ? kTagFloat : kTagPcm;
    const StreamFormat offered{tag, channels, 48000, 0, 0, 8 * sizeof(Sample), 0};
    control.SetSettings(&settings);
    processor.SetFormat(NormalisedFormat(&offered));
    EXPECT_EQ(processor.StartStreaming(), S_OK);
  }
  template <typename Sample>
  void Run(Sample* samples, std::size_t count, bool discontinuity = false) {
    const auto bytes = static_cast<std::uint32_t>(count * sizeof(Sample));
    SampleView view{samples, bytes, bytes, discontinuity};
    EXPECT_EQ(processor.Transform(view), S_OK);
  }

  FakePoster poster;
  DitherEffect effect{poster, [] { return now_ms; }};
  DitherControl& control = effect.settings_control();
  StreamProcessor processor{effect};
};

template <typename Sample>
struct DitherFormat : DitherEffectTest {};
TYPED_TEST_SUITE(DitherFormat, Formats);

// All settings; others come in the stream, and later a break.
TYPED_TEST(DitherFormat, EqualsTheModelInEveryBit) {
  for (std::int32_t i = 0; i < 7 * 6 * 3 * 2; ++i) {
    const DitherSettings settings{i % 7, i / 7 % 6, i / 42 % 3};
    const DitherSettings others{6 - i % 7, 5 - i / 7 % 6, 2 - i / 42 % 3};
    const auto channels = static_cast<std::uint16_t>(i / 126 + 1);
    auto signal = Programme(1919, channels, 300, 0);
    for (double& x : signal) x *= std::is_integral_v<TypeParam> ? 1.0 : 0.98;
    auto actual = SamplesOf<TypeParam>(signal);
    auto expected = actual;
    this->template Start<TypeParam>(settings, channels);
    DitherModel model = ModelOf(settings);
    std::size_t at = 0;
    for (std::size_t block = 0; block < std::size(kBlockFrames); ++block) {
      ++now_ms;
      if (block == 2) this->control.SetSettings(&others);
      if (block == 2 || block == 5) model = ModelOf(others);
      this->Run(&actual[at], kBlockFrames[block] * channels, block == 5);
      model.Process(&expected[at], kBlockFrames[block], channels);
      at += kBlockFrames[block] * channels;
    }
    ASSERT_TRUE(SameBits(actual, expected)) << i % 7 << i / 7 % 6 << i / 42 % 3 << ", channels: " << channels;
  }
}

TEST_F(DitherEffectTest, NoiseStartsAnewWithSettingsAndBreaksOnly) {
  static constexpr DitherSettings kLimits{0, 5, 2}, kBeyond{-1, 6, 3};
  const struct {
    const char* name;
    bool discontinuity, anew;
    void (*change)(DitherControl&);
  } kSteps[] = {
      {"a break before any data", true, false, nullptr},
      {"nothing", false, false, nullptr},
      {"settings as they clamp", false, false,
       [](DitherControl& c) {
         for (const auto& field : dither::kFields) c.Set(field, kBeyond.*field.member);
       }},
      {"a break", true, true, nullptr},
      {"all settings as they clamp", false, true, [](DitherControl& c) { c.SetSettings(&kBeyond); }},
      {"both", true, true, [](DitherControl& c) { c.SetSettings(&kBeyond); }},
      {"nothing again", false, false, nullptr},
      {"a setting and back", false, true, [](DitherControl& c) { c.Set(dither::kDepth, 1), c.Set(dither::kDepth, 0); }},
  };
  Start<std::int16_t>(kLimits, 2);
  control.TakeDirty();
  DitherModel model = ModelOf(kLimits);
  for (const auto& step : kSteps) {
    ++now_ms;
    if (step.change) step.change(control);
    EXPECT_EQ(control.TakeDirty(), step.change && step.anew) << step.name;
    if (step.anew) model = ModelOf(kLimits);
    std::vector<std::int16_t> actual(200), expected(200);
    Run(actual.data(), actual.size(), step.discontinuity);
    model.Process(expected.data(), 100, 2);
    EXPECT_EQ(actual, expected) << step.name;
  }
}

TEST_F(DitherEffectTest, WithTheStopFlagAndWithoutAnEngineNothingIsTouched) {
  const std::vector<float> input(200, 0.3f);
  auto samples = input;
  EXPECT_EQ(processor.BeginStream(2, 44100), S_OK);
  control.MarkChanged();
  EXPECT_EQ(processor.ProcessBuffer(samples.data(), 100, true), S_FALSE);
  EXPECT_EQ(processor.Refresh(false), S_OK) << "what had changed";
  EXPECT_EQ(processor.EndStream(), S_OK);  // and with it the engine
  EXPECT_EQ(processor.ProcessBuffer(samples.data(), 100, false), E_OUTOFMEMORY);
  EXPECT_EQ(processor.ProcessBuffer(samples.data(), 100, false), E_OUTOFMEMORY);
  EXPECT_EQ(processor.Refresh(true), E_OUTOFMEMORY);
  EXPECT_EQ(samples, input);
}

}  // namespace
}  // namespace tervan
