// Numbers as texts of edit boxes, in the user's own number format.
//
// Writing is strict, reading forgiving: whatever is written here in a format reads back as the same number in that
// format. Where a typed text could mean two things, the format decides:
//
// - "2.500" and "3.5" are 2500 and 35 where '.' separates groups, and 2.5 and 3.5 everywhere else, even where the
//   decimal sign is another one: '.' is on every numeric keypad. A comma is what the format says and nothing else.
// - A group separator may stand between any two digits left of the decimal sign: people leave it in place while they
//   add and delete digits around it. Thus "2,50" is 250 where ',' separates groups.
// - Blanks between digits separate groups in every format, so "2 500" is one number, not two.
//
// Not numbers: exponents, signs behind the digits, parentheses, units, two separators in a row, digits of other
// scripts.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tervan {

struct NumberFormat {
  std::u16string decimal_sign = u".";     // not empty
  std::u16string group_separator = u",";  // empty or the same as the decimal sign: no groups
  std::u16string negative_sign = u"-";    // not empty

  // Group sizes of one digit each, from the right, as the platform writes them. A final 0 repeats the size before it;
  // without it the rest is one group: "3;0" 1,234,567,890; "3;2;0" 1,23,45,67,890; "3" 1234567,890; "0;0" and "" none.
  std::u16string grouping = u"3;0";
};

// "2,500", "-12"
std::u16string GroupedInteger(std::int32_t value, const NumberFormat& format);

// One decimal, no groups: -400 is "-40.0", -4 is "-0.4".
std::u16string FixedTenths(std::int32_t tenths, const NumberFormat& format);

// Nothing for a text that is not a number. Too many digits give the largest number that there is.
std::optional<double> ParseNumber(std::u16string_view text, const NumberFormat& format);

// The same texts, without their decimals: "-3.9" is -3.
std::optional<std::int32_t> ParseInteger(std::u16string_view text, const NumberFormat& format);

}  // namespace tervan
