#include "ui/controls/static_control.h"

#include <oleacc.h>

#include <algorithm>

#include "ui/controls/static_messages.h"
#include "ui/theme.h"
#include "ui/ui_library.h"

namespace tervan::ui {
namespace {

constexpr COLORREF kLinkColour = RGB(0, 0, 255);
constexpr int kFading = 160;  // of 256: how far a disabled picture fades into the page

bool NamesPicture(const std::wstring& text) { return text.starts_with(L'#'); }

HINSTANCE WindowModule(HWND window) { return reinterpret_cast<HINSTANCE>(GetWindowLongPtrW(window, GWLP_HINSTANCE)); }

Colour Faded(Colour c, Colour page) {
  const auto grey = static_cast<std::uint8_t>((c.red * 77 + c.green * 151 + c.blue * 28) / 256);  // luma of Rec. 601
  return Mixed({grey, grey, grey}, page, kFading);
}

void Fade(Canvas& canvas, Rect area, Colour page) {
  for (int y = area.top; y < area.bottom; ++y) {
    for (int x = area.left; x < area.right; ++x) {
      canvas.Fill({x, y, x + 1, y + 1}, Faded(canvas.PixelAt({x, y}), page));
    }
  }
}

}  // namespace

const ControlClass kStaticClass = {
    .name = kStaticClassName,
    .extra_bytes = 2 * sizeof(void*),
    .background = COLOR_BTNFACE,
    .procedure = WindowProcOf<StaticControl>,
};

StaticControl::StaticControl(HWND window, const CREATESTRUCTW&) : ControlWindow(window) { LoadNamedPicture(); }

LRESULT StaticControl::OnMessage(UINT message, WPARAM wparam, LPARAM lparam) {
  switch (message) {
    case kStaticLoadBitmap:
      return LoadPicture(reinterpret_cast<HINSTANCE>(wparam), reinterpret_cast<const char*>(lparam));
    case kStaticSetBitmap: picture_.Take(reinterpret_cast<HBITMAP>(lparam)); return PictureChanged();
    case kStaticSetDib: picture_.TakeDib(PointerIn<void>(lparam)); return PictureChanged();
    case kStaticSetColour:
      colour_ = wparam != 0 ? std::optional(static_cast<COLORREF>(lparam)) : std::nullopt;
      Invalidate();
      return 0;

    case WM_SETTEXT: return OnSetText(wparam, lparam);
    case WM_SETFONT: OnSetFont(reinterpret_cast<HFONT>(wparam), LOWORD(lparam) != 0); return 0;
    case WM_GETFONT: return reinterpret_cast<LRESULT>(font_.get());
    case WM_GETDLGCODE: return DLGC_STATIC;
    case WM_NCHITTEST: return Has(kStaticTakesMouse) ? HTCLIENT : HTTRANSPARENT;
    case WM_PAINT: OnPaint(); return 0;
    case WM_ERASEBKGND: return 1;
    case WM_ENABLE:
    case WM_SYSCOLORCHANGE: Invalidate(); break;
    case WM_SETCURSOR:
      if (!Has(kStaticLink)) break;
      SetCursor(HandCursor());
      return TRUE;
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK:
      if (!Has(kStaticLink)) break;
      SetCapture(window());
      is_pressed_ = true;
      return 0;
    case WM_LBUTTONUP: OnRelease(PointFrom(lparam)); return 0;
    case WM_CAPTURECHANGED: is_pressed_ = false; return 0;
  }
  return Default(message, wparam, lparam);
}

LRESULT StaticControl::LoadPicture(HINSTANCE module, const char* name) {
  picture_.Take(name ? LoadBitmapA(module ? module : WindowModule(window()), name) : nullptr);
  return PictureChanged();
}

LRESULT StaticControl::PictureChanged() {
  Invalidate();
  return picture_ ? TRUE : FALSE;
}

// A text "#name" is a resource's name, or its number.
void StaticControl::LoadNamedPicture() {
  const std::wstring text = WindowText(window());
  if (!NamesPicture(text)) return;
  const HINSTANCE module = WindowModule(window());
  const HBITMAP named = LoadBitmapW(module, text.c_str() + 1);
  picture_.Take(named ? named : LoadBitmapW(module, text.c_str()));
}

LRESULT StaticControl::OnSetText(WPARAM wparam, LPARAM lparam) {
  const LRESULT result = Default(WM_SETTEXT, wparam, lparam);
  LoadNamedPicture();
  Invalidate();
  return result;
}

void StaticControl::OnSetFont(HFONT font, bool redraw) {
  LOGFONTW description;
  const bool is_font = GetObjectType(font) == OBJ_FONT && GetObjectW(font, sizeof description, &description) != 0;
  font_.reset(is_font ? CreateFontIndirectW(&description) : nullptr);
  if (redraw) Invalidate();
}

void StaticControl::OnRelease(Point point) {
  const bool was_pressed = is_pressed_;  // gone with the capture
  if (GetCapture() == window()) ReleaseCapture();
  if (IsAlive() && was_pressed && PartBounds(0).Contains(point)) PressPart(0);
}

void StaticControl::PressPart(int /*part*/) {
  if (!Has(kStaticLink) || !IsWindowEnabled(window())) return;
  NMHDR header = {};
  SendNotify(Parent(), kNotifyLink, header);
}

void StaticControl::OnPaint() {
  PaintBuffered(window(), buffer_, [this](HDC dc, Canvas& canvas, Rect client) { Paint(dc, canvas, client); });
}

void StaticControl::Paint(HDC dc, Canvas& canvas, Rect client) {
  const Colour page = CurrentPalette().face;
  canvas.Fill(client, page);
  if (Has(kStaticTransparent)) PaintParentBackground(dc);
  if (!picture_) return PaintText(dc, client);
  const Rect picture = picture_.Draw(dc, client, Has(kStaticStretch), drawer_);
  if (IsWindowEnabled(window())) return;
  GdiFlush();  // the canvas changes what has been drawn
  Fade(canvas, {0, 0, std::min(picture.right, client.right), std::min(picture.bottom, client.bottom)}, page);
}

// What is on the screen does not do: a parent that clips its children leaves what the control showed before.
void StaticControl::PaintParentBackground(HDC dc) const {
  POINT origin = {};
  MapWindowPoints(window(), Parent(), &origin, 1);
  SaveDC(dc);
  SetWindowOrgEx(dc, origin.x, origin.y, nullptr);
  SendMessageW(Parent(), WM_ERASEBKGND, reinterpret_cast<WPARAM>(dc), 0);
  SendMessageW(Parent(), WM_PRINTCLIENT, reinterpret_cast<WPARAM>(dc), PRF_CLIENT);
  RestoreDC(dc, -1);
}

void StaticControl::PaintText(HDC dc, Rect client) const {
  const std::wstring text = WindowText(window());
  if (NamesPicture(text)) return;  // of a picture that is missing
  const SelectedObject font(dc, font_ ? font_.get() : GetStockObject(SYSTEM_FONT));
  SetBkMode(dc, TRANSPARENT);
  SetTextColor(dc, TextColour());
  RECT area = ToRECT(client);
  const DWORD alignment = Style() & kStaticAlignment;
  DrawTextW(dc, text.c_str(), static_cast<int>(text.size()), &area,
            DT_WORDBREAK | DT_EXPANDTABS |
                (alignment == 1   ? DT_CENTER
                 : alignment == 2 ? DT_RIGHT
                                  : DT_LEFT) |
                (Has(kStaticNoPrefix) ? DT_NOPREFIX : 0));
}

COLORREF StaticControl::TextColour() const {
  const Palette palette = CurrentPalette();
  if (!IsWindowEnabled(window())) return ToCOLORREF(palette.disabled_text);
  if (palette.is_high_contrast) return Has(kStaticLink) ? GetSysColor(COLOR_HOTLIGHT) : ToCOLORREF(palette.text);
  if (Has(kStaticLink)) return kLinkColour;
  return colour_.value_or(ToCOLORREF(palette.text));
}

LONG StaticControl::PartRole(int /*part*/) const {
  if (Has(kStaticLink)) return ROLE_SYSTEM_LINK;
  return picture_ ? ROLE_SYSTEM_GRAPHIC : ROLE_SYSTEM_STATICTEXT;
}

std::wstring StaticControl::PartName(int /*part*/) const {
  const std::wstring text = WindowText(window());
  if (NamesPicture(text)) return {};
  return Has(kStaticNoPrefix) ? text : PlainLabel(text.c_str());
}

std::wstring StaticControl::PartAction(int /*part*/) const { return Has(kStaticLink) ? L"Jump" : L""; }

}  // namespace tervan::ui
