// The three things that "Wingdings" can be on a system.
#pragma once
#include <windows.h>

#include <string>

#include "module/module.h"

namespace tervan::test {

enum class Wingdings {
  kNone,
  kWithoutNumbers,  // Wine's own; what tests find when they ask for nothing else
  kComplete,        // drawn for the tests, see wingdings_font.py
};

// What this process finds under that name as long as this lives; one at a time. Nothing may draw with a font of that
// name when it begins and when it ends. Of fonts with one name Wine keeps the newest, and forgets the others for good.
class WingdingsOnSystem {
 public:
  explicit WingdingsOnSystem(Wingdings which) : which_(which) {
    if (which_ == Wingdings::kWithoutNumbers) return;
    Add(Complete());
    if (which_ == Wingdings::kNone) Remove(Complete());
    ForgetUsedFonts();
  }
  ~WingdingsOnSystem() {
    if (which_ == Wingdings::kWithoutNumbers) return;
    if (which_ == Wingdings::kComplete) Remove(Complete());
    Add(L"C:\\windows\\Fonts\\wingding.ttf");
    ForgetUsedFonts();
  }
  WingdingsOnSystem(const WingdingsOnSystem&) = delete;
  WingdingsOnSystem& operator=(const WingdingsOnSystem&) = delete;

 private:
  static void Add(const std::wstring& file) { EXPECT_NE(AddFontResourceExW(file.c_str(), FR_PRIVATE, nullptr), 0); }
  static void Remove(const std::wstring& file) {
    EXPECT_TRUE(RemoveFontResourceExW(file.c_str(), FR_PRIVATE, nullptr));
  }

  // Beside the module.
  static std::wstring Complete() {
    std::wstring path(MAX_PATH, L'\0');
    path.resize(GetModuleFileNameW(TheModule(), path.data(), MAX_PATH));
    return path.substr(0, path.rfind(L'\\') + 1) + L"wingdings.ttf";
  }

  // Wine keeps the ten fonts that were used last, even if they are gone.
  static void ForgetUsedFonts() {
    const HDC screen = GetDC(nullptr);
    for (int height_px = 100; height_px < 130; ++height_px) {
      LOGFONTW other = {};
      other.lfHeight = height_px;
      const HFONT font = CreateFontIndirectW(&other);
      const HGDIOBJ before = SelectObject(screen, font);
      TEXTMETRICW metrics;
      GetTextMetricsW(screen, &metrics);
      DeleteObject(SelectObject(screen, before));
    }
    ReleaseDC(nullptr, screen);
  }

  const Wingdings which_;
};

}  // namespace tervan::test
