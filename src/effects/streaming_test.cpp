// What must hold in the stream of each effect.
#include <gtest/gtest.h>
#include <xmmintrin.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <random>
#include <type_traits>
#include <utility>
#include <vector>

#include "effects/compressor/compressor_effect.h"
#include "effects/dither/dither_effect.h"
#include "effects/eq/eq_effect.h"
#include "effects/gate/gate_effect.h"
#include "shell/stream_processor.h"
#include "testing/allocation_counter.h"
#include "testing/engine_rig.h"
#include "testing/fakes.h"
#include "testing/programme.h"

namespace tervan {
namespace {

using tervan::testing::AllocationsOfThisThread;
using tervan::testing::FakeClock;
using tervan::testing::FakePoster;
using tervan::testing::Window;

constexpr std::int64_t kMs = 10000;  // 100-ns units

// An effect that is watched and automated as far as it can be.
template <typename EffectType>
struct EffectStreaming : ::testing::Test {
  EffectStreaming() {
    if constexpr (std::is_same_v<EffectType, CompressorEffect>) {
      effect.settings_control().SetClock(clock);
    }
    effect.control().SetNotifyWindow(Window(1), 5);
  }
  void Automate() {
    const SegmentData ramp{0, 1000 * kMs, 0, 1, kCurveLinear, 0};
    if (effect.params()) effect.params()->AddEnvelope(kAllParams, 1, &ramp);
  }
  void Start(int tag, int bits, std::uint32_t rate_hz) {
    const StreamFormat offered{static_cast<std::uint16_t>(tag), 2, rate_hz, 0, 0, static_cast<std::uint16_t>(bits), 0};
    processor.SetFormat(NormalisedFormat(&offered));
    EXPECT_EQ(processor.StartStreaming(), S_OK);
  }
  HRESULT Run(void* data, std::size_t bytes, std::int64_t start_100ns) {
    const auto length = static_cast<std::uint32_t>(bytes);
    SampleView sample{data, length, length, start_100ns == 0};
    processor.AdvanceStreamTime(length);
    processor.SetBlock({start_100ns, start_100ns + 40 * kMs});
    return processor.Transform(sample);
  }

