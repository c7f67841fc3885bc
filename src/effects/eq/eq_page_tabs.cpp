#include "effects/eq/eq_page_tabs.h"

#include <cstring>

#include "ui/band_glyphs.h"
#include "ui/controls/tab_strip_messages.h"
#include "ui/ui_library.h"

namespace tervan {
namespace {

// Over the box's bottom edge, so that the selected tab opens into the box.
constexpr int kOverlap_px = 2;
constexpr int kTextMargin_px = 6;  // above and below together

struct TabText {
  char characters[2];
};

TabText GlyphText(int band, bool is_enabled) { return {{static_cast<char>(ui::BandGlyph(band, is_enabled)), '\0'}}; }
TabText DigitText(int band) { return {{static_cast<char>('1' + band), '\0'}}; }

}  // namespace

bool EqPageTabs::Create(HWND dialog, int tabs_id, int box_id, int behind_id) {
  RECT box;
  if (!GetWindowRect(GetDlgItem(dialog, box_id), &box)) return false;
  MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&box), 2);
  glyph_font_ = ui::MakeBandGlyphFont();
  const HFONT font = glyph_font_ ? glyph_font_.get() : ui::SmallFont();
  window_ =
      CreateWindowExW(WS_EX_NOPARENTNOTIFY, ui::kTabStripClassName, L"", WS_CHILD | WS_VISIBLE | WS_TABSTOP, box.left,
                      box.bottom - kOverlap_px, box.right - box.left, ui::FontHeight(font) + kTextMargin_px, dialog,
                      reinterpret_cast<HMENU>(static_cast<INT_PTR>(tabs_id)),
                      reinterpret_cast<HINSTANCE>(GetWindowLongPtrW(dialog, GWLP_HINSTANCE)), nullptr);
  if (!window_) return false;
  SetWindowPos(window_, GetDlgItem(dialog, behind_id), 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
  SendMessageW(window_, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);

  ui::TabItems items{};
  items.size_bytes = sizeof items;
  items.count = kEqBands;
  for (int band = 0; band < static_cast<int>(kEqBands); ++band) {
    const TabText text = glyph_font_ ? GlyphText(band, true) : DigitText(band);
    std::memcpy(items.items[band].text, text.characters, sizeof text.characters);
    items.items[band].data = band;
  }
  SendMessageW(window_, ui::kTabSetItems, 0, reinterpret_cast<LPARAM>(&items));
  return true;
}

void EqPageTabs::Show(const EqBands& bands) const {
  if (!glyph_font_) return;
  for (int band = 0; band < static_cast<int>(kEqBands); ++band) {
    const TabText text = GlyphText(band, bands[band].enable != 0);
    SendMessageW(window_, ui::kTabSetText, band, reinterpret_cast<LPARAM>(text.characters));
  }
}

int EqPageTabs::Selected() const { return static_cast<int>(SendMessageW(window_, ui::kTabGetSelected, 0, 0)); }
void EqPageTabs::Select(int band) const { SendMessageW(window_, ui::kTabSelect, band, 0); }

}  // namespace tervan
