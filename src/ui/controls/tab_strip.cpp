#include "ui/controls/tab_strip.h"

#include <oleacc.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <utility>

#include "ui/band_glyphs.h"
#include "ui/code_page.h"
#include "ui/controls/tab_strip_painter.h"
#include "ui/theme.h"

namespace tervan::ui {
namespace {

std::string TextFrom(const char* text) { return {text, strnlen(text, kTabTextBytes - 1)}; }

bool HasRoom(const TabItems* record, std::size_t count) {
  if (!record || count > kMaxTabs) return false;
  const std::size_t size_bytes = record->size_bytes != 0 ? record->size_bytes : sizeof *record;
  return size_bytes >= offsetof(TabItems, items) + count * sizeof(TabItem);
}

// kNoTab: the key leads to none.
int TabOfKey(WPARAM key, int selected, int count) {
  switch (key) {
    case VK_LEFT:
    case VK_UP:
    case VK_PRIOR: return TabAfter(TabStep::kPrevious, selected, count);
    case VK_RIGHT:
    case VK_DOWN:
    case VK_NEXT: return TabAfter(TabStep::kNext, selected, count);
    case VK_HOME: return TabAfter(TabStep::kFirst, selected, count);
    case VK_END: return TabAfter(TabStep::kLast, selected, count);
  }
  for (const WPARAM zero : {WPARAM{'0'}, WPARAM{VK_NUMPAD0}}) {
    if (key > zero && key <= zero + count) return static_cast<int>(key - zero) - 1;
  }
  return kNoTab;
}

}  // namespace

const ControlClass kTabStripClass = {
    .name = kTabStripClassName,
    .style = CS_HREDRAW | CS_VREDRAW,
    .background = COLOR_BTNFACE,
    .procedure = WindowProcOf<TabStrip>,
};

TabStrip::TabStrip(HWND window, const CREATESTRUCTW&) : ControlWindow(window) {}

LRESULT TabStrip::OnMessage(UINT message, WPARAM wparam, LPARAM lparam) {
  const int tab = wparam < tabs_.size() ? static_cast<int>(wparam) : kNoTab;
  switch (message) {
    case kTabGetSelected: return selected_;
    case kTabSelect: return Select(tab);
    case kTabGetText:
    case kTabSetText:
    case kTabGetData:
    case kTabSetData: return tab != kNoTab ? OnTabMessage(message, tab, lparam) : -1;
    case kTabGetItems: return GetItems(PointerIn<TabItems>(lparam));
    case kTabSetItems: return SetItems(PointerIn<const TabItems>(lparam));

    case WM_SETFONT:
      font_ = reinterpret_cast<HFONT>(wparam);
      LayOut();
      return 0;
    case WM_GETFONT: return reinterpret_cast<LRESULT>(font_);
    case WM_PAINT: OnPaint(); return 0;
    case WM_ERASEBKGND: return 1;
    case WM_SIZE:
    case WM_SETTINGCHANGE: LayOut(); break;
    case WM_ENABLE:
    case WM_SYSCOLORCHANGE: Invalidate(); break;
    case WM_MOUSEMOVE: SetHot(TabAt(layout_, PointFrom(lparam))); return 0;
    case WM_MOUSELEAVE: SetHot(kNoTab); return 0;
    case WM_LBUTTONDOWN: OnPress(PointFrom(lparam)); return 0;
    case WM_GETDLGCODE: return OnGetDialogCode(PointerIn<const MSG>(lparam));
    case WM_KEYDOWN:
      OnKey(wparam);
      if (!IsAlive()) return 0;
      break;
    case WM_SETFOCUS:
    case WM_KILLFOCUS: OnFocusChanged(message == WM_SETFOCUS); return 0;
  }
  return Default(message, wparam, lparam);
}

LRESULT TabStrip::OnTabMessage(UINT message, int tab, LPARAM lparam) {
  switch (message) {
    case kTabGetText: return GetText(tab, PointerIn<char>(lparam));
    case kTabSetText: return SetText(tab, PointerIn<const char>(lparam));
    case kTabSetData: tabs_[tab].data = LOWORD(lparam); break;
  }
  return LOWORD(tabs_[tab].data);
}

int TabStrip::Select(int tab) {
  const int before = std::exchange(selected_, tab);
  if (tab == before) return before;
  Invalidate();
  Announce(EVENT_OBJECT_SELECTION, tab + 1);
  if (GetFocus() == window()) Announce(EVENT_OBJECT_FOCUS, tab + 1);
  return before;
}

int TabStrip::GetText(int tab, char* text) const {
  if (!text) return -1;
  const std::string& own = tabs_[tab].text;
  std::memcpy(text, own.c_str(), own.size() + 1);
  return static_cast<int>(own.size());
}

// Pages set their texts many times a second: what is no change is not drawn, nor announced.
int TabStrip::SetText(int tab, const char* text) {
  if (!text) return -1;
  std::string wanted = TextFrom(text);
  std::string& own = tabs_[tab].text;
  if (own != wanted) {
    own = std::move(wanted);
    LayOut();
    Announce(EVENT_OBJECT_NAMECHANGE, tab + 1);
  }
  return static_cast<int>(own.size());
}

bool TabStrip::GetItems(TabItems* items) const {
  if (!HasRoom(items, tabs_.size())) return false;
  items->count = Count();
  TabItem* item = items->items;
  for (const Tab& tab : tabs_) {
    *item = {.text = {}, .data = tab.data, .reserved = 0};
    std::memcpy(item++->text, tab.text.c_str(), tab.text.size());
  }
  return true;
}

bool TabStrip::SetItems(const TabItems* items) {
  if (!items || !HasRoom(items, items->count)) return false;
  std::vector<Tab> tabs;
  const TabItem* item = items->items;
  for (DWORD i = 0; i < items->count; ++i, ++item) tabs.push_back({TextFrom(item->text), item->data});
  tabs_ = std::move(tabs);
  if (selected_ >= Count()) selected_ = kNoTab;
  LayOut();
  Announce(EVENT_OBJECT_REORDER);
  return true;
}

// All keys, but for those with which a user leaves: a strip that kept them would hold whoever has no mouse.
LRESULT TabStrip::OnGetDialogCode(const MSG* asked_for) const {
  const bool leaves = asked_for && asked_for->message == WM_KEYDOWN &&
                      (asked_for->wParam == VK_TAB || asked_for->wParam == VK_RETURN || asked_for->wParam == VK_ESCAPE);
  return GetFocus() == window() && !leaves ? DLGC_WANTALLKEYS : DLGC_WANTARROWS | DLGC_WANTCHARS;
}

// The focus first: what is typed into an edit belongs to the tab that was open when the user typed it.
void TabStrip::OnPress(Point point) {
  if (TabAt(layout_, point) == kNoTab) return;
  SetFocus(window());
  if (IsAlive()) Choose(TabAt(layout_, point));
}

void TabStrip::OnKey(WPARAM key) {
  if (GetCapture()) return;  // a drag is not disturbed
  const int tab = TabOfKey(key, selected_, Count());
  if (tab != kNoTab) Select(tab);
  SendCommand();
}

void TabStrip::OnFocusChanged(bool has_focus) {
  Invalidate();
  if (has_focus) Announce(EVENT_OBJECT_FOCUS, selected_ + 1);
}

void TabStrip::SetHot(int tab) {
  TRACKMOUSEEVENT leaving = {sizeof leaving, TME_LEAVE, window(), 0};
  if (tab != kNoTab) TrackMouseEvent(&leaving);
  if (std::exchange(hot_, tab) != tab) Invalidate();
}

void TabStrip::Choose(int tab) {
  if (tab < 0 || tab >= Count() || !IsWindowEnabled(window())) return;
  Select(tab);
  SendCommand();
}

void TabStrip::SendCommand() const {
  const WORD data = selected_ != kNoTab ? LOWORD(tabs_[selected_].data) : kNoTabData;
  SendMessageW(Parent(), WM_COMMAND, MAKEWPARAM(Id(), data), reinterpret_cast<LPARAM>(window()));
}

std::wstring TabStrip::ShownText(const Tab& tab) const {
  if (!has_symbols_) return FromSystemCodePage(tab.text.c_str());
  std::wstring symbols;
  for (const char c : tab.text) symbols += SymbolCharacter(static_cast<BYTE>(c));
  return symbols;
}

void TabStrip::LayOut() {
  const WindowDc dc(window());
  const SelectedObject font(dc.Get(), Font());
  TEXTMETRICW metrics = {};
  has_symbols_ = GetTextMetricsW(dc.Get(), &metrics) && metrics.tmCharSet == SYMBOL_CHARSET;
  std::vector<int> widths_px;
  for (const Tab& tab : tabs_) {
    const std::wstring text = ShownText(tab);
    SIZE size = {};
    GetTextExtentPoint32W(dc.Get(), text.c_str(), static_cast<int>(text.size()), &size);
    widths_px.push_back(size.cx);
  }
  RECT client;
  GetClientRect(window(), &client);
  layout_ = LayOutTabs({client.right, client.bottom}, widths_px, ScreenDpi());
  Invalidate();
}

void TabStrip::OnPaint() {
  std::vector<std::wstring> texts;
  for (const Tab& tab : tabs_) texts.push_back(ShownText(tab));
  const TabStripScene scene = {
      .tabs = layout_,
      .texts = texts,
      .font = Font(),
      .selected = selected_,
      .hot = hot_,
      .is_focused = GetFocus() == window(),
      .is_enabled = IsWindowEnabled(window()) != FALSE,
      .dpi = ScreenDpi(),
  };
  PaintBuffered(window(), buffer_,
                [&](HDC dc, Canvas& canvas, Rect client) { PaintTabStrip(dc, canvas, client, scene); });
}

LONG TabStrip::PartRole(int part) const { return part == 0 ? ROLE_SYSTEM_PAGETABLIST : ROLE_SYSTEM_PAGETAB; }

// A symbol cannot be read aloud: then the tab is called by its number.
std::wstring TabStrip::PartName(int part) const {
  if (part == 0) return ControlWindow::PartName(part);
  return has_symbols_ ? std::to_wstring(part) : ShownText(tabs_[part - 1]);
}

LONG TabStrip::PartState(int part) const {
  LONG state = ControlWindow::PartState(part);
  if (part == 0) return state;
  state |= STATE_SYSTEM_SELECTABLE;
  if (part - 1 == selected_) return state | STATE_SYSTEM_SELECTED;
  return state & ~STATE_SYSTEM_FOCUSED;
}

Rect TabStrip::PartBounds(int part) const { return part == 0 ? ControlWindow::PartBounds(part) : layout_[part - 1]; }

std::wstring TabStrip::PartAction(int part) const { return part == 0 ? L"" : L"Switch"; }

}  // namespace tervan::ui
