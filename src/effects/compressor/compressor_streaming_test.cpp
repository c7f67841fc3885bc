#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdint>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

#include "effects/compressor/compressor_effect.h"
#include "shell/stream_processor.h"
#include "testing/fakes.h"

namespace tervan {
namespace {

using tervan::testing::FakePoster;
using tervan::testing::Window;

constexpr std::int64_t kMs = 10000;  // 100-ns units

class TestClock : public StreamClock {
 public:
  std::int64_t Now_100ns() override { return now_100ns; }
  std::atomic<std::int64_t> now_100ns = 0;
};

struct Rig {
  Rig() {
    effect.settings_control().SetClock(clock);
    effect.control().SetNotifyWindow(Window(1), 5);  // metering is on only when watched
    const SegmentData ramp{0, 1000 * kMs, 0, 1, kCurveLinear, 0};
    effect.params()->AddEnvelope(kAllParams, 1, &ramp);
  }
  void Start(std::uint16_t tag, std::uint16_t bits) {
    StreamFormat format{tag, 2, 48000, 0, 0, bits, 0};
    format = NormalisedFormat(&format);
    processor.SetFormat(format);
    EXPECT_EQ(processor.StartStreaming(), S_OK);
    buffer.assign(2000u * format.nBlockAlign, 0);
  }
  HRESULT Run(std::int64_t start_100ns) {
    const auto bytes = static_cast<std::uint32_t>(buffer.size());
    SampleView sample{buffer.data(), bytes, bytes, start_100ns == 0};
    processor.AdvanceStreamTime(bytes);
    processor.SetBlock({start_100ns, start_100ns + 40 * kMs});
    return processor.Transform(sample);
  }

  FakePoster poster;
  std::shared_ptr<TestClock> clock = std::make_shared<TestClock>();
  CompressorEffect effect{poster};
  StreamProcessor processor{effect};
  std::vector<std::uint8_t> buffer;
};

TEST(CompressorStreaming, PageWatchesAndEditsWhileAudioFlows) {
  Rig rig;
  std::atomic<bool> done = false;
  std::jthread page([&] {
    CompressorControl& control = rig.effect.settings_control();
    for (int i = 0; !done; ++i) {
      rig.clock->now_100ns = i % 100 * kMs;
      CompressorMeters meters{};
      EXPECT_EQ(control.GetMeters(&meters), S_OK);
      EXPECT_TRUE(std::isfinite(meters.reduction) && meters.reduction >= 0.0) << meters.reduction;
      control.Set(static_cast<std::uint32_t>(i % 6), static_cast<float>(i % 30));
      if (i % 8 == 0) control.SetClock(rig.clock);
      rig.effect.SetParam(static_cast<std::uint32_t>(CompressorParam::kBypass), static_cast<float>(i % 2));
    }
  });
  for (int run = 0; run < 10; ++run) {
    rig.Start(kTagFloat, 32);
    for (std::int64_t block = 0; block < 25; ++block) EXPECT_EQ(rig.Run(block * 40 * kMs), S_OK);
    EXPECT_EQ(rig.processor.StopStreaming(), S_OK);
  }
  done = true;
}

// Buffers have their exact size, so that a sanitizer sees a frame too many.
TEST(CompressorStreaming, DirectBuffersHaveTheChannelsOfTheFormatInForce) {
  FakePoster poster;
  CompressorEffect effect(poster);
  StreamProcessor processor(effect);
  const auto connect = [&](std::uint16_t channels) {
    StreamFormat format{kTagPcm, channels, 48000, 0, 0, 16, 0};
    processor.SetFormat(NormalisedFormat(&format));
  };
  const auto is_lowered = [&](std::uint16_t channels) {
    std::vector<float> samples(100u * channels, 0.5f);
    EXPECT_EQ(processor.ProcessBuffer(samples.data(), 100, false), S_OK);
    return samples.back() < 0.3f;
  };
  effect.settings_control().Set(static_cast<std::uint32_t>(CompressorParam::kOutputGain), -12.0f);
  connect(1);
  EXPECT_TRUE(is_lowered(1));  // without a stream begun
  EXPECT_EQ(processor.BeginStream(2, 48000), S_OK);
  EXPECT_TRUE(is_lowered(2));
  EXPECT_EQ(processor.EndStream(), S_OK);
  connect(1);
  EXPECT_TRUE(is_lowered(1));
  EXPECT_EQ(processor.BeginStream(1, 48000), S_OK);
  connect(2);
  EXPECT_TRUE(is_lowered(2));
}

// A source may attach its type to any sample. The gain goes on where it is, and only a new rate needs new coefficients.
TEST(CompressorStreaming, FormatSetWithinTheStreamDoesNotRestartIt) {
  Rig rig;
  rig.Start(kTagFloat, 32);
  rig.effect.params()->FlushEnvelope(kAllParams, 0, 1000 * kMs);
  ApplyPreset(rig.effect, 8);
  const auto last_of_run = [&] {
    auto* const samples = reinterpret_cast<float*>(rig.buffer.data());
    std::fill_n(samples, 4000, 1.0f);
    EXPECT_EQ(rig.Run(kMs), S_OK);
    return std::pair(samples[0], samples[3999]);
  };
  for (int i = 0; i < 10; ++i) last_of_run();
  const float settled = last_of_run().second;
  EXPECT_NEAR(settled, std::pow(10.0, -6.0 / 20.0), 1e-3);
  StreamFormat format = rig.processor.format();
  rig.poster.Take();
  rig.processor.SetFormat(format);
  EXPECT_NEAR(last_of_run().first, settled, 1e-3);
  format.nSamplesPerSec = 96000;
  rig.processor.SetFormat(format);
  EXPECT_NEAR(last_of_run().first, settled, 1e-3);
  EXPECT_TRUE(rig.poster.Take().empty());
  EXPECT_TRUE(rig.processor.has_data());
}

}  // namespace
}  // namespace tervan
