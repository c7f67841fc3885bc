// The window class of the logo strip: a picture, a title, and items that the user can press.
#pragma once

#include <windows.h>

#include "ui/back_buffer.h"
#include "ui/control_window.h"
#include "ui/controls/logo_items.h"
#include "ui/controls/logo_layout.h"
#include "ui/controls/logo_painting.h"

namespace tervan::ui {

extern const ControlClass kLogoClass;

// Chooses the pictures of all strips from now on, by the machine's shared locale.
void ChooseLogoPictures();

class LogoStrip final : public ControlWindow {
 public:
  LogoStrip(HWND window, const CREATESTRUCTW& creation);
  LRESULT OnMessage(UINT message, WPARAM wparam, LPARAM lparam) override;

  // Each item is a part.
  int PartCount() const override { return items_.Count(); }
  LONG PartRole(int part) const override;
  std::wstring PartName(int part) const override;
  LONG PartState(int part) const override;
  Rect PartBounds(int part) const override;
  int PartAt(Point client) const override;
  std::wstring PartAction(int part) const override;
  void PressPart(int part) override { Click({LogoPart::kItem, part - 1}); }

 private:
  // Messages of the page.
  void RemoveItems();
  LRESULT AddText(int id, const char* text, bool redraw);
  LRESULT AddButton(int id, bool is_on);
  void SetImages(int which, HIMAGELIST list);
  LRESULT SetOn(int item, bool is_on);
  LRESULT SetEnabled(int item, bool is_enabled);
  void ItemChanged(int item);

  void LayOut();
  void ItemsChanged();
  void OnPaint();

  // The mouse.
  void OnMove(Point point);
  void OnTick();
  void OnPress(Point point);
  void OnRelease(Point point);
  void OnCaptureLost();
  bool OnSetCursor() const;
  void SetHot(LogoHit hot);
  void StopHovering();
  bool IsPressable(LogoHit hit) const;

  // The keyboard.
  bool OnKey(WPARAM key);
  void OnFocusChanged(bool has_focus);
  void MoveFocus(int item);

  void Click(LogoHit hit);
  void PostCommand(int id) const;

  LogoItems items_;
  LogoLayout layout_;
  const LogoPictures pictures_;
  LogoImages images_{};
  DWORD mode_ = 0;  // not 0: a click on the picture sends the strip's own id
  LogoHit hot_;
  LogoHit pressed_;
  int focused_item_ = 0;
  bool is_hovering_ = false;  // the timer runs
  DibDrawer drawer_;
  BackBuffer buffer_;
};

}  // namespace tervan::ui
