#include "effects/gate/gate_kernel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <random>
#include <tuple>
#include <type_traits>
#include <vector>

#include "testing/engine_rig.h"
#include "testing/programme.h"

namespace tervan::gate {
namespace {

using namespace tervan::testing;

template <typename Codec>
struct GateKernel : ::testing::Test {};
using Codecs = ::testing::Types<Pcm8Codec, Pcm16Codec, Pcm32Codec, Float32Codec, Float64Codec>;
TYPED_TEST_SUITE(GateKernel, Codecs);

auto Bits(const State& s) {
  const auto bits = [](double x) { return std::bit_cast<std::uint64_t>(x); };
  return std::tuple(s.phase, bits(s.ramp_frames), s.held_frames, s.window_position, bits(s.window_peak), bits(s.valley),
                    bits(s.low_pass));
}

// Draws what streams bring about, and much that few of them do.
class Draw {
 public:
  explicit Draw(std::uint32_t seed) : random_(seed) {}

  template <typename T>
  T Of(std::initializer_list<T> values) {
    return values.begin()[random_() % values.size()];
  }
  double Power(int low, int high) {
    const double mantissa = 1.0 + random_() * 0x1p-32 + random_() * 0x1p-52;
    return std::ldexp(mantissa, Between(low, high));
  }
  int Between(int low, int high) { return low + static_cast<int>(random_() % static_cast<unsigned>(high - low + 1)); }

  Coefficients Settings() {
    const GateSettings settings{Of({0, 1, 3, 20, 90, INT32_MAX, INT32_MIN}), Of({-5, 1, 10, 40, INT32_MAX}),
                                -Between(0, 790), 0};
    return DesignGate(settings, Of({1u, 700u, 8000u, 44100u, 4294967295u}));
  }

  State Start(const Coefficients& c) {
    State s;
    s.phase = Of({Phase::kClosed, Phase::kAttack, Phase::kOpen, Phase::kHold, Phase::kRelease});
    s.ramp_frames = s.phase == Phase::kAttack ? Power(-8, Of({-2, 9})) : Between(0, 500);
    s.held_frames = Between(0, 1 + static_cast<int>(std::min(c.hold_frames, 1000u)));
    s.window_position = Of({0, Between(0, 900)});
    s.window_peak = Of({0.0, Power(-20, 0)});
    s.valley = -Of({0.0, Power(-45, -30), Power(-30, 8)});
    s.low_pass = Of({0.0, dynamics::kLowPassStart, Power(-45, -30), Power(-30, -2)});
    return s;
  }

  // Parts of all levels, down to nothing; floats also hold what is no sound at all.
  template <typename Sample>
  std::vector<Sample> Signal(std::size_t frames, std::size_t channels) {
    std::vector<double> signal = Programme(frames, channels, Between(20, 300), random_());
    double level = 1.0;
    for (double& x : signal) {
      if (Between(0, 400) == 0) level = Of({0.0, 1.0, Power(-16, -1), Power(-40, -24), Power(-1060, -41)});
      x *= level;
    }
    auto samples = SamplesOf<Sample>(signal);
    if constexpr (std::is_floating_point_v<Sample>) {
      using Limits = std::numeric_limits<Sample>;
      for (int i = Between(-5, 5); i > 0; --i) {
        samples[random_() % samples.size()] = Of({Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity(),
                                                  Limits::max(), Limits::denorm_min(), Sample(-0.0)});
      }
    }
    return samples;
  }

 private:
  std::mt19937 random_;
};

template <typename Codec, std::size_t kChannels>
void ExpectPlainBits(std::uint32_t seed) {
  SCOPED_TRACE(::testing::Message() << "channels: " << kChannels << ", seed " << seed);
  Draw draw(seed);
  const Coefficients c = draw.Settings();
  constexpr std::uint32_t kFrames = 700;
  State fast = draw.Start(c);
  State plain = fast;
  auto actual = draw.Signal<typename Codec::Sample>(kFrames, kChannels);
  auto expected = actual;
  for (std::uint32_t at = 0; at < kFrames;) {
    const auto frames =
        std::min(kFrames - at, static_cast<std::uint32_t>(draw.Of({1, 2, 3, 64, draw.Between(1, 500)})));
    RunFrames<Codec, kChannels>(c, fast, actual.data() + at * kChannels, frames);
    RunPlain<Codec, kChannels>(c, plain, expected.data() + at * kChannels, frames);
    at += frames;
    ASSERT_EQ(Bits(fast), Bits(plain)) << "at frame " << at;
  }
  ASSERT_TRUE(SameBits(actual, expected));
}

TYPED_TEST(GateKernel, EqualsThePlainRoutineInEveryBit) {
  for (std::uint32_t seed = 0; seed < 3000 && !this->HasFatalFailure(); ++seed) {
    ExpectPlainBits<TypeParam, 1>(seed);
    ExpectPlainBits<TypeParam, 2>(seed);
  }
}

}  // namespace
}  // namespace tervan::gate
