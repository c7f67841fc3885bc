#include "ui/dib_format.h"

#include <cstdint>
#include <cstring>

namespace tervan::ui {
namespace {

// As files and resources hold it.
struct Header {
  std::uint32_t header_bytes;
  std::int32_t width;
  std::int32_t height;  // negative: rows from the top down
  std::uint16_t planes;
  std::uint16_t bits_per_pixel;
  std::uint32_t compression;
  std::uint32_t image_bytes;
  std::int32_t horizontal_per_metre;
  std::int32_t vertical_per_metre;
  std::uint32_t colours_used;
  std::uint32_t colours_important;
};
static_assert(sizeof(Header) == 40);

constexpr std::uint32_t kUncompressed = 0;
constexpr std::uint32_t kColourBytes = 4;
constexpr std::int32_t kLongestSide_px = 1 << 15;

// 0 also for depths that there are not.
constexpr std::uint32_t ColoursOfDepth(std::uint16_t bits_per_pixel) {
  return bits_per_pixel == 1 || bits_per_pixel == 4 || bits_per_pixel == 8 ? 1u << bits_per_pixel : 0;
}

constexpr bool IsTrueColour(std::uint16_t bits_per_pixel) {
  return bits_per_pixel == 16 || bits_per_pixel == 24 || bits_per_pixel == 32;
}

}  // namespace

std::optional<DibFormat> FormatOfDib(std::span<const std::byte> dib) {
  Header header;
  if (dib.size() < sizeof header) return std::nullopt;
  std::memcpy(&header, dib.data(), sizeof header);
  if (header.header_bytes != sizeof header || header.compression != kUncompressed) return std::nullopt;
  if (header.width <= 0 || header.width > kLongestSide_px) return std::nullopt;
  if (header.height <= 0 || header.height > kLongestSide_px) return std::nullopt;

  const std::uint32_t most_colours = ColoursOfDepth(header.bits_per_pixel);
  if (most_colours == 0 && !IsTrueColour(header.bits_per_pixel)) return std::nullopt;
  if (header.colours_used > (most_colours != 0 ? most_colours : 256)) return std::nullopt;
  const std::uint32_t colours = header.colours_used != 0 ? header.colours_used : most_colours;

  const std::size_t pixels_at = sizeof header + std::size_t{colours} * kColourBytes;
  const std::uint64_t row_bytes = (std::uint64_t{header.bits_per_pixel} * header.width + 31) / 32 * 4;
  if (dib.size() < pixels_at || dib.size() - pixels_at < row_bytes * header.height) return std::nullopt;
  return DibFormat{{header.width, header.height}, pixels_at};
}

}  // namespace tervan::ui
