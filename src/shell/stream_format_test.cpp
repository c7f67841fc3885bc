#include "shell/stream_format.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

namespace tervan {
namespace {

StreamFormat Offered(std::uint16_t tag, std::uint16_t channels, std::uint16_t bits) {
  return {tag, channels, 44100, 1, 0, bits, 22};  // sizes that nobody should trust
}

TEST(StreamFormat, OnlyMonoAndStereoOfFiveKindsAreAccepted) {
  for (std::uint32_t tag : {0u, 1u, 2u, 3u, 0xFFFEu}) {
    for (std::uint16_t channels = 0; channels < 5; ++channels) {
      for (const std::uint16_t bits : {0, 4, 8, 16, 24, 32, 64, 80}) {
        const StreamFormat format = Offered(static_cast<std::uint16_t>(tag), channels, bits);
        const bool pcm = tag == 1 && (bits == 8 || bits == 16 || bits == 32);
        const bool floating = tag == 3 && (bits == 32 || bits == 64);
        const bool accepted = (channels == 1 || channels == 2) && (pcm || floating);
        EXPECT_EQ(CheckFormat({true, false, &format, sizeof format}), accepted ? S_OK : E_INVALIDARG)
            << tag << ' ' << channels << ' ' << bits;
      }
    }
  }
}

TEST(StreamFormat, MediaTypesAroundItCount) {
  const StreamFormat format = Offered(1, 2, 16);
  EXPECT_EQ(CheckFormat({true, false, &format, 16}), S_OK);
  EXPECT_EQ(CheckFormat({true, false, &format, 15}), E_INVALIDARG);
  EXPECT_EQ(CheckFormat({true, false, nullptr, 16}), E_INVALIDARG);
  EXPECT_EQ(CheckFormat({true, true, &format, 18}), E_INVALIDARG);
  EXPECT_EQ(CheckFormat({false, false, &format, 18}), E_INVALIDARG);
}

TEST(StreamFormat, SizesAreComputedAnew) {
  const StreamFormat given = Offered(1, 2, 16);
  char block[kFormatHeadBytes];  // ends where the extra size would begin
  std::memcpy(block, &given, sizeof block);
  const StreamFormat format = NormalisedFormat(block);
  EXPECT_EQ(format.nBlockAlign, 4);
  EXPECT_EQ(format.nAvgBytesPerSec, 176400u);
  EXPECT_EQ(format.cbSize, 0);
  EXPECT_EQ(format.nSamplesPerSec, 44100u);
}

}  // namespace
}  // namespace tervan
