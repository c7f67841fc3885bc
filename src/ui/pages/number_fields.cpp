#include "ui/pages/number_fields.h"

#include "support/number_text.h"
#include "ui/user_number_format.h"

namespace tervan::ui {
namespace {

// The platform's characters are the same 16 bits under another name.
std::wstring Wide(const std::u16string& text) { return {text.begin(), text.end()}; }

std::u16string FieldText(HWND edit, int max_length) {
  std::wstring text(max_length, L'\0');
  text.resize(GetWindowTextW(edit, text.data(), max_length + 1));
  return {text.begin(), text.end()};
}

}  // namespace

std::wstring IntegerText(INT32 value) { return Wide(GroupedInteger(value, UserNumberFormat())); }
std::wstring TenthsText(INT32 tenths) { return Wide(FixedTenths(tenths, UserNumberFormat())); }

INT32 ReadInteger(HWND edit, int max_length) {
  return ParseInteger(FieldText(edit, max_length), UserNumberFormat()).value_or(0);
}

double ReadNumber(HWND edit, int max_length) {
  return ParseNumber(FieldText(edit, max_length), UserNumberFormat()).value_or(0.0);
}

}  // namespace tervan::ui
