// The logo strip across the top of every page, as the page sees it.
#pragma once

#include <windows.h>

namespace tervan::ui {

inline constexpr wchar_t kLogoClassName[] = L"qvmodfx1Bld244LogoClass";

inline constexpr UINT kLogoRemoveItems = 0x600;
inline constexpr UINT kLogoAddText = 0x601;       // wParam: command id, redraw; lParam: text in the system code page
inline constexpr UINT kLogoSetMode = 0x602;       // wParam: 0, or a click on the picture sends the strip's own id
inline constexpr UINT kLogoAddButton = 0x603;     // wParam: command id; lParam: on or off
inline constexpr UINT kLogoSetImages = 0x604;     // wParam: image list; off, on, pressed
inline constexpr UINT kLogoSetHotImages = 0x605;  // the same under the cursor
inline constexpr UINT kLogoSetDisabledImages = 0x606;
inline constexpr UINT kLogoSetState = 0x607;    // wParam: command id; lParam: on or off
inline constexpr UINT kLogoEnableItem = 0x608;  // wParam: command id; lParam: enabled

// What a strip without text posts to its parent for a click on its picture.
inline constexpr UINT kLogoPictureClicked = 0x614;

}  // namespace tervan::ui
