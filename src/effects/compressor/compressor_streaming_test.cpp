#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <cstdint>
#include <memory>
#include <thread>
#include <vector>

#include "effects/compressor/compressor_effect.h"
#include "shell/stream_processor.h"
#include "support/testing/allocation_counter.h"
#include "support/testing/fakes.h"

namespace tervan {
namespace {

using tervan::testing::AllocationsOfThisThread;
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
    effect.compressor_control().SetClock(clock);
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

TEST(CompressorStreaming, NothingIsAllocatedBetweenStartAndStop) {
  for (const auto& [tag, bits] : {std::pair{1, 8}, {1, 16}, {1, 32}, {3, 32}, {3, 64}}) {
    SCOPED_TRACE(bits);
    Rig rig;
    rig.Start(static_cast<std::uint16_t>(tag), static_cast<std::uint16_t>(bits));
    std::size_t before = AllocationsOfThisThread();
    for (std::int64_t block = 0; block < 80; ++block) EXPECT_EQ(rig.Run(block * 40 * kMs), S_OK);
    EXPECT_EQ(AllocationsOfThisThread(), before);

    rig.processor.BeginStream(2, 44100);
    std::vector<float> floats(2 * 4096);
    std::uint32_t frames = 4096;
    before = AllocationsOfThisThread();
    rig.processor.Refresh(true);
    EXPECT_EQ(rig.processor.ProcessBuffer(floats.data(), frames, false), S_OK);
    rig.processor.GetTail(floats.data(), &frames);
    EXPECT_EQ(AllocationsOfThisThread(), before);
  }
}

TEST(CompressorStreaming, PageWatchesAndEditsWhileAudioFlows) {
  Rig rig;
  std::atomic<bool> done = false;
  std::jthread page([&] {
    CompressorControl& control = rig.effect.compressor_control();
    for (int i = 0; !done; ++i) {
      rig.clock->now_100ns = i % 100 * kMs;
      CompressorMeters meters{};
      EXPECT_EQ(control.GetMeters(&meters), S_OK);
      EXPECT_TRUE(meters.reduction >= 0.0 && meters.reduction <= 1.0 + 1e-9) << meters.reduction;
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

}  // namespace
}  // namespace tervan
