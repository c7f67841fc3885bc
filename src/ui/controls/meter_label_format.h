// The numbers beside a level meter's bars.
#pragma once

#include <string>
#include <string_view>

namespace tervan::ui {

// A number in a format as of printf, with '$' for '%': at most one of $f, $e, $g, $d and $i with flags, width and
// precision. "$$" is one '$'; what is no valid number, or a second one, stands as it is written. Formats come from
// other programs: whatever they hold is safe.
std::u16string FormatLabel(std::u16string_view format, double value, std::u16string_view decimal_sign);

}  // namespace tervan::ui
