// The strip of band tabs as its owner sees it: tabs below a box, one of them selected.
#pragma once

#include <windows.h>

namespace tervan::ui {

inline constexpr wchar_t kTabStripClassName[] = L"TrackEQ_TabControl_Class";

// Messages. Those that name a tab that does not exist answer -1 and change nothing, but for kTabSelect.
inline constexpr UINT kTabGetSelected = 0x601;  // -1: none
inline constexpr UINT kTabSelect = 0x602;       // wParam: tab, past the last one: none; answers the one before
inline constexpr UINT kTabGetText = 0x603;      // wParam: tab; lParam: buffer of kTabTextBytes; answers the length
inline constexpr UINT kTabSetText = 0x604;      // wParam: tab; lParam: text; answers the length
inline constexpr UINT kTabGetData = 0x605;      // wParam: tab
inline constexpr UINT kTabSetData = 0x606;      // wParam: tab; lParam: 16 bits, which come with WM_COMMAND
inline constexpr UINT kTabGetItems = 0x607;     // lParam: TabItems*
inline constexpr UINT kTabSetItems = 0x608;     // lParam: const TabItems*

// A user's choice comes as WM_COMMAND with the tab's data word in place of the code; this one, when none is selected.
inline constexpr WORD kNoTabData = 65535;

inline constexpr UINT kMaxTabs = 9;        // one for each digit key
inline constexpr UINT kTabTextBytes = 32;  // with the terminator

struct TabItem {
  char text[kTabTextBytes];  // in the system code page; with a symbol font, the font's characters
  DWORD data;
  DWORD reserved;
};

inline constexpr UINT kBandTabs = 4;

// With room for the EQ's bands; a record may be longer or shorter.
struct TabItems {
  DWORD size_bytes;  // of the record: 172 with four items, which 0 stands for, too
  DWORD count;
  DWORD reserved;
  TabItem items[kBandTabs];
};
static_assert(sizeof(TabItems) == 172);

}  // namespace tervan::ui
