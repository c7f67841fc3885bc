#include "effects/dither/dither_effect.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <numeric>
#include <type_traits>
#include <vector>

#include "effects/dither/dither_model.h"
#include "shell/stream_processor.h"
#include "testing/engine_rig.h"
#include "testing/fakes.h"
#include "testing/programme.h"

namespace tervan {

static bool operator==(const DitherSettings& a, const DitherSettings& b) { return std::memcmp(&a, &b, sizeof a) == 0; }

namespace {

using namespace tervan::testing;

constinit std::uint32_t now_ms = 0;

constexpr DitherSettings kLoud{0, 2, 0};  // noise of ±1 LSB at 8 bits

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
    EXPECT_EQ(view.length_bytes, bytes);
  }
  std::vector<std::int16_t> Streamed(const DitherSettings& settings, std::vector<std::int16_t> samples) {
    Start<std::int16_t>(settings, 1);
    Run(samples.data(), samples.size());
    return samples;
  }
  DitherSettings Settings() const {
    DitherSettings settings{};
    EXPECT_EQ(control.GetSettings(&settings), S_OK);
    return settings;
  }
  // Whether a change was noted since the last call.
  bool TakeChange() {
    DitherSettings settings{};
    const bool changed = control.SnapshotSettings(&settings);
    EXPECT_EQ(control.TakeDirty(), changed);
    return changed;
  }

  FakePoster poster;
  DitherEffect effect{poster, [] { return now_ms; }};
  DitherControl& control = effect.settings_control();
  StreamProcessor processor{effect};
};

template <typename Sample>
struct DitherFormat : DitherEffectTest {};
using Formats = ::testing::Types<std::uint8_t, std::int16_t, std::int32_t, float, double>;
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

TEST_F(DitherEffectTest, WordLengthMeetsTheStreams) {
  std::vector<std::int16_t> all(65536);
  std::iota(all.begin(), all.end(), INT16_MIN);
  for (const std::int32_t type : {0, 2, 5}) {
    for (const int y : Streamed({0, type, 2}, all)) EXPECT_TRUE(y % 256 == 0 || y == 32767) << y;
  }
  for (const std::int32_t depth : {2, 3, 6}) EXPECT_EQ(Streamed({depth, 0, 0}, all), all);
  // A quarter of this noise rounds to -1 LSB at 24 bits, which the stream truncates towards zero.
  for (const int x : {0, 100, -100}) {
    const auto y = Streamed({5, 2, 0}, std::vector(4000, static_cast<std::int16_t>(x)));
    EXPECT_NEAR(std::accumulate(y.begin(), y.end(), 0.0) / 4000.0, x * 0.9975, x == 0 ? 0.0 : 0.05);
  }
}

TEST_F(DitherEffectTest, NoiseStartsAnewWithSettingsAndBreaksOnly) {
  const struct {
    const char* name;
    bool discontinuity, anew;
    void (*change)(DitherControl&);
  } kSteps[] = {
      {"a break before any data", true, false, nullptr},
      {"nothing", false, false, nullptr},
      {"a setting as it is", false, false, [](DitherControl& c) { c.Set(dither::kType, kLoud.dither_type); }},
      {"a break", true, true, nullptr},
      {"all settings as they are", false, true, [](DitherControl& c) { c.SetSettings(&kLoud); }},
      {"both", true, true, [](DitherControl& c) { c.SetSettings(&kLoud); }},
      {"nothing again", false, false, nullptr},
  };
  Start<std::int16_t>(kLoud, 2);
  DitherModel model = ModelOf(kLoud);
  for (const auto& step : kSteps) {
    ++now_ms;
    if (step.change) step.change(control);
    if (step.anew) model = ModelOf(kLoud);
    std::vector<std::int16_t> actual(200), expected(200);
    Run(actual.data(), actual.size(), step.discontinuity);
    model.Process(expected.data(), 100, 2);
    EXPECT_EQ(actual, expected) << step.name;
  }
}

