// Property pages as hosts know them: what differs between them, as one table, and a page in a frame's window.
#pragma once
#include <ocidl.h>

#include <functional>
#include <initializer_list>

#include "module/effects.h"

namespace tervan::test {

using Texts = std::vector<std::wstring>;
using MenuItems = std::vector<std::pair<UINT, std::wstring>>;  // command, text

struct PageRow {
  const wchar_t* title;
  SIZE size;  // dialog units
  DWORD help_context;
  std::vector<std::pair<int, std::vector<int>>> topics;  // text of context help, controls that it explains
  std::vector<int> value_controls;                       // their texts show the settings
  Texts fresh;                                           // these texts of a new filter
  LONG preset;
  Texts of_preset;
  EffectIndex wrong;  // whose filter the page cannot show
};

const PageRow& PageOf(EffectIndex effect);
std::wstring TextOf(HWND window);
void HandlePostedMessages();

// A page and a window for it; connected and shown when the test does so, both undone at the end.
struct Page {
  explicit Page(EffectIndex effect);
  ~Page();

  HRESULT Connect(IUnknown* object) const { return page->SetObjects(object ? 1 : 0, object ? &object : nullptr); }
  HRESULT Open() const;
  void OpenFor(const Filter& filter) const {
    ASSERT_EQ(Connect(filter.control.Get()), S_OK);
    ASSERT_EQ(Open(), S_OK);
  }
  void Close() const { EXPECT_EQ(page->Deactivate(), S_OK); }

  HWND Dialog() const { return GetWindow(frame, GW_CHILD); }
  HWND Control(int id) const;
  LRESULT Send(UINT message, WPARAM wparam = 0, LPARAM lparam = 0) const {
    return SendMessageW(Dialog(), message, wparam, lparam);
  }
  LRESULT SendTo(int id, UINT message, WPARAM wparam = 0, LPARAM lparam = 0) const {
    return SendMessageW(Control(id), message, wparam, lparam);
  }
  void Command(int id, int code = 0) const { Send(WM_COMMAND, MAKEWPARAM(id, code)); }
  std::wstring TextOf(int id) const { return test::TextOf(Control(id)); }
  // What the page shows of the settings, once it has handled all that was posted to it.
  Texts Shown() const;

  // Sends a message that opens a menu or a box, and acts while that is open.
  void Meanwhile(UINT message, WPARAM wparam, LPARAM lparam, const std::function<void()>& act) const;
  struct Menu {
    POINT place;
    MenuItems items, presets;
  };
  // Opens the popup menu, and presses the keys in it.
  Menu PopUpMenu(LPARAM at, const std::vector<WORD>& keys = {VK_ESCAPE}) const;

  const PageRow& row;
  HWND frame;
  ComPtr<IPropertyPage> page;
};

// A slider, the control that shows its value, and the parameter that it moves.
struct SliderRow {
  int slider, text;
  DWORD param;
  int scale = 1;  // positions to a unit of the record
};

// A key that comes twice, as one that is held; all calls but the last; the text then.
struct KeyRow {
  const SliderRow& row;
  WORD key;
  const char* heard;
  const wchar_t* text;
};

// An open page, and a host that listens to what is done on it.
struct RecordedPage {
  explicit RecordedPage(EffectIndex effect);
  double Value(const SliderRow& row) const { return filter.GetAt(filter.effect.params[row.param]); }
  LRESULT Position(const SliderRow& row) const;
  // The host hears of one edit, which ends with the key.
  void ExpectOneEditAKey(std::initializer_list<KeyRow> rows, const std::function<void()>& restart);

  HostRecorder recorder;
  const Filter filter;
  Page page;
};

}  // namespace tervan::test
