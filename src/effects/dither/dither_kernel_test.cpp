#include "effects/dither/dither_kernel.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>
#include <random>
#include <type_traits>
#include <vector>

#include "effects/dither/dither_plain.h"
#include "effects/dither/dither_rig.h"
#include "effects/dither/dither_settings.h"
#include "shell/sample_codec.h"
#include "testing/engine_rig.h"

namespace tervan {
namespace {

using namespace tervan::testing;

using Codecs = ::testing::Types<Pcm8Codec, Pcm16Codec, Pcm32Codec, Float32Codec, Float64Codec>;

// Material of one kind for a whole call: what is right for most samples of it is not what is rare.
template <typename Sample>
Sample SampleOf(std::uint32_t kind, std::mt19937& random) {
  const double u = random() * 0x1p-31 - 1.0;
  if constexpr (std::is_integral_v<Sample>) {
    const auto any = static_cast<Sample>(random());
    constexpr auto kZero = static_cast<Sample>(std::is_signed_v<Sample> ? 0 : 128);
    switch (kind % 4) {
      case 0: return any;
      case 1: return kZero;
      case 2: return u < 0.0 ? std::numeric_limits<Sample>::min() : std::numeric_limits<Sample>::max();
    }
    return random() % 16 == 0 ? any : kZero;
  } else {
    using Limits = std::numeric_limits<Sample>;
    constexpr Sample kRare[] = {Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity(),  Limits::max(),
                                Limits::lowest(),    Limits::min(),      Limits::denorm_min(), Sample{-0.0}};
    const auto usual = static_cast<Sample>(u);
    switch (kind % 9) {
      case 0: return usual;
      case 1: return 0;
      case 2: return usual * Limits::min();
      case 3: return std::ldexp(std::round(usual * 64), -9);  // halfway between integers
      case 4: return static_cast<Sample>(std::ldexp(u, static_cast<int>(random() % 100) - 90));
      case 5: return random() % 64 == 0 ? kRare[random() % std::size(kRare)] : usual;
      case 6: return kRare[random() % std::size(kRare)];
      case 7: {  // at 32 bits: now large, now all but halfway between integers
        const double lsb = random() % 2 == 0 ? std::round(u * 0x1p30) : std::round(u) + 0.5 + u * 0x1p-28;
        return static_cast<Sample>(lsb * 0x1p-31);
      }
    }
    return usual * Sample{1e-6};
  }
}

template <typename Codec>
struct DitherKernel : ::testing::Test {};
TYPED_TEST_SUITE(DitherKernel, Codecs);

TYPED_TEST(DitherKernel, EqualsThePlainRoutineInEveryBitOfSamplesAndState) {
  using Sample = typename TypeParam::Sample;
  std::mt19937 random(1);
  for (std::uint32_t round = 0; round < 1000; ++round) {
    const std::uint32_t bits = dither::kWordLengthBits[random() % std::size(dither::kWordLengthBits)];
    const std::uint32_t type = random() % kDitherTypeCount, shaping = random() % 4, channels = 1 + random() % 2;
    DitherRig fast(bits, type, shaping, round), plain(bits, type, shaping, round);
    for (std::uint32_t call = 0; call < 6; ++call) {
      const std::uint32_t kind = random();
      const std::uint32_t frames = 1 + random() % (call == 3 ? 1500 : call % 2 == 0 ? 150 : 3);
      std::vector<Sample> actual(frames * channels);
      for (Sample& sample : actual) sample = SampleOf<Sample>(kind, random);
      auto expected = actual;
      const SimdLevel level = random() % 2 == 0 ? BestSimdLevel() : SimdLevel::kSse2;
      dither_kernel::Process<TypeParam>(fast.State(), actual.data(), frames, channels, level);
      if constexpr (std::is_integral_v<Sample>) {
        dither_plain::ProcessFrames<TypeParam>(plain.State(), expected.data(), frames, channels);
      } else {
        dither_plain::Process<TypeParam>(plain.State(), expected.data(), frames, channels);
      }
      ASSERT_TRUE(SameBits(actual, expected)) << bits << ' ' << type << shaping << channels << ' ' << kind % 9;
      ASSERT_TRUE(fast == plain) << bits << ' ' << type << shaping << channels << ' ' << kind % 9;
    }
  }
}

}  // namespace
}  // namespace tervan
