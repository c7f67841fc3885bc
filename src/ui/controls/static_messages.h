// The static control (a text or a picture, perhaps a link) as its parent sees it.
#pragma once

#include <windows.h>

namespace tervan::ui {

inline constexpr wchar_t kStaticClassName[] = L"qvmodfx1Bld244StaticClass";

// Style bits, low word. The lowest four: 1 centred, 2 right.
inline constexpr DWORD kStaticAlignment = 0x000F;
inline constexpr DWORD kStaticLink = 0x0010;
inline constexpr DWORD kStaticTakesMouse = 0x0040;
inline constexpr DWORD kStaticNoPrefix = 0x0080;
inline constexpr DWORD kStaticTransparent = 0x2000;  // the background is the parent's
inline constexpr DWORD kStaticStretch = 0x8000;      // the picture fills the control

// Pictures are the control's from now on, even those that it cannot draw.
inline constexpr UINT kStaticLoadBitmap = 0x60A;  // wParam: module, or 0; lParam: resource name
inline constexpr UINT kStaticSetBitmap = 0x60B;   // lParam: HBITMAP
inline constexpr UINT kStaticSetDib = 0x60C;      // lParam: a packed device-independent bitmap in global memory
inline constexpr UINT kStaticSetColour = 0x60D;   // wParam: use it; lParam: COLORREF

// WM_NOTIFY code for a click on a link.
inline constexpr UINT kNotifyLink = static_cast<UINT>(-105);

}  // namespace tervan::ui
