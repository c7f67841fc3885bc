// What the property pages of all effects have in common. A page describes itself in a table and fills in the hooks; it
// talks to its filter through the filter's control interface only, and every change takes effect at once.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <array>
#include <memory>
#include <span>
#include <string>
#include <type_traits>
#include <unordered_map>

#include "directshow/com_ptr.h"
#include "directshow/property_page.h"
#include "ui/controls/slider_messages.h"
#include "ui/pages/about_box.h"
#include "ui/pages/help_files.h"

namespace tervan::ui {

// A control and the topic that context help shows for it.
struct HelpTopic {
  int control_id;
  int topic;
};

struct PageDescription {
  int dialog_id;
  int title_id;                // a string
  int help_context;            // in the help file
  const wchar_t* filter_name;  // in full; the logo strip shows it without the maker's name
  int bypass_id;               // command of the bypass toggle on the logo strip; 0: no toggle
  std::span<const HelpTopic> help_topics;
  std::span<const UINT_PTR> timers;  // of 50 ms each
};

// Which controls a refresh may move.
enum class Refresh {
  kOthers,  // all but the slider that the user is moving
  kForced,
};

inline constexpr int kAllControls = 0;

struct ImageListDeleter {
  void operator()(HIMAGELIST list) const noexcept { ImageList_Destroy(list); }
};
using ImageList = std::unique_ptr<std::remove_pointer_t<HIMAGELIST>, ImageListDeleter>;

// Window thread only, as everything of a page.
class EffectPage : public directshow::PropertyPage {
 public:
  // As the base, with the help file's path and the page's context in it.
  STDMETHODIMP GetPageInfo(PROPPAGEINFO* info) override;
  // Opens the help file. S_OK, or E_UNEXPECTED when it cannot be shown.
  STDMETHODIMP Help(LPCOLESTR help_dir) override;
  // As the base. Hiding ends what the user is in the middle of.
  STDMETHODIMP Show(UINT command) override;

 protected:
  EffectPage(IUnknown* outer, const PageDescription& description) noexcept;

  // The filter's control interface, kept by a derived page. TakeControl: S_OK, or E_NOINTERFACE.
  virtual HRESULT TakeControl(IUnknown* object) = 0;
  virtual bool HasControl() const = 0;
  virtual void DropControl() = 0;
  virtual void SetNotifyWindow(HWND window, int command_id) = 0;

  // The hooks of a page. All but the first are called on a live page only. Whatever reaches the filter may
  // reach the host's recorder, which may close the page: a hook holds the interface for as long as it works.
  // Fills the controls; there may be no control interface yet. False: there is nothing to show or to poll.
  virtual bool OnInitPage() = 0;
  // Shows the filter's values in one control, or with kAllControls in all.
  virtual void RefreshControls(int id, Refresh refresh) = 0;
  virtual void OnFilterNotification(int code) = 0;
  virtual void OnCommand(int /*id*/, int /*code*/) {}
  virtual void OnScroll(UINT /*message*/, ScrollCode /*code*/, HWND /*slider*/) {}
  virtual void OnTimer() {}
  // The page goes, is hidden or loses its filter: whatever has begun with this filter ends now.
  virtual void OnLeave() {}
  // The topic to show in place of the one that the table has for a control. Also called when the page is not live.
  virtual int TopicInstead(int topic) { return topic; }

  HRESULT OnConnect(IUnknown* object) final;
  HRESULT OnDisconnect() final;
  HRESULT OnActivate() final;
  HRESULT OnDeactivate() final;
  INT_PTR OnReceiveMessage(HWND dialog, UINT message, WPARAM wparam, LPARAM lparam) final;

  // Its controls are there and show a filter. Any call of the filter may end that.
  bool IsLive() const { return is_filled_ && HasControl(); }
  // RefreshControls, as long as the page is live.
  void ShowValues(int id, Refresh refresh) {
    if (IsLive()) RefreshControls(id, refresh);
  }

  const PageDescription& description() const { return description_; }
  // Null when the dialog has no such control, or there is no dialog; messages to it then go nowhere.
  HWND ControlOf(int id) const;
  LRESULT Send(int id, UINT message, WPARAM wparam = 0, LPARAM lparam = 0) const;
  // Without flicker when it is there already.
  void ShowText(int id, const std::wstring& text) const;
  // A control that has the focus hands it on before it is disabled.
  void Enable(int id, bool is_enabled) const;

 private:
  void Initialise();
  void Destroyed();
  void LeaveControls();
  void SetUpLogoStrip();
  void OnPageCommand(int id, int code);
  void OnContextHelp(const HELPINFO& help);

  const PageDescription& description_;
  IUnknown* object_ = nullptr;  // not referenced: the frame holds it as long as the page is connected
  HelpFiles help_files_;
  HWND help_popup_ = nullptr;  // the last one, be it still there or not
  AboutBox about_box_;
  bool is_filled_ = false;  // OnInitPage is through
  bool is_menu_open_ = false;
  std::array<ImageList, 3> bypass_images_;
  mutable std::unordered_map<int, HWND> controls_;  // found before: pages with meters ask hundreds of times a second
};

// A page that holds this control interface.
template <class Control>
class EffectPageFor : public EffectPage {
 protected:
  using EffectPage::EffectPage;
  HRESULT TakeControl(IUnknown* object) final {
    control_ = directshow::Query<Control>(object);
    return control_ ? S_OK : E_NOINTERFACE;
  }
  bool HasControl() const final { return static_cast<bool>(control_); }
  void DropControl() final { control_.Reset(); }
  void SetNotifyWindow(HWND window, int command_id) final { control_->SetNotifyWindow(window, command_id); }

  // A reference, since the page's own may go while the filter is told something.
  directshow::ComPtr<Control> Held() const { return control_; }
  bool IsShowing(const Control& filter) const { return IsLive() && control_.Get() == &filter; }

 private:
  directshow::ComPtr<Control> control_;
};

}  // namespace tervan::ui
