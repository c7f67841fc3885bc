#include "effects/compressor/compressor_control.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <memory>
#include <ostream>
#include <thread>
#include <tuple>
#include <vector>

#include "effects/compressor/compressor_effect.h"
#include "shell/stream_processor.h"
#include "testing/fakes.h"

namespace tervan {

static bool operator==(const CompressorMeters& a, const CompressorMeters& b) {
  return std::memcmp(&a, &b, sizeof a) == 0;
}
static void PrintTo(const CompressorMeters& m, std::ostream* os) {
  *os << m.input_left << ' ' << m.input_right << ' ' << m.output_left << ' ' << m.output_right << ' ' << m.reduction;
}

namespace {

using tervan::testing::FakeClock;
using tervan::testing::FakePoster;
using tervan::testing::Window;

constexpr std::int64_t kSecond = 10000000;  // 100-ns units
constexpr std::int64_t kMs = kSecond / 1000;

CompressorMeters Record(double x) { return {x, 2 * x, 3 * x, 4 * x, 5 * x}; }

struct CompressorControlTest : ::testing::Test {
  CompressorMeters Meters() {
    CompressorMeters meters{};
    EXPECT_EQ(control.GetMeters(&meters), S_OK);
    return meters;
  }
  CompressorMeters MetersAt(std::int64_t now_100ns) {
    clock->now_100ns = now_100ns;
    return Meters();
  }
  void StartClockedMeters() {
    control.SetClock(clock);
    control.StartMeters();
  }
  void PutAt(int second, double value) {  // one record per second of stream time
    while (seconds < second) control.AdvanceStreamTime(48000, 48000), ++seconds;
    control.PutMeters(Record(value));
  }

