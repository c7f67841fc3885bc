#include "ui/user_number_format.h"

#include <windows.h>

namespace tervan {
namespace {

constexpr int kMaxLength = 16;  // the longest of the four texts, the grouping, has at most 10 with its terminator

std::u16string LocaleText(LCTYPE type, const char16_t* where_empty) {
  wchar_t text[kMaxLength];
  const int length = GetLocaleInfoW(LOCALE_USER_DEFAULT, type, text, kMaxLength);
  if (length <= 1) return where_empty;
  return {text, text + length - 1};
}

}  // namespace

NumberFormat UserNumberFormat() {
  return {.decimal_sign = LocaleText(LOCALE_SDECIMAL, u"."),
          .group_separator = LocaleText(LOCALE_STHOUSAND, u""),
          .negative_sign = LocaleText(LOCALE_SNEGATIVESIGN, u"-"),
          .grouping = LocaleText(LOCALE_SGROUPING, u"")};
}

}  // namespace tervan
