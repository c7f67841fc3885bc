#include "ui/pages/effect_page.h"

#include <algorithm>
#include <new>

#include "resources/ids.h"
#include "ui/code_page.h"
#include "ui/control_window.h"
#include "ui/controls/logo_messages.h"
#include "ui/pages/context_help.h"
#include "ui/pages/page_menu.h"
#include "ui/ui_library.h"

namespace tervan::ui {
namespace {

constexpr UINT kTimerPeriodMs = 50;
constexpr size_t kHelpPathBytes = MAX_PATH * sizeof(wchar_t);
constexpr int kTopicStringBase = 20000;  // a topic's text is the string of this number and the topic's own
constexpr wchar_t kMakerPrefix[] = L"Tervan ";

struct BypassImages {
  UINT message;
  int bitmap_id;
};
constexpr BypassImages kBypassImages[] = {
    {kLogoSetImages, IDB_BYPASS}, {kLogoSetHotImages, IDB_BYPASS_HOT}, {kLogoSetDisabledImages, IDB_BYPASS_DISABLED}};
constexpr int kBypassImageWidth = 21;
constexpr COLORREF kTransparent = RGB(0xFF, 0x00, 0xFF);

std::wstring StripText(std::wstring name) {
  constexpr int kPrefixLength = std::size(kMakerPrefix) - 1;
  if (CompareStringOrdinal(name.c_str(), std::min<int>(kPrefixLength, name.size()), kMakerPrefix, kPrefixLength,
                           TRUE) == CSTR_EQUAL) {
    name.erase(0, kPrefixLength);
  }
  return name + L' ';
}

}  // namespace

EffectPage::EffectPage(IUnknown* outer, const PageDescription& description) noexcept
    : PropertyPage(outer, ResourceModule(), description.dialog_id, description.title_id), description_(description) {}

STDMETHODIMP EffectPage::GetPageInfo(PROPPAGEINFO* info) try {
  help_files_ = LocateHelpFiles();
  const HRESULT result = PropertyPage::GetPageInfo(info);
  if (FAILED(result)) return result;
  info->pszHelpFile = static_cast<LPOLESTR>(CoTaskMemAlloc(kHelpPathBytes));
  if (!info->pszHelpFile) {
    CoTaskMemFree(info->pszTitle);
    info->pszTitle = nullptr;
    return E_OUTOFMEMORY;
  }
  lstrcpynW(info->pszHelpFile, help_files_.html_help.c_str(), kHelpPathBytes / sizeof(wchar_t));
  info->dwHelpContext = description_.help_context;
  return S_OK;
} catch (const std::bad_alloc&) {
  return E_OUTOFMEMORY;
}

STDMETHODIMP EffectPage::Help(LPCOLESTR /*help_dir*/) try {
  if (help_files_.html_help.empty()) help_files_ = LocateHelpFiles();
  return OpenHtmlHelp(help_files_, Dialog(), description_.help_context) ? S_OK : E_UNEXPECTED;
} catch (const std::bad_alloc&) {
  return E_UNEXPECTED;
}

STDMETHODIMP EffectPage::Show(UINT command) {
  if (Dialog() && command == SW_HIDE) LeaveControls();
  return PropertyPage::Show(command);
}

HRESULT EffectPage::OnConnect(IUnknown* object) {
  if (!object) return E_POINTER;
  if (HasControl()) OnDisconnect();
  const HRESULT result = TakeControl(object);
  if (FAILED(result)) return result;
  object_ = object;
  if (Dialog()) {
    SetNotifyWindow(Dialog(), ID_FILTER_CHANGED);
    ShowValues(kAllControls, Refresh::kOthers);
  }
  return S_OK;
}

HRESULT EffectPage::OnDisconnect() {
  if (!HasControl()) return E_UNEXPECTED;
  if (Dialog()) LeaveControls();
  if (!HasControl()) return S_OK;  // done meanwhile by whoever was told of an edit's end
  if (Dialog()) SetNotifyWindow(Dialog(), 0);
  DropControl();
  object_ = nullptr;
  return S_OK;
}

// The style lets the Tab key walk from the frame into the page.
HRESULT EffectPage::OnActivate() {
  SetWindowLongW(Dialog(), GWL_EXSTYLE, GetWindowLongW(Dialog(), GWL_EXSTYLE) | WS_EX_CONTROLPARENT);
  return S_OK;
}

HRESULT EffectPage::OnDeactivate() {
  SetWindowLongW(Dialog(), GWL_EXSTYLE, GetWindowLongW(Dialog(), GWL_EXSTYLE) & ~WS_EX_CONTROLPARENT);
  return S_OK;
}

INT_PTR EffectPage::OnReceiveMessage(HWND dialog, UINT message, WPARAM wparam, LPARAM lparam) {
  // A menu, a box or an edit's end may close the page in the middle of it.
  const directshow::ComPtr<IUnknown> alive(Outer());
  switch (message) {
    case WM_INITDIALOG: return Initialise(), TRUE;
    case WM_COMMAND:
      if (IsLive()) OnPageCommand(LOWORD(wparam), HIWORD(wparam));
      return TRUE;
    case WM_HSCROLL:
    case WM_VSCROLL:
      if (IsLive()) OnScroll(message, static_cast<ScrollCode>(LOWORD(wparam)), reinterpret_cast<HWND>(lparam));
      return TRUE;
    case WM_TIMER:
      if (IsLive()) OnTimer();
      return TRUE;
    case WM_CONTEXTMENU:
      is_menu_open_ = true;
      ShowPageMenu(dialog, object_, PointFrom(lparam));
      is_menu_open_ = false;
      SetWindowLongPtrW(dialog, DWLP_MSGRESULT, 0);
      return TRUE;  // else the frame would be asked for a menu of its own
    case WM_HELP: return OnContextHelp(*reinterpret_cast<const HELPINFO*>(lparam)), TRUE;
    case WM_DESTROY: return Destroyed(), FALSE;
  }
  return FALSE;
}

void EffectPage::Initialise() {
  if (HasControl()) SetNotifyWindow(Dialog(), ID_FILTER_CHANGED);
  SetUpLogoStrip();
  is_filled_ = OnInitPage();
  if (!is_filled_) return;
  ShowValues(kAllControls, Refresh::kOthers);
  for (const UINT_PTR timer : description_.timers) SetTimer(Dialog(), timer, kTimerPeriodMs, nullptr);
}

// Ends what the user is in the middle of, while the filter can still be told: a drag, a key that is held, a number that
// is being typed.
void EffectPage::LeaveControls() {
  const HWND captured = GetCapture();
  if (captured && IsChild(Dialog(), captured)) ReleaseCapture();
  const HWND focused = GetFocus();
  if (focused && IsChild(Dialog(), focused)) SetFocus(GetParent(Dialog()));
  if (IsLive()) OnLeave();
}

void EffectPage::Destroyed() {
  LeaveControls();
  is_filled_ = false;
  if (is_menu_open_) EndMenu();  // nobody is left to take the choice
  about_box_.Close();
  CloseHelpPopup(help_popup_);
  if (HasControl()) SetNotifyWindow(Dialog(), 0);
  for (const UINT_PTR timer : description_.timers) KillTimer(Dialog(), timer);
  if (FileExists(help_files_.win_help)) WinHelpW(Dialog(), help_files_.win_help.c_str(), 0, 0);
}

void EffectPage::OnPageCommand(int id, int code) {
  if (id >= ID_PRESET_FIRST && id <= ID_PRESET_LAST) {
    ApplyPresetOfCommand(object_, id);
    ShowValues(kAllControls, Refresh::kOthers);
    return;
  }
  switch (id) {
    case ID_HELP: Help(nullptr); break;
    case ID_ABOUT: about_box_.Show(Dialog()); break;
    case ID_FILTER_CHANGED: OnFilterNotification(code); break;
    default: OnCommand(id, code);
  }
}

void EffectPage::OnContextHelp(const HELPINFO& help) {
  if (help.iCtrlId == 0 || help.iCtrlId == -1) return;
  for (const HelpTopic& row : description_.help_topics) {
    if (row.control_id != help.iCtrlId) continue;
    const int topic = TopicInstead(row.topic);
    if (help_files_.win_help.empty()) help_files_ = LocateHelpFiles();
    const auto control = static_cast<HWND>(help.hItemHandle);
    if (FileExists(help_files_.win_help) &&
        WinHelpW(Dialog(), help_files_.win_help.c_str(), HELP_CONTEXTPOPUP, topic)) {
      return;
    }
    RECT bounds;
    if (!GetWindowRect(control, &bounds)) bounds = {help.MousePos.x, help.MousePos.y, help.MousePos.x, help.MousePos.y};
    help_popup_ = ShowHelpPopup(Dialog(), bounds, ResourceText(kTopicStringBase + topic));
    return;
  }
}

void EffectPage::SetUpLogoStrip() {
  const HWND strip = ControlOf(IDC_LOGO_STRIP);
  // Behind the page's own controls for the Tab key: a page opens at its first parameter, not at the bypass toggle.
  SetWindowPos(strip, HWND_BOTTOM, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
  const auto add_text = [strip](int command_id, UINT string_id) {
    const std::string text = InSystemCodePage(ResourceText(string_id));
    SendMessageW(strip, kLogoAddText, MAKEWPARAM(command_id, 0), reinterpret_cast<LPARAM>(text.c_str()));
  };
  SendMessageW(strip, kLogoRemoveItems, 0, 0);
  if (description_.bypass_id != 0) {
    for (size_t i = 0; i < bypass_images_.size(); ++i) {
      const auto& [message, bitmap_id] = kBypassImages[i];
      bypass_images_[i].reset(ImageList_LoadImageW(Module(), MAKEINTRESOURCEW(bitmap_id), kBypassImageWidth, 0,
                                                   kTransparent, IMAGE_BITMAP, LR_CREATEDIBSECTION));
      SendMessageW(strip, message, reinterpret_cast<WPARAM>(bypass_images_[i].get()), 0);
    }
    SendMessageW(strip, kLogoAddButton, description_.bypass_id, 0);
  }
  add_text(ID_ABOUT, IDS_STRIP_ABOUT);
  add_text(ID_HELP, IDS_STRIP_HELP);
  SetWindowTextW(strip, StripText(description_.filter_name).c_str());
}

HWND EffectPage::ControlOf(int id) const {
  if (!Dialog()) return nullptr;
  HWND& known = controls_[id];
  const bool is_still_there = known && GetParent(known) == Dialog() && GetDlgCtrlID(known) == id;
  return is_still_there ? known : known = GetDlgItem(Dialog(), id);
}

LRESULT EffectPage::Send(int id, UINT message, WPARAM wparam, LPARAM lparam) const {
  const HWND control = ControlOf(id);
  return control ? SendMessageW(control, message, wparam, lparam) : 0;
}

void EffectPage::ShowText(int id, const std::wstring& text) const {
  const HWND control = ControlOf(id);
  if (control && WindowText(control) != text) SetWindowTextW(control, text.c_str());
}

void EffectPage::Enable(int id, bool is_enabled) const {
  const HWND control = ControlOf(id);
  if (!control || (IsWindowEnabled(control) != FALSE) == is_enabled) return;
  if (!is_enabled && GetFocus() == control) SendMessageW(Dialog(), WM_NEXTDLGCTL, 0, FALSE);
  EnableWindow(control, is_enabled);
}

}  // namespace tervan::ui
