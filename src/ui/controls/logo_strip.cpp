#include "ui/controls/logo_strip.h"

#include <oleacc.h>

#include <algorithm>

#include "resources/ids.h"
#include "ui/code_page.h"
#include "ui/controls/logo_messages.h"
#include "ui/shared_information.h"
#include "ui/ui_library.h"

namespace tervan::ui {
namespace {

constexpr UINT_PTR kHoverTimer = 51;
constexpr UINT kHoverPeriod_ms = 130;

struct PictureNumbers {
  int logo;
  int background;
};
// By the shared locale; other locales have no pictures.
constexpr PictureNumbers kPicturesOfLocale[] = {{IDB_LOGO, IDB_LOGO_BACKGROUND},
                                                {IDB_ALTERNATE_LOGO, IDB_ALTERNATE_LOGO_BACKGROUND}};
PictureNumbers chosen_pictures{};

}  // namespace

const ControlClass kLogoClass = {
    .name = kLogoClassName,
    .background = COLOR_WINDOW,
    .procedure = WindowProcOf<LogoStrip>,
};

void ChooseLogoPictures() {
  const DWORD locale = SharedLocale();
  chosen_pictures = locale < std::size(kPicturesOfLocale) ? kPicturesOfLocale[locale] : PictureNumbers{};
}

LogoStrip::LogoStrip(HWND window, const CREATESTRUCTW&)
    : ControlWindow(window),
      pictures_{DibPicture::FromResource(ResourceModule(), chosen_pictures.logo),
                DibPicture::FromResource(ResourceModule(), chosen_pictures.background)} {}

LRESULT LogoStrip::OnMessage(UINT message, WPARAM wparam, LPARAM lparam) {
  const int id = static_cast<int>(wparam);
  switch (message) {
    case kLogoRemoveItems: RemoveItems(); return 0;
    case kLogoAddText: return AddText(LOWORD(wparam), PointerIn<const char>(lparam), HIWORD(wparam) != 0);
    case kLogoSetMode: return mode_ = static_cast<DWORD>(wparam);
    case kLogoAddButton: return AddButton(id, lparam != 0);
    case kLogoSetImages:
    case kLogoSetHotImages:
    case kLogoSetDisabledImages:
      SetImages(message - kLogoSetImages, PointerIn<_IMAGELIST>(static_cast<LPARAM>(wparam)));
      return 0;
    case kLogoSetState: return SetOn(items_.FindButton(id), lparam != 0);
    case kLogoEnableItem: return SetEnabled(items_.Find(id), lparam != 0);

    case WM_PAINT: OnPaint(); return 0;
    case WM_ERASEBKGND: return 1;
    case WM_MOUSEMOVE: OnMove(PointFrom(lparam)); return 0;
    case WM_TIMER:
      if (wparam != kHoverTimer) break;
      OnTick();
      return 0;
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK: OnPress(PointFrom(lparam)); return 0;
    case WM_LBUTTONUP: OnRelease(PointFrom(lparam)); return 0;
    case WM_CAPTURECHANGED: OnCaptureLost(); return 0;
    case WM_SETCURSOR:
      if (LOWORD(lparam) == HTCLIENT && OnSetCursor()) return TRUE;
      break;
    case WM_GETDLGCODE: return items_.Count() != 0 ? DLGC_WANTARROWS : DLGC_STATIC;
    case WM_KEYDOWN:
      if (OnKey(wparam)) return 0;
      break;
    case WM_SETFOCUS:
    case WM_KILLFOCUS: OnFocusChanged(message == WM_SETFOCUS); return 0;
    case WM_DESTROY: StopHovering(); break;
    case WM_SIZE: LayOut(); break;
    case WM_ENABLE:
    case WM_SYSCOLORCHANGE: Invalidate(); break;
    case WM_SETTEXT: {
      const LRESULT result = Default(message, wparam, lparam);
      LayOut();
      return result;
    }
    case WM_SETTINGCHANGE: LayOut(); break;
  }
  return Default(message, wparam, lparam);
}

void LogoStrip::RemoveItems() {
  items_.Clear();
  ItemsChanged();
}

LRESULT LogoStrip::AddText(int id, const char* text, bool redraw) {
  if (!text) return 0;
  items_.AddText(id, FromSystemCodePage(text));
  ItemsChanged();
  if (redraw) UpdateWindow(window());
  return 1;
}

LRESULT LogoStrip::AddButton(int id, bool is_on) {
  items_.AddButton(id, is_on);
  ItemsChanged();
  return 1;
}

void LogoStrip::SetImages(int which, HIMAGELIST list) {
  int width;
  int height;
  // The common controls answer FALSE for what is no image list.
  const bool is_list = list && ImageList_GetIconSize(list, &width, &height);
  if (is_list) ImageList_SetBkColor(list, kLogoBackground);
  images_[which] = is_list ? list : nullptr;
  LayOut();
}

// Pages tell the state of their toggle many times a second: what is no change is not drawn, nor announced.
LRESULT LogoStrip::SetOn(int item, bool is_on) {
  if (item < 0) return 0;
  if (items_.SetOn(item, is_on)) ItemChanged(item);
  return 1;
}

LRESULT LogoStrip::SetEnabled(int item, bool is_enabled) {
  if (item < 0) return 0;
  if (items_.SetEnabled(item, is_enabled)) ItemChanged(item);
  return 1;
}

void LogoStrip::ItemChanged(int item) {
  Announce(EVENT_OBJECT_STATECHANGE, item + 1);
  Invalidate();
}

// A strip without items is nothing that the user could go to.
void LogoStrip::ItemsChanged() {
  pressed_ = hot_ = {};
  focused_item_ = std::clamp(focused_item_, 0, std::max(items_.Count() - 1, 0));
  const LONG style = GetWindowLongW(window(), GWL_STYLE);
  const LONG wanted = items_.Count() != 0 ? style | WS_TABSTOP : style & ~WS_TABSTOP;
  if (wanted != style) SetWindowLongW(window(), GWL_STYLE, wanted);
  LayOut();
  Announce(EVENT_OBJECT_REORDER);
}

void LogoStrip::LayOut() {
  RECT client;
  GetClientRect(window(), &client);
  const WindowDc dc(window());
  const SelectedObject font(dc.Get(), SmallFont());
  const Size image_size = LogoImageSize(images_);
  std::vector<LogoItemContent> contents;
  for (const LogoItem& item : items_) {
    SIZE text = {};
    GetTextExtentPoint32W(dc.Get(), item.text.c_str(), static_cast<int>(item.text.size()), &text);
    contents.push_back({item.is_text, item.is_text ? Size{text.cx, text.cy} : image_size});
  }
  layout_ = LayOutLogo({client.right, client.bottom}, pictures_.logo.size().width, contents, ScreenDpi());
  Invalidate();
}

void LogoStrip::OnPaint() {
  const auto item_of = [](LogoHit hit) { return hit.part == LogoPart::kItem ? hit.item : -1; };
  const LogoScene scene = {
      .items = items_,
      .layout = layout_,
      .pictures = pictures_,
      .images = images_,
      .title = WindowText(window()),
      .hot_item = item_of(hot_),
      .pressed_item = item_of(pressed_),
      .focused_item = GetFocus() == window() ? focused_item_ : -1,
      .is_enabled = IsWindowEnabled(window()) != FALSE,
      .dpi = ScreenDpi(),
  };
  PaintBuffered(window(), buffer_,
                [&](HDC dc, Canvas& canvas, Rect client) { PaintLogo(dc, canvas, client, drawer_, scene); });
}

void LogoStrip::OnMove(Point point) {
  if (!is_hovering_) is_hovering_ = SetTimer(window(), kHoverTimer, kHoverPeriod_ms, nullptr) != 0;
  SetHot(HitLogo(layout_, point));
}

// The mouse leaves without a message.
void LogoStrip::OnTick() {
  POINT point;
  const bool is_over = GetCursorPos(&point) && (WindowFromPoint(point) == window() || GetCapture() == window());
  ScreenToClient(window(), &point);
  if (is_over) return SetHot(HitLogo(layout_, FromPOINT(point)));
  StopHovering();
  SetHot({});
}

void LogoStrip::StopHovering() {
  KillTimer(window(), kHoverTimer);
  is_hovering_ = false;
}

void LogoStrip::SetHot(LogoHit hot) {
  if (hot == hot_) return;
  hot_ = hot;
  Invalidate();
}

bool LogoStrip::IsPressable(LogoHit hit) const {
  if (!IsWindowEnabled(window())) return false;
  if (hit.part == LogoPart::kPicture) return true;
  return hit.part == LogoPart::kItem && hit.item < items_.Count() && items_[hit.item].is_enabled;
}

void LogoStrip::OnPress(Point point) {
  if (!IsWindowEnabled(window())) return;
  SetCapture(window());
  const LogoHit hit = HitLogo(layout_, point);
  SetHot(hit);
  pressed_ = IsPressable(hit) ? hit : LogoHit{};
  Invalidate();
}

void LogoStrip::OnRelease(Point point) {
  const LogoHit pressed = pressed_;  // gone with the capture
  if (GetCapture() == window()) ReleaseCapture();
  if (!IsAlive() || pressed == LogoHit{} || HitLogo(layout_, point) != pressed) return;
  Click(pressed);
}

void LogoStrip::OnCaptureLost() {
  pressed_ = {};
  Invalidate();
}

bool LogoStrip::OnSetCursor() const {
  POINT point;
  if (!GetCursorPos(&point)) return false;
  ScreenToClient(window(), &point);
  const LogoHit hit = HitLogo(layout_, FromPOINT(point));
  if (hit.part != LogoPart::kItem || !items_[hit.item].is_enabled) return false;
  SetCursor(HandCursor());
  return true;
}

bool LogoStrip::OnKey(WPARAM key) {
  switch (key) {
    case VK_LEFT:
    case VK_UP: MoveFocus(focused_item_ - 1); return true;
    case VK_RIGHT:
    case VK_DOWN: MoveFocus(focused_item_ + 1); return true;
    case VK_HOME: MoveFocus(0); return true;
    case VK_END: MoveFocus(items_.Count() - 1); return true;
    case VK_SPACE: Click({LogoPart::kItem, focused_item_}); return true;
  }
  return false;
}

void LogoStrip::MoveFocus(int item) {
  if (item < 0 || item >= items_.Count() || item == focused_item_) return;
  focused_item_ = item;
  Invalidate();
  Announce(EVENT_OBJECT_FOCUS, item + 1);
}

void LogoStrip::OnFocusChanged(bool has_focus) {
  Invalidate();
  if (has_focus && items_.Count() != 0) Announce(EVENT_OBJECT_FOCUS, focused_item_ + 1);
}

void LogoStrip::Click(LogoHit hit) {
  if (!IsPressable(hit)) return;
  if (hit.part == LogoPart::kItem) return PostCommand(items_[hit.item].id);
  if (GetWindowTextLengthW(window()) == 0) {
    PostMessageW(Parent(), kLogoPictureClicked, 0, 0);
  } else if (mode_ != 0) {
    PostCommand(Id());
  }
}

void LogoStrip::PostCommand(int id) const {
  if (id >= 1) PostMessageW(Parent(), WM_COMMAND, MAKEWPARAM(id, 0), reinterpret_cast<LPARAM>(window()));
}

LONG LogoStrip::PartRole(int part) const {
  if (part == 0) return ROLE_SYSTEM_TOOLBAR;
  return items_[part - 1].is_text ? ROLE_SYSTEM_PUSHBUTTON : ROLE_SYSTEM_CHECKBUTTON;
}

std::wstring LogoStrip::PartName(int part) const {
  if (part == 0) return PlainLabel(WindowText(window()).c_str());
  const LogoItem& item = items_[part - 1];
  if (!item.is_text) return ResourceText(IDS_STRIP_BYPASS);
  const bool is_mark = item.text == ResourceText(IDS_STRIP_HELP);  // read aloud, "?" says nothing
  return is_mark ? ResourceText(IDS_MENU_HELP) : item.text;
}

LONG LogoStrip::PartState(int part) const {
  LONG state = ControlWindow::PartState(part);
  if (part == 0) return state;
  const LogoItem& item = items_[part - 1];
  if (part - 1 != focused_item_) state &= ~STATE_SYSTEM_FOCUSED;
  if (!item.is_enabled) state |= STATE_SYSTEM_UNAVAILABLE;
  if (item.is_on) state |= STATE_SYSTEM_CHECKED;
  return state;
}

Rect LogoStrip::PartBounds(int part) const {
  return part == 0 ? ControlWindow::PartBounds(part) : layout_.items[part - 1];
}

int LogoStrip::PartAt(Point client) const {
  const LogoHit hit = HitLogo(layout_, client);
  return hit.part == LogoPart::kItem ? hit.item + 1 : 0;
}

std::wstring LogoStrip::PartAction(int part) const { return part == 0 ? L"" : L"Press"; }

}  // namespace tervan::ui
