// The level meter: bars on a decibel scale, with held peaks and valleys, clip indicators and a menu of ranges.
#pragma once

#include <optional>

#include "ui/control_window.h"
#include "ui/controls/meter_messages.h"
#include "ui/controls/meter_picture.h"

namespace tervan::ui {

extern const ControlClass kMeterClass;

class MeterControl final : public ControlWindow {
 public:
  MeterControl(HWND window, const CREATESTRUCTW& creation);
  LRESULT OnMessage(UINT message, WPARAM wparam, LPARAM lparam) override;

  LONG PartRole(int part) const override;
  std::wstring PartValue(int part) const override;
  std::wstring PartAction(int part) const override;
  void PressPart(int part) override;

 private:
  using LevelOf = std::int32_t (*)(const MeterChannel&);
  using SetLevelOf = void (MeterLevels::*)(int channel, std::int32_t value);

  LRESULT OnMeterMessage(UINT message, WPARAM wparam, LPARAM lparam);
  LRESULT GetValues(WPARAM wparam, LPARAM lparam, LevelOf value) const;
  LRESULT SetValues(WPARAM wparam, LPARAM lparam, bool at_once, SetLevelOf set);
  LRESULT GetRange(INT32* is_float, void* range) const;
  LRESULT SetRange(INT32 steps, bool is_float);
  LRESULT SetDisplayRange(DWORD ratio, bool at_once);
  LRESULT ChangeStyle(DWORD bits, bool set);
  LRESULT SetChannelCount(DWORD count, bool at_once);
  LRESULT GetLabelFormat(std::size_t size, char* buffer) const;
  LRESULT SetLabelFormat(const char* format, bool has_unit);
  LRESULT ResetClip(bool at_once);
  LRESULT ResetHolds(bool at_once);
  LRESULT PreferredThickness() const;
  LRESULT GetBarBounds(WORD what, int channel, RECT* bounds) const;
  LRESULT Switch(bool& value, bool on, bool at_once);
  LRESULT ChangeOptions(DWORD mask, bool set);

  LRESULT OnPaint();
  LRESULT OnPrint(HDC dc);
  bool Paint(HDC dc, const Rect& dirty, const BarReadings& readings);
  bool IsOnScreen();
  LRESULT OnHitTest(Point screen) const;
  void OnPress(Point client);
  LRESULT OnKey(WPARAM wparam, LPARAM lparam);
  LRESULT OnContextMenu(WPARAM wparam, LPARAM lparam);
  LRESULT OnMenuSelect(WPARAM wparam, LPARAM lparam);
  void OnMenuItem(int item_id);
  void OnDestroy();

  DWORD Style() const { return static_cast<DWORD>(GetWindowLongW(window(), GWL_STYLE)) & 0xFFFF; }
  bool HasStyle(DWORD bit) const { return (Style() & bit) != 0; }
  bool IsVertical() const;
  // The display range, or all there is.
  std::uint32_t ShownRatio() const;
  int LabelStrip(bool is_vertical) const;

  const MeterLook& Look() const;
  BarReadings ReadingsOf(const MeterLevels& levels) const;

  // What depends on the levels is to be painted; or everything, in another look.
  void LevelsChanged(bool at_once, bool is_on_screen = false);
  void LookChanged(bool at_once);
  void AnnounceClips();

  HFONT font_ = nullptr;  // for who asks; labels have their own
  MeterLevels levels_;
  std::uint32_t display_range_ = 0;
  std::string label_format_;  // in the system code page
  bool has_plain_bars_ = false;
  bool has_no_ticks_ = false;
  bool has_unit_ = false;
  DWORD options_ = 0;
  bool is_shown_clipped_ = false;  // as screen readers know it
  bool has_menu_open_ = false;
  mutable std::optional<MeterLook> look_;  // none: to be made anew
  MeterPicture picture_;
  std::optional<BarReadings> on_screen_;  // none: not known to be there, or not all of it
};

}  // namespace tervan::ui