  std::shared_ptr<FakeClock> clock = std::make_shared<FakeClock>(40 * kMs);
  FakePoster poster;
  EffectType effect{poster};
  StreamProcessor processor{effect};
};
using AllEffects = ::testing::Types<CompressorEffect, EqEffect, GateEffect, DitherEffect>;
TYPED_TEST_SUITE(EffectStreaming, AllEffects);

TYPED_TEST(EffectStreaming, NothingIsAllocatedBetweenStartAndStop) {
  this->Automate();
  std::vector<std::uint8_t> buffer(2000 * 16);
  for (const auto& [tag, bits] : {std::pair{1, 8}, {1, 16}, {1, 32}, {3, 32}, {3, 64}}) {
    SCOPED_TRACE(bits);
    this->Start(tag, bits, 48000);
    const std::size_t before = AllocationsOfThisThread();
    for (std::int64_t block = 0; block < 80; ++block) {
      EXPECT_EQ(this->Run(buffer.data(), buffer.size(), block * 40 * kMs), S_OK);
      this->effect.control().MarkChanged();
    }
    EXPECT_EQ(AllocationsOfThisThread(), before);
    this->processor.StopStreaming();
  }
  this->processor.BeginStream(2, 44100);
  std::vector<float> floats(2 * 4096);
  std::uint32_t frames = 4096;
  const std::size_t before = AllocationsOfThisThread();
  this->processor.Refresh(true);
  EXPECT_EQ(this->processor.ProcessBuffer(floats.data(), frames, false), S_OK);
  this->processor.GetTail(floats.data(), &frames);
  EXPECT_EQ(AllocationsOfThisThread(), before);
  floats = std::vector<float>(5);  // the counter does count
  EXPECT_EQ(AllocationsOfThisThread(), before + 1);
}

// A host may round otherwise, flush subnormals, and have exceptions that would end it.
TYPED_TEST(EffectStreaming, TheHostsFloatingPointEnvironmentDoesNotMatter) {
  constexpr unsigned kControlBits = 0xffc0;
  constexpr unsigned kUnmasked = 0x1900;  // invalid, division by zero, overflow
  constexpr unsigned kFlushing = 0x9fc0;
  struct Environment {
    unsigned sse;
    std::uint16_t x87;
    void Set() const {
      _mm_setcsr(sse);
      asm volatile("fnclex\n\tfldcw %0" : : "m"(x87));
    }
    static Environment Current() {
      Environment current{_mm_getcsr() & kControlBits, 0};
      asm volatile("fnstcw %0" : "=m"(current.x87));
      return current;
    }
    bool operator==(const Environment&) const = default;
  };
  const Environment usual = Environment::Current();
  const Environment hosts[] = {usual,
                               {_MM_ROUND_DOWN | kUnmasked, 0x0072},  // the x87 unit in single precision, unmasked
                               {_MM_ROUND_UP | kFlushing, 0x027f},
                               {_MM_ROUND_TOWARD_ZERO | kUnmasked, 0x0f7f}};
  const auto set_up = [this] {
    if constexpr (std::is_same_v<TypeParam, DitherEffect>) {
      this->effect.settings_control().Set(dither::kType, 0);  // any noise is another one with every start
    } else {
      EXPECT_EQ(ApplyPreset(this->effect, 3), S_OK);
    }
  };
  set_up();
  auto programme = testing::SamplesOf<float>(testing::Programme(6000, 2, 500, 3));
  programme[1001] = std::numeric_limits<float>::signaling_NaN();
  programme[2002] = std::numeric_limits<float>::infinity();
  std::vector<float> expected;
  for (const Environment& host : hosts) {
    auto samples = programme;
    host.Set();
    this->processor.BeginStream(2, 44100);
    this->processor.ProcessBuffer(samples.data(), 3000, false);
    this->processor.Refresh(true);
    this->Run(samples.data() + 6000, 3000 * 8, 0);
    set_up();
    this->processor.ProcessBuffer(samples.data(), 0, true);
    this->processor.EndStream();
    const Environment after = Environment::Current();
    usual.Set();
    EXPECT_EQ(after, host);
    if (expected.empty()) expected = samples;
    EXPECT_TRUE(testing::SameBits(samples, expected)) << std::hex << host.sse;
  }
  EXPECT_FALSE(testing::SameBits(expected, programme));
}

// Hosts load whatever their files hold. Outputs must stay finite, and a sanitizer sees the rest.
TYPED_TEST(EffectStreaming, NoStoredRecordAndNoRateDoesHarm) {
  constexpr std::int32_t kWords[] = {0, 1, -1, 2, 3, 99, 1000, -1000, INT32_MAX, INT32_MIN, 0x7fc00000, 0x7f800000};
  std::mt19937 random(5);
  const auto programme = testing::SamplesOf<double>(testing::Programme(3000, 2, 500, 3));
  const std::size_t words = this->effect.traits().stored.record_bytes / 4;
  for (const std::uint32_t rate_hz : {0u, 1u, 49u, 8000u, 44100u, 768000u, UINT32_MAX}) {
    this->Start(3, 64, rate_hz);
    for (int i = 0; i < 60; ++i) {
      std::vector<std::int32_t> record(words);
      for (std::int32_t& word : record) {
        word = random() % 4 == 0 ? static_cast<std::int32_t>(random()) : kWords[random() % std::size(kWords)];
      }
      this->effect.SetRecord(record.data());
      auto samples = programme;
      EXPECT_EQ(this->Run(samples.data(), samples.size() * 8, 0), S_OK);
      ASSERT_TRUE(std::all_of(samples.begin(), samples.end(), [](double x) { return std::isfinite(x); }))
          << rate_hz << " Hz, record " << ::testing::PrintToString(record);
    }
    this->processor.StopStreaming();
  }
}

}  // namespace
}  // namespace tervan