  FakePoster poster;
  CompressorControl control{poster};
  std::shared_ptr<FakeClock> clock = std::make_shared<FakeClock>();
  int seconds = 0;
};

TEST_F(CompressorControlTest, WithoutClockOrHistoryTheLatestRecordCounts) {
  EXPECT_EQ(Meters(), kIdleMeters);
  control.StartMeters();  // no clock, no history
  control.PutMeters(Record(1));
  control.PutMeters(Record(2));
  EXPECT_EQ(Meters(), Record(2));
  control.SetClock(clock);  // the clock came after the start
  clock->now_100ns = kSecond;
  EXPECT_EQ(Meters(), Record(2));
  control.ResetMeters();
  EXPECT_EQ(Meters(), kIdleMeters);
}

TEST_F(CompressorControlTest, RecordOfTheClocksTimeIsInterpolated) {
  StartClockedMeters();
  PutAt(1, 10);
  PutAt(2, 20);
  PutAt(4, 40);
  EXPECT_EQ(MetersAt(0), kIdleMeters);
  EXPECT_EQ(MetersAt(-5), Record(10));
  EXPECT_EQ(MetersAt(kSecond / 2), Record(10));  // before the first one
  EXPECT_EQ(MetersAt(kSecond), Record(10));
  EXPECT_EQ(MetersAt(kSecond + kSecond / 4), Record(12.5));
  EXPECT_EQ(MetersAt(2 * kSecond), Record(20));
  EXPECT_EQ(MetersAt(3 * kSecond), Record(30));
  EXPECT_EQ(MetersAt(4 * kSecond), Record(40));
  EXPECT_EQ(MetersAt(9 * kSecond), Record(40));
  EXPECT_EQ(MetersAt(kSecond), Record(40)) << "older records are forgotten once passed";
  PutAt(5, 50);
  control.SetClock(nullptr);
  EXPECT_EQ(Meters(), Record(50));
}

TEST_F(CompressorControlTest, ChunksOfOneSampleShareItsEnd) {
  StartClockedMeters();
  PutAt(1, 10);
  PutAt(1, 11);
  PutAt(2, 20);
  EXPECT_EQ(MetersAt(kSecond), Record(10));
  // Between records of one time there is nothing to interpolate: the first stays, until newer ones have taken its
  // place.
  EXPECT_EQ(MetersAt(kSecond + kSecond / 2), Record(10));
}

TEST_F(CompressorControlTest, ChunksThatTheEnginePublishesAreOneRecordASample) {
  StartClockedMeters();
  control.PublishMeters(Record(3));  // at the start of the stream, where nothing is kept yet
  control.AdvanceStreamTime(48000, 48000);
  control.PublishMeters({1, 8, 3, 6, 0.5});
  control.PublishMeters({2, 7, 4, 5, 0.25});
  control.PublishMeters({0, 0, 0, 0, 1});
  control.AdvanceStreamTime(48000, 48000);
  control.PublishMeters(Record(20));
  EXPECT_EQ(MetersAt(kSecond), (CompressorMeters{2, 8, 4, 6, 0.25}));
  EXPECT_EQ(MetersAt(2 * kSecond), Record(20));
  control.EndMeters();
  EXPECT_EQ(MetersAt(3 * kSecond), kIdleMeters) << "the stream has ended";
  control.SetClock(nullptr);
  control.PublishMeters(Record(5));
  EXPECT_EQ(Meters(), Record(5)) << "the latest one is as it was published";
}

TEST_F(CompressorControlTest, OldestRecordsMakeWayAfterSixtyThree) {
  StartClockedMeters();
  for (int second = 1; second <= 100; ++second) PutAt(second, second);
  // 64 places, one of them always free between the newest and the oldest: 38 to 100 are left.
  EXPECT_EQ(MetersAt(kSecond), Record(38));
  EXPECT_EQ(MetersAt(38 * kSecond + kSecond / 2), Record(38.5));
  EXPECT_EQ(MetersAt(100 * kSecond), Record(100));
  EXPECT_EQ(MetersAt(500 * kSecond), Record(100));
}

TEST_F(CompressorControlTest, ResetEmptiesTheHistoryAndRestartsItsTime) {
  StartClockedMeters();
  PutAt(1, 10);
  PutAt(2, 20);
  control.ResetMeters();
  EXPECT_EQ(MetersAt(2 * kSecond), kIdleMeters);
  control.AdvanceStreamTime(48000, 48000);
  control.PutMeters(Record(7));
  EXPECT_EQ(MetersAt(kSecond), Record(7));
}

TEST_F(CompressorControlTest, StreamTimeRoundsAndStandsStillWithoutARate) {
  for (const auto& [frames, rate_hz, duration_100ns] :
       {std::tuple{1u, 44100u, 227}, {441u, 44100u, 100000}, {480u, 0u, 0}}) {
    SCOPED_TRACE(rate_hz);
    control.ResetMeters();
    StartClockedMeters();
    control.AdvanceStreamTime(frames, rate_hz);
    control.PutMeters(Record(0));
    control.AdvanceStreamTime(10, 1);  // ten seconds
    control.PutMeters(Record(10));
    EXPECT_EQ(MetersAt(duration_100ns + 5 * kSecond), Record(5));
  }
}

struct CompressorEffectTest : ::testing::Test {
  CompressorMeters Meters() {
    CompressorMeters meters{};
    effect.settings_control().GetMeters(&meters);
    return meters;
  }
  HRESULT Transform(std::vector<float>& frames) {
    const auto bytes = static_cast<std::uint32_t>(frames.size() * sizeof(float));
    SampleView sample{frames.data(), bytes, bytes, false};
    processor.AdvanceStreamTime(bytes);
    return processor.Transform(sample);
  }
  void Connect(std::uint16_t channels) { processor.SetFormat(FloatFormat(channels, 48000)); }

