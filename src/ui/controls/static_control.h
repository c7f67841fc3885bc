// The window class of labels that show a text or a picture, and may be links.
#pragma once

#include <windows.h>

#include <optional>

#include "ui/back_buffer.h"
#include "ui/control_window.h"
#include "ui/controls/static_picture.h"

namespace tervan::ui {

extern const ControlClass kStaticClass;

class StaticControl final : public ControlWindow {
 public:
  StaticControl(HWND window, const CREATESTRUCTW& creation);
  LRESULT OnMessage(UINT message, WPARAM wparam, LPARAM lparam) override;

  LONG PartRole(int part) const override;
  std::wstring PartName(int part) const override;
  std::wstring PartAction(int part) const override;
  void PressPart(int part) override;

 private:
  DWORD Style() const { return static_cast<DWORD>(GetWindowLongW(window(), GWL_STYLE)); }
  bool Has(DWORD style) const { return (Style() & style) != 0; }

  LRESULT LoadPicture(HINSTANCE module, const char* name);
  LRESULT PictureChanged();
  void LoadNamedPicture();
  LRESULT OnSetText(WPARAM wparam, LPARAM lparam);
  void OnSetFont(HFONT font, bool redraw);
  void OnRelease(Point point);

  void OnPaint();
  void Paint(HDC dc, Canvas& canvas, Rect client);
  void PaintParentBackground(HDC dc) const;
  void PaintText(HDC dc, Rect client) const;
  COLORREF TextColour() const;

  StaticPicture picture_;
  FontHandle font_;  // a copy; null: the system's
  std::optional<COLORREF> colour_;
  bool is_pressed_ = false;
  DibDrawer drawer_;
  BackBuffer buffer_;
};

}  // namespace tervan::ui
