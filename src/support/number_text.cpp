#include "support/number_text.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <limits>

#include "support/saturate.h"

namespace tervan {
namespace {

// Wider than the value, whose lowest has no positive counterpart.
std::int64_t Magnitude(std::int32_t value) { return std::abs(std::int64_t{value}); }

std::u16string DigitsOf(std::int64_t magnitude) {
  const std::string digits = std::to_string(magnitude);
  return {digits.begin(), digits.end()};
}

std::u16string WithSign(bool negative, const std::u16string& magnitude, const NumberFormat& format) {
  return negative ? format.negative_sign + magnitude : magnitude;
}

// Characters that keyboards and number formats use for one another become the same one, and marks of writing direction,
// which number formats put beside signs and nobody sees, vanish.
std::u16string Folded(std::u16string_view text) {
  std::u16string folded;
  for (const char16_t c : text) {
    switch (c) {
      case u'\u00A0':  // no-break space
      case u'\u202F':  // narrow no-break space
        folded += u' ';
        break;
      case u'\u2019': folded += u'\''; break;
      case u'\u2212': folded += u'-'; break;
      case u'\u200E':  // left-to-right mark
      case u'\u200F':  // right-to-left mark
      case u'\u061C':  // Arabic letter mark
        break;
      default: folded += c;
    }
  }
  return folded;
}

// A separator that reads as the decimal sign does would turn 2500 into 2.5.
std::u16string_view GroupSeparator(const NumberFormat& format) {
  if (Folded(format.group_separator) == Folded(format.decimal_sign)) return {};
  return format.group_separator;
}

std::u16string Grouped(const std::u16string& digits, const NumberFormat& format) {
  std::u16string text = digits;
  std::u16string_view sizes = format.grouping;
  std::size_t size = 0;
  for (std::size_t left = digits.size();;) {
    if (sizes.empty()) return text;
    if (sizes.front() != u'0') {  // a 0 stays in front and repeats the size
      size = static_cast<std::size_t>(sizes.front()) - u'0';
      sizes.remove_prefix(std::min<std::size_t>(2, sizes.size()));
    }
    if (size == 0 || left <= size) return text;
    left -= size;
    text.insert(left, GroupSeparator(format));
  }
}

// Reads a folded text from its left.
class Reader {
 public:
  explicit Reader(std::u16string_view text) : rest_(text) {}

  bool AtEnd() const { return rest_.empty(); }

  bool Take(std::u16string_view token) {
    if (token.empty() || !rest_.starts_with(token)) return false;
    rest_.remove_prefix(token.size());
    return true;
  }

  void TakeBlanks() {
    while (Take(u" ")) {
    }
  }

  // Whether there were any.
  bool TakeDigits(std::string& digits) {
    const std::size_t count = std::min(rest_.find_first_not_of(u"0123456789"), rest_.size());
    for (const char16_t digit : rest_.substr(0, count)) digits += static_cast<char>(digit);
    rest_.remove_prefix(count);
    return count > 0;
  }

 private:
  std::u16string_view rest_;
};

struct Digits {
  bool negative = false;
  std::string integer;
  std::string decimals;
};

void TakeGroups(Reader& reader, std::u16string_view separator, std::string& digits) {
  if (!reader.TakeDigits(digits)) return;
  for (;;) {
    Reader next = reader;
    if (!next.Take(separator) && !next.Take(u" ")) return;
    if (!next.TakeDigits(digits)) return;  // no separator, but a blank behind the number
    reader = next;
  }
}

std::optional<Digits> ReadDigits(std::u16string_view text, const NumberFormat& format) {
  const std::u16string folded = Folded(text);
  const std::u16string separator = Folded(GroupSeparator(format));
  Reader reader(folded);
  Digits digits;
  reader.TakeBlanks();
  digits.negative = reader.Take(Folded(format.negative_sign)) || reader.Take(u"-");
  if (!digits.negative) reader.Take(u"+");
  reader.TakeBlanks();
  TakeGroups(reader, separator, digits.integer);
  if (reader.Take(Folded(format.decimal_sign)) || (separator != u"." && reader.Take(u"."))) {
    reader.TakeDigits(digits.decimals);
  }
  reader.TakeBlanks();
  if (!reader.AtEnd() || (digits.integer.empty() && digits.decimals.empty())) return std::nullopt;
  return digits;
}

double ValueOf(const Digits& digits) {
  const std::string plain = digits.integer + '.' + digits.decimals;
  double magnitude = 0.0;
  const auto result = std::from_chars(plain.data(), plain.data() + plain.size(), magnitude);
  if (result.ec == std::errc::result_out_of_range) {
    const bool too_small = digits.integer.find_first_not_of('0') == std::string::npos;
    magnitude = too_small ? 0.0 : std::numeric_limits<double>::max();
  }
  return digits.negative ? -magnitude : magnitude;
}

}  // namespace

std::u16string GroupedInteger(std::int32_t value, const NumberFormat& format) {
  return WithSign(value < 0, Grouped(DigitsOf(Magnitude(value)), format), format);
}

std::u16string FixedTenths(std::int32_t tenths, const NumberFormat& format) {
  const std::int64_t magnitude = Magnitude(tenths);
  return WithSign(tenths < 0, DigitsOf(magnitude / 10) + format.decimal_sign + DigitsOf(magnitude % 10), format);
}

std::optional<double> ParseNumber(std::u16string_view text, const NumberFormat& format) {
  const std::optional<Digits> digits = ReadDigits(text, format);
  if (!digits) return std::nullopt;
  return ValueOf(*digits);
}

std::optional<std::int32_t> ParseInteger(std::u16string_view text, const NumberFormat& format) {
  std::optional<Digits> digits = ReadDigits(text, format);
  if (!digits) return std::nullopt;
  digits->decimals.clear();  // before the conversion, which would round 0.99999999999999999 up
  return SaturatingTruncate<std::int32_t>(ValueOf(*digits));
}

}  // namespace tervan