TEST_F(DitherEffectTest, DirectBuffersStopAndRefresh) {
  const std::vector<float> input(200, 0.3f);
  auto actual = input, expected = input;
  std::uint32_t frames = 100;
  EXPECT_EQ(processor.BeginStream(2, 44100), S_OK);
  control.SetSettings(&kLoud);
  EXPECT_EQ(processor.ProcessBuffer(actual.data(), 100, true), S_FALSE);
  EXPECT_EQ(actual, input);
  EXPECT_FALSE(processor.IsUnchanged());
  EXPECT_EQ(processor.Refresh(false), S_OK);
  EXPECT_TRUE(processor.IsUnchanged());
  DitherModel model = ModelOf(kLoud);
  for (const bool reset : {false, false, true}) {
    ++now_ms;
    EXPECT_EQ(processor.Refresh(reset), reset ? S_OK : S_FALSE);
    if (reset) model = ModelOf(kLoud);
    EXPECT_EQ(processor.ProcessBuffer((actual = input).data(), 100, false), S_OK);
    model.Process((expected = input).data(), 100, 2);
    EXPECT_EQ(actual, expected);
    EXPECT_EQ(processor.GetTail(actual.data(), &(frames = 100)), S_FALSE);
    EXPECT_EQ(frames, 0u);
  }

  EXPECT_EQ(processor.EndStream(), S_OK);  // no engine any more
  EXPECT_EQ(processor.ProcessBuffer((actual = input).data(), 100, false), E_OUTOFMEMORY);
  EXPECT_EQ(actual, input);
  EXPECT_EQ(processor.Refresh(true), E_OUTOFMEMORY);
  EXPECT_EQ(processor.Refresh(false), S_FALSE);
  control.MarkChanged();
  EXPECT_EQ(processor.Refresh(false), E_OUTOFMEMORY);
}

TEST_F(DitherEffectTest, SettingsClampAndNoteChanges) {
  EXPECT_TRUE(TakeChange());  // as it was made
  EXPECT_EQ(Settings(), (DitherSettings{2, 1, 0}));
  const struct {
    const dither::Field& field;
    std::int32_t value, stored;
    bool changes;
  } kSteps[] = {
      {dither::kType, 9, 5, true},    {dither::kType, 5, 5, false},    {dither::kType, -3, 0, true},
      {dither::kDepth, 7, 6, true},   {dither::kDepth, 100, 6, false}, {dither::kDepth, INT32_MIN, 0, true},
      {dither::kShaping, 3, 2, true}, {dither::kShaping, -1, 0, true}, {dither::kShaping, -2, 0, false},
  };
  for (const auto& step : kSteps) {
    std::int32_t stored = -1;
    EXPECT_EQ(control.Set(step.field, step.value), S_OK);
    EXPECT_EQ(control.Get(step.field, &stored), S_OK);
    EXPECT_EQ(stored, step.stored);
    EXPECT_EQ(TakeChange(), step.changes) << &step - kSteps;
  }
  const DitherSettings outside{-1, 7, 3};
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(control.SetSettings(&outside), S_OK);
    EXPECT_EQ(Settings(), (DitherSettings{0, 5, 2}));
    EXPECT_TRUE(TakeChange());
  }
  EXPECT_EQ(control.SetSettings(nullptr), E_POINTER);
  EXPECT_EQ(control.GetSettings(nullptr), E_POINTER);
  EXPECT_EQ(control.Get(dither::kType, nullptr), E_POINTER);
  EXPECT_FALSE(TakeChange());
}

TEST_F(DitherEffectTest, PresetsAndRecord) {
  constexpr DitherSettings kPresets[] = {{2, 1, 0}, {2, 1, 0}, {0, 3, 0}, {0, 4, 1}, {2, 3, 2}, {2, 4, 2}};
  control.SetNotifyWindow(Window(1), 7);
  for (std::int32_t i = 0; i < 6; ++i) {
    EXPECT_EQ(ApplyPreset(effect, i), S_OK);
    EXPECT_EQ(Settings(), kPresets[i]) << i;
    EXPECT_THAT(poster.Take(), ::testing::ElementsAre(FakePoster::Message{Window(1), 7, 100}));
  }
  Bytes record{32,   0,    0,    0,    0xe4, 0xf3, 0x0d, 0x26, 0x77, 0xac, 0xd2, 0x11, 0x9e, 0x93, 0x00, 0xc0,
               0x4f, 0x68, 0xbe, 0x44, 2,    0,    0,    0,    4,    0,    0,    0,    2,    0,    0,    0};
  FakeStream saved;
  EXPECT_EQ(SaveState(effect, saved, true), S_OK);
  EXPECT_EQ(saved.bytes, record);
  record[23] = 0x80;  // negative
  record[24] = 7;
  FakeStream stored(record);
  EXPECT_EQ(LoadState(effect, stored), S_OK);
  EXPECT_EQ(Settings(), (DitherSettings{0, 5, 2}));
}

}  // namespace
}  // namespace tervan
