#include "ui/dib_format.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include "gtest/gtest.h"

namespace tervan::ui {
namespace {

// Numbers of the header by their place: its size, width, height, planes and depth, compression, ..., colours used.
enum Field { kHeaderBytes, kWidth, kHeight, kDepth, kCompression, kColours = 8 };

// What is different from a bitmap of 3 x 2 pixels with 24 bits, and where its pixels lie; 0: it is refused.
struct Case {
  Field field;
  std::uint32_t value;
  std::size_t bytes;
  std::size_t pixels_at;
};
constexpr std::uint32_t Bits(std::uint32_t bits) { return bits << 16 | 1; }
constexpr Case kCases[] = {
    {kDepth, Bits(24), 40 + 24, 40},
    {kDepth, Bits(24), 40 + 23, 0},
    {kDepth, Bits(24), 39, 0},
    {kDepth, Bits(8), 40 + 1024 + 8, 40 + 1024},
    {kDepth, Bits(8), 40 + 1024, 0},
    {kDepth, Bits(1), 40 + 8 + 8, 48},
    {kDepth, Bits(7), 4096, 0},
    {kColours, 5, 40 + 20 + 24, 60},
    {kColours, 257, 4096, 0},
    {kColours, 0xFFFFFFFF, 4096, 0},
    {kHeaderBytes, 12, 4096, 0},
    {kHeaderBytes, 124, 4096, 0},
    {kCompression, 1, 4096, 0},
    {kHeight, static_cast<std::uint32_t>(-2), 4096, 0},
    {kWidth, 0, 4096, 0},
    {kWidth, 0x7FFFFFFF, 4096, 0},
};

TEST(DibFormat, FindsThePixelsOfWhatCanBeDrawnOnly) {
  for (const Case& c : kCases) {
    SCOPED_TRACE(testing::Message() << "field " << c.field << ", value " << c.value << ", bytes " << c.bytes);
    std::uint32_t header[10] = {40, 3, 2, Bits(24)};
    header[c.field] = c.value;
    std::vector<std::byte> dib(c.bytes);
    std::memcpy(dib.data(), header, std::min(sizeof header, c.bytes));
    const auto format = FormatOfDib(dib);
    EXPECT_EQ(format ? format->pixels_at : 0, c.pixels_at);
  }
}

}  // namespace
}  // namespace tervan::ui
