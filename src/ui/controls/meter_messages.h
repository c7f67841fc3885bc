// The level meter as its parent sees it: window class, styles, messages, notifications.
//
// A bar lights from the quiet end to its level. An inverted one lights what is missing to full scale, from the level to
// the loud end: 1.0 is no reduction and all dark, 0 the full one; a marker that rests at full scale is not drawn. Ticks
// come with labels only, every 3 dB, or at 6, 12, ... where they would be less than 3 px (at 96 dpi) apart.
#pragma once

#include <windows.h>

#include "ui/controls/meter_levels.h"

namespace tervan::ui {

inline constexpr wchar_t kMeterClassName[] = L"qvmodfx1Bld244MeterClass";

// Style bits, low word.
inline constexpr DWORD kMeterVertical = 0x0001;
inline constexpr DWORD kMeterInverted = 0x0002;  // a gain reduction: the extreme is the smallest
inline constexpr DWORD kMeterMenu = 0x0004;
inline constexpr DWORD kMeterClip = 0x0010;           // clip indicators
inline constexpr DWORD kMeterMeasureLabels = 0x0080;  // labels count for the preferred size
inline constexpr DWORD kMeterHoldValleys = 0x0100;
inline constexpr DWORD kMeterHoldPeaks = 0x0200;
inline constexpr DWORD kMeterShowLabels = 0x0400;

// Messages. A level is an integer, or the bits of a 32-bit float.
inline constexpr UINT kMeterGetLevels = 0x60A;  // wParam: 0, count; lParam: array
inline constexpr UINT kMeterGetRange = 0x60B;   // wParam, lParam: places or null
inline constexpr UINT kMeterSetLevels = 0x60C;  // wParam: redraw, count; lParam: level or array
inline constexpr UINT kMeterSetRange = 0x60D;   // wParam: 0, float mode; lParam: steps
inline constexpr UINT kMeterGetDisplayRange = 0x60E;
inline constexpr UINT kMeterSetDisplayRange = 0x60F;  // wParam: redraw; lParam: amplitude ratio, 0 for all
inline constexpr UINT kMeterGetStyle = 0x610;
inline constexpr UINT kMeterChangeStyle = 0x611;  // wParam: bits; lParam: set or clear
inline constexpr UINT kMeterGetChannelCount = 0x612;
inline constexpr UINT kMeterSetChannelCount = 0x613;  // wParam: redraw; lParam: count
inline constexpr UINT kMeterGetLabelFormat = 0x614;   // wParam: size of the buffer; lParam: buffer
inline constexpr UINT kMeterSetLabelFormat = 0x615;   // wParam, bit 16: the loudest label names the unit; lParam: text
inline constexpr UINT kMeterGetExtremes = 0x616;      // as kMeterGetLevels
inline constexpr UINT kMeterSetExtremes = 0x617;      // wParam: 0, count; lParam: value or array
inline constexpr UINT kMeterResetClip = 0x618;        // wParam: redraw
inline constexpr UINT kMeterResetHolds = 0x619;       // wParam: redraw
inline constexpr UINT kMeterGetPreferredSize = 0x61A;
inline constexpr UINT kMeterGetBarBounds = 0x61C;  // wParam: 2, channel; lParam: RECT*
// The two switches: wParam: redraw; lParam: on or off, which is the answer, too.
inline constexpr UINT kMeterSwitchPlainBars = 0x61D;  // bars without segments
inline constexpr UINT kMeterSwitchNoTicks = 0x61E;    // labels without ticks
inline constexpr UINT kMeterGetOptions = 0x61F;       // wParam: mask; answers those of its bits that are set
inline constexpr UINT kMeterChangeOptions = 0x620;    // wParam: mask; lParam: set or clear; answers all bits

inline constexpr WORD kMeterBarArea = 2;  // what kMeterGetBarBounds asks for; channels count from 0

// Option bits; the others are kept and mean nothing.
inline constexpr DWORD kMeterAutoOrientation = 0x0001;  // vertical when taller than wide, whatever the style says

// WM_NOTIFY codes.
inline constexpr UINT kNotifyMeterRange = 1646;  // a range was chosen in the menu; to the parent window
inline constexpr UINT kNotifyMenuHelp = static_cast<UINT>(-103);

struct MenuHelpNotification {
  NMHDR header;
  UINT item_id;
  UINT flags;
  HMENU menu;
  const char* help_text;  // in the system code page
};

}  // namespace tervan::ui
