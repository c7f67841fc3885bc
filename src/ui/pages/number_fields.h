// Numbers in a page's fields, in the user's number format.
#pragma once

#include <windows.h>

#include <string>

#include "ui/number_labels.h"

namespace tervan::ui {

std::wstring IntegerText(INT32 value);  // with the user's digit grouping
std::wstring TenthsText(INT32 tenths);  // one decimal

// The number in an edit box, of which at most so many characters count. 0 when it is none.
INT32 ReadInteger(HWND edit, int max_length);
double ReadNumber(HWND edit, int max_length);

}  // namespace tervan::ui
