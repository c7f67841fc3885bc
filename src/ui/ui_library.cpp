#include "ui/ui_library.h"

#include <atomic>
#include <cstdint>

#include "directshow/string_resource.h"
#include "resources/ids.h"
#include "ui/theme.h"

namespace tervan::ui {
namespace {

HINSTANCE resource_module = nullptr;

struct FontChoice {
  const wchar_t* face;
  int height_px;  // of the characters, at 96 dpi
  int weight;
};
constexpr FontChoice kTitle{L"Tahoma", 13, FW_BOLD};
constexpr FontChoice kSmall{L"Tahoma", 11, FW_NORMAL};
constexpr FontChoice kScale{L"Tahoma", 10, FW_NORMAL};

HFONT MakeFont(const FontChoice& choice) {
  return CreateFontW(-AtDpi(choice.height_px, ScreenDpi()), 0, 0, 0, choice.weight, FALSE, FALSE, FALSE,
                     DEFAULT_CHARSET, OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS, CLEARTYPE_QUALITY,
                     VARIABLE_PITCH | FF_SWISS, choice.face);
}

// Several window threads may ask at once: one makes it, the others throw theirs away.
class SharedFont {
 public:
  constexpr explicit SharedFont(const FontChoice& choice) : choice_(choice) {}
  HFONT Get() {
    if (const HFONT there = font_) return there;
    HFONT made = MakeFont(choice_);
    HFONT expected = nullptr;
    if (!made || font_.compare_exchange_strong(expected, made)) return made;
    DeleteObject(made);
    return expected;
  }
  void Release() {
    if (const HFONT font = font_.exchange(nullptr)) DeleteObject(font);
  }

 private:
  const FontChoice& choice_;
  std::atomic<HFONT> font_{nullptr};
};

SharedFont title_font(kTitle);
SharedFont small_font(kSmall);
SharedFont scale_font(kScale);

}  // namespace

void StartUi(HINSTANCE module) { resource_module = module; }

void EndUi() {
  title_font.Release();
  small_font.Release();
  scale_font.Release();
  resource_module = nullptr;
}

HINSTANCE ResourceModule() { return resource_module; }

std::wstring ResourceText(UINT string_id) {
  return std::wstring(directshow::StringResource(resource_module, string_id));
}

HFONT TitleFont() { return title_font.Get(); }
HFONT SmallFont() { return small_font.Get(); }
HFONT ScaleFont() { return scale_font.Get(); }

// A resource's cursor is the system's to share and to free.
HCURSOR HandCursor() {
  return static_cast<HCURSOR>(
      LoadImageW(resource_module, MAKEINTRESOURCEW(IDC_HAND_CURSOR), IMAGE_CURSOR, 0, 0, LR_DEFAULTSIZE | LR_SHARED));
}

}  // namespace tervan::ui
