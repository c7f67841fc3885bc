// Trackbar and fader as their parents see them: window classes, styles, messages, notifications.
#pragma once

#include <windows.h>

#include "ui/controls/slider_scroll.h"

namespace tervan::ui {

inline constexpr wchar_t kTrackbarClassName[] = L"qvmodfx1Bld244TrackbarClass";
inline constexpr wchar_t kFaderClassName[] = L"qvmodfx1Bld244FaderClass";

// Style bits, low word.
inline constexpr DWORD kSliderVertical = 0x0001;  // the maximum is at the top
inline constexpr DWORD kSliderTaperB = 0x0040;    // with kSliderTapered: table B, else table A
inline constexpr DWORD kFaderTwoThumbs = 0x0040;  // faders: two linked thumbs
inline constexpr DWORD kSliderTapered = 0x0080;
inline constexpr DWORD kSliderNoRepaint = 0x4000;    // a position set by message does not repaint
inline constexpr DWORD kSliderNotifyFocus = 0x8000;  // WM_COMMAND for focus, press and release

// Messages. Of a fader with two thumbs the first one is meant where none is named.
inline constexpr UINT kSliderGetPosition = 0x60A;
inline constexpr UINT kSliderGetMinimum = 0x60B;
inline constexpr UINT kSliderGetMaximum = 0x60C;
inline constexpr UINT kSliderSetRange = 0x60D;     // lParam: minimum, maximum as signed words
inline constexpr UINT kSliderSetMinimum = 0x60E;   // lParam
inline constexpr UINT kSliderSetMaximum = 0x60F;   // lParam
inline constexpr UINT kSliderSetPosition = 0x610;  // wParam: redraw if the thumb moves; lParam: the position
inline constexpr UINT kSliderSetDefault = 0x611;   // lParam: where a double click leads
// Low word: length of the track in pixels; high word: what labels are placed by, the start of the track, or the left
// edge of a vertical channel.
inline constexpr UINT kTrackbarGetMetrics = 0x61E;
// Drawing switches. wParam: redraw; lParam, bit 0: on. They answer -1 when they are on.
inline constexpr UINT kTrackbarSetPlainChannel = 0x61F;  // nothing of the channel is filled
inline constexpr UINT kTrackbarSetTicks = 0x620;         // marks beside the channel
inline constexpr UINT kSliderSetBackground = 0x627;      // lParam: a COLORREF
inline constexpr UINT kSliderGetBackground = 0x628;
inline constexpr UINT kSliderSetUserData = 0x629;  // lParam, pointer-sized
inline constexpr UINT kSliderGetUserData = 0x62A;
inline constexpr UINT kFaderSetUp = 0x62D;           // lParam: a FaderSetUp
inline constexpr UINT kFaderSetKeyThumbs = 0x62E;    // lParam: mask, 0 means the first
inline constexpr UINT kFaderSetThumb = 0x62F;        // wParam: redraw, thumb from 1 (0: all); lParam: position(s)
inline constexpr UINT kFaderGetThumb = 0x630;        // wParam: 0, thumb from 1 (0: all); lParam: place for all
inline constexpr UINT kFaderSetNotifyFocus = 0x631;  // lParam, bit 0: as kSliderNotifyFocus
inline constexpr UINT kFaderGetNotifyFocus = 0x632;
inline constexpr UINT kFaderSetNoRepaint = 0x633;  // lParam, bit 0: as kSliderNoRepaint
inline constexpr UINT kFaderGetNoRepaint = 0x634;

// Everything about a fader at once.
struct FaderSetUp {
  INT32 minimum;
  INT32 maximum;
  INT32 default_position;
  INT32 line_step;
  INT32 page_step;   // 0: a tenth of the range, at least 1
  DWORD style;       // kSlider... bits
  DWORD style_mask;  // which of them count
  INT32 positions[kMaxThumbs];
};

// WM_COMMAND codes with kSliderNotifyFocus.
inline constexpr WORD kSliderFocused = 1;
inline constexpr WORD kSliderPressed = 3;
inline constexpr WORD kSliderReleased = 4;

// WM_NOTIFY codes, and what comes with them.
inline constexpr UINT kNotifyKey = static_cast<UINT>(-102);
inline constexpr UINT kNotifyThumbs = static_cast<UINT>(-104);

struct KeyNotification {
  NMHDR header;
  WPARAM virtual_key;
  LPARAM key_data;
};

struct ThumbsNotification {
  NMHDR header;
  LPARAM user_data;
  INT32 thumb_count;
  INT32 scroll_code;
  const INT32* positions;
};

// For the parent, once per WM_HSCROLL or WM_VSCROLL of a slider: moves the thumb as the code asks, within the range,
// and answers the new position. A page step of 0 is a tenth of the range; Ctrl makes a page ten times as long.
int ScrollTrackbar(UINT message, ScrollCode code, HWND trackbar, int line_step, int page_step);
int ScrollFader(UINT message, ScrollCode code, HWND fader, int line_step, int page_step);

}  // namespace tervan::ui
