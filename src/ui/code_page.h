// Texts of programs that do not know Unicode.
#pragma once

#include <string>

namespace tervan::ui {

std::wstring FromSystemCodePage(const char* text);
std::string InSystemCodePage(const std::wstring& text);

}  // namespace tervan::ui