  FakePoster poster;
  CompressorEffect effect{poster};
  StreamProcessor processor{effect};
};

TEST_F(CompressorEffectTest, StartLoadsTheSettingsAndTheWatchedStreamMeters) {
  EXPECT_TRUE(effect.NeedsSettings());
  EXPECT_EQ(ApplyPreset(effect, 8), S_OK);
  EXPECT_EQ(effect.Start(), S_OK);
  EXPECT_FALSE(effect.NeedsSettings());
  EXPECT_FALSE(effect.control().IsChanged());

  std::vector<float> data(2 * 48000, 1.0f);
  std::uint32_t frames = 48000;
  EXPECT_EQ(effect.Process(SampleFormat::kFloat32, ProcessMode::kContinuous, data.data(), &frames, false), S_OK);
  EXPECT_NEAR(data.back(), 0.501187f, 1e-6f);  // limited to -6 dB
  EXPECT_EQ(Meters(), kIdleMeters) << "nobody watches";

  effect.control().SetNotifyWindow(Window(1), 5);
  frames = 100;
  EXPECT_EQ(effect.Process(SampleFormat::kFloat32, ProcessMode::kContinuous, data.data(), &frames, false), S_OK);
  EXPECT_GT(Meters().input_left, 0.5);
  EXPECT_EQ(effect.Stop(), S_OK);
  EXPECT_EQ(Meters(), kIdleMeters);
}

TEST_F(CompressorEffectTest, PageWatchesAndEditsWhileAudioFlows) {
  const auto clock = std::make_shared<FakeClock>();
  CompressorControl& control = effect.settings_control();
  control.SetClock(clock);
  control.SetNotifyWindow(Window(1), 5);  // metering is on only when watched
  std::atomic<bool> done = false;
  std::jthread page([&] {
    for (int i = 0; !done; ++i) {
      clock->now_100ns = i % 100 * kMs;
      CompressorMeters meters{};
      EXPECT_EQ(control.GetMeters(&meters), S_OK);
      EXPECT_TRUE(std::isfinite(meters.reduction) && meters.reduction >= 0.0) << meters.reduction;
      control.Set(static_cast<std::uint32_t>(i % 6), static_cast<float>(i % 30));
      if (i % 8 == 0) control.SetClock(clock);
    }
  });
  Connect(2);
  std::vector<float> frames(4000);
  for (int run = 0; run < 10; ++run) {
    EXPECT_EQ(processor.StartStreaming(), S_OK);
    for (int block = 0; block < 25; ++block) EXPECT_EQ(Transform(frames), S_OK);
    EXPECT_EQ(processor.StopStreaming(), S_OK);
  }
  done = true;
}

// Buffers have their exact size, so that a sanitizer sees a frame too many.
TEST_F(CompressorEffectTest, DirectBuffersHaveTheChannelsOfTheFormatInForce) {
  const auto is_lowered = [&](std::uint16_t channels) {
    std::vector<float> samples(100u * channels, 0.5f);
    EXPECT_EQ(processor.ProcessBuffer(samples.data(), 100, false), S_OK);
    return samples.back() < 0.3f;
  };
  effect.settings_control().Set(static_cast<std::uint32_t>(CompressorParam::kOutputGain), -12.0f);
  Connect(1);
  EXPECT_TRUE(is_lowered(1));  // without a stream begun
  EXPECT_EQ(processor.BeginStream(2, 48000), S_OK);
  EXPECT_TRUE(is_lowered(2));
  EXPECT_EQ(processor.EndStream(), S_OK);
  Connect(1);
  EXPECT_TRUE(is_lowered(1));
  EXPECT_EQ(processor.BeginStream(1, 48000), S_OK);
  Connect(2);
  EXPECT_TRUE(is_lowered(2));
}

// A source may attach its type to any sample. The gain goes on where it is, and only a new rate needs new coefficients.
TEST_F(CompressorEffectTest, FormatSetWithinTheStreamDoesNotRestartIt) {
  Connect(2);
  EXPECT_EQ(processor.StartStreaming(), S_OK);
  ApplyPreset(effect, 8);
  std::vector<float> frames(40000, 1.0f);
  EXPECT_EQ(Transform(frames), S_OK);
  const float settled = frames.back();
  EXPECT_NEAR(settled, std::pow(10.0, -6.0 / 20.0), 1e-3);
  effect.control().SetNotifyWindow(Window(1), 5);
  for (const std::uint32_t rate_hz : {48000u, 96000u}) {
    processor.SetFormat(FloatFormat(2, rate_hz));
    frames.assign(40000, 1.0f);
    EXPECT_EQ(Transform(frames), S_OK);
    EXPECT_NEAR(frames.front(), settled, 1e-3);
  }
  EXPECT_TRUE(poster.Take().empty());
  EXPECT_TRUE(processor.has_data());
}

}  // namespace
}  // namespace tervan
