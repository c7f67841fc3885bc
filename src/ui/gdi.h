// Owners of drawing objects.
#pragma once

#include <windows.h>

#include <memory>
#include <type_traits>
#include <utility>

#include "ui/canvas.h"
#include "ui/geometry.h"

namespace tervan::ui {

struct GdiObjectDeleter {
  void operator()(HGDIOBJ object) const noexcept { DeleteObject(object); }
};
template <class Handle>
using GdiObject = std::unique_ptr<std::remove_pointer_t<Handle>, GdiObjectDeleter>;
using FontHandle = GdiObject<HFONT>;
using BitmapHandle = GdiObject<HBITMAP>;

struct MenuDeleter {
  void operator()(HMENU menu) const noexcept { DestroyMenu(menu); }
};
using MenuHandle = std::unique_ptr<std::remove_pointer_t<HMENU>, MenuDeleter>;

// An object that is selected while this lives; the one before comes back.
class SelectedObject {
 public:
  SelectedObject(HDC dc, HGDIOBJ object) : dc_(dc), previous_(SelectObject(dc, object)) {}
  ~SelectedObject() { SelectObject(dc_, previous_); }
  SelectedObject(const SelectedObject&) = delete;
  SelectedObject& operator=(const SelectedObject&) = delete;

 private:
  const HDC dc_;
  const HGDIOBJ previous_;
};

// The screen's or a window's device context.
class WindowDc {
 public:
  explicit WindowDc(HWND window) : window_(window), dc_(GetDC(window)) {}
  ~WindowDc() { ReleaseDC(window_, dc_); }
  WindowDc(const WindowDc&) = delete;
  WindowDc& operator=(const WindowDc&) = delete;
  HDC Get() const { return dc_; }

 private:
  const HWND window_;
  const HDC dc_;
};

// Of a mouse message.
inline Point PointFrom(LPARAM lparam) {
  return {static_cast<short>(LOWORD(lparam)), static_cast<short>(HIWORD(lparam))};
}
inline Point FromPOINT(const POINT& p) { return {static_cast<int>(p.x), static_cast<int>(p.y)}; }
inline Rect FromRECT(const RECT& r) { return {r.left, r.top, r.right, r.bottom}; }
inline RECT ToRECT(const Rect& r) { return {r.left, r.top, r.right, r.bottom}; }
inline Colour FromCOLORREF(COLORREF c) { return {GetRValue(c), GetGValue(c), GetBValue(c)}; }
inline COLORREF ToCOLORREF(Colour c) { return RGB(c.red, c.green, c.blue); }

// The painting that WM_PAINT asks for, as long as this lives.
class WindowPainting {
 public:
  explicit WindowPainting(HWND window) : window_(window), dc_(BeginPaint(window, &painting_)) {}
  ~WindowPainting() {
    if (dc_) EndPaint(window_, &painting_);
  }
  WindowPainting(const WindowPainting&) = delete;
  WindowPainting& operator=(const WindowPainting&) = delete;
  HDC Get() const { return dc_; }  // null: nothing to paint on
  Rect Dirty() const { return FromRECT(painting_.rcPaint); }

 private:
  const HWND window_;
  PAINTSTRUCT painting_ = {};
  const HDC dc_;
};

}  // namespace tervan::ui
