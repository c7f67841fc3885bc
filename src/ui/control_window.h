// A window class of our own: a C++ object a window, made at WM_CREATE and gone after WM_DESTROY.
#pragma once

#include <windows.h>

#include <new>
#include <string>

#include "directshow/com_ptr.h"
#include "ui/gdi.h"

namespace tervan::ui {

class AccessibleControl;

// What a screen reader is told of a control or of one of its parts. Part 0 is the control itself, its parts count
// from 1.
class AccessibleParts {
 public:
  virtual int PartCount() const { return 0; }
  virtual LONG PartRole(int part) const = 0;      // ROLE_SYSTEM_...
  virtual std::wstring PartName(int part) const;  // the label before the control
  virtual std::wstring PartValue(int /*part*/) const { return {}; }
  virtual LONG PartState(int part) const;  // STATE_SYSTEM_...
  virtual Rect PartBounds(int part) const;
  virtual int PartAt(Point /*client*/) const { return 0; }
  // What Press does, in a word; empty: nothing.
  virtual std::wstring PartAction(int /*part*/) const { return {}; }
  virtual void PressPart(int /*part*/) {}

 protected:
  explicit AccessibleParts(HWND window) : window_(window) {}
  ~AccessibleParts() = default;
  HWND window() const { return window_; }

 private:
  const HWND window_;
};

class ControlWindow : public AccessibleParts {
 public:
  virtual ~ControlWindow();
  ControlWindow(const ControlWindow&) = delete;
  ControlWindow& operator=(const ControlWindow&) = delete;

  // As a window procedure. Whoever gets a notification may destroy the window; `this` lives until the message is
  // through, but see IsAlive.
  virtual LRESULT OnMessage(UINT message, WPARAM wparam, LPARAM lparam) = 0;

  // False: the window is gone, and nothing more is to be done for it.
  bool IsAlive() const { return is_alive_; }

  // The object stays while this lives, whatever becomes of the window.
  class Keep {
   public:
    explicit Keep(ControlWindow& control) : control_(control) { ++control.kept_; }
    ~Keep() {
      if (--control_.kept_ == 0 && !control_.IsAlive()) delete &control_;
    }
    Keep(const Keep&) = delete;
    Keep& operator=(const Keep&) = delete;

   private:
    ControlWindow& control_;
  };

 protected:
  // The creation parent, when it is not the parent, is the listener.
  explicit ControlWindow(HWND window, HWND creation_parent = nullptr);

  LRESULT Default(UINT message, WPARAM wparam, LPARAM lparam) const {
    return DefWindowProcW(window(), message, wparam, lparam);
  }
  HWND Parent() const { return GetParent(window()); }
  // Who hears of what the user does.
  HWND Listener() const { return creator_ ? creator_ : Parent(); }
  int Id() const { return GetDlgCtrlID(window()); }
  void Invalidate() const { InvalidateRect(window(), nullptr, FALSE); }
  void Redraw() const { RedrawWindow(window(), nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW); }
  // WM_NOTIFY with the header of whatever goes with the code; nothing when the window is gone.
  void SendNotify(HWND target, UINT code, NMHDR& header) const;
  // EVENT_OBJECT_...: tells screen readers that a part has changed.
  void Announce(DWORD event, int part = 0) const;

 private:
  friend LRESULT ControlProc(HWND window, UINT message, WPARAM wparam, LPARAM lparam,
                             ControlWindow* (*create)(HWND window, const CREATESTRUCTW& creation)) noexcept;
  LRESULT OnGetObject(WPARAM wparam, LPARAM lparam);
  void Detach() noexcept;

  const HWND creator_;  // null when it is the parent
  directshow::ComPtr<AccessibleControl> accessible_;
  int kept_ = 0;
  bool is_alive_ = true;
};

// The part of a window procedure that all controls share. create answers null, or throws, when there is no memory; the
// window is not created then.
LRESULT ControlProc(HWND window, UINT message, WPARAM wparam, LPARAM lparam,
                    ControlWindow* (*create)(HWND window, const CREATESTRUCTW& creation)) noexcept;

struct ControlClass {
  const wchar_t* name;
  UINT style = CS_GLOBALCLASS | CS_DBLCLKS | CS_HREDRAW | CS_VREDRAW;
  int extra_bytes = sizeof(void*);    // the first pointer is the framework's
  const wchar_t* cursor = IDC_ARROW;  // or null: the control sets it itself
  int background;                     // COLOR_...
  WNDPROC procedure;
};

// Null when it cannot be registered.
ATOM RegisterControlClass(HINSTANCE module, const ControlClass& control);
void UnregisterControlClass(HINSTANCE module, const ControlClass& control);

// The window procedure of the controls of this C++ class, constructed with (window, creation).
template <class Control>
LRESULT CALLBACK WindowProcOf(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  return ControlProc(window, message, wparam, lparam,
                     [](HWND created, const CREATESTRUCTW& creation) -> ControlWindow* {
                       return new (std::nothrow) Control(created, creation);
                     });
}

// The address that a message carries, or null: so small a number is never the address of anything.
template <class T>
T* PointerIn(LPARAM lparam) {
  return IS_INTRESOURCE(lparam) ? nullptr : reinterpret_cast<T*>(lparam);
}

// A label's text without its mnemonic mark and line breaks.
std::wstring PlainLabel(const wchar_t* text);
std::wstring WindowText(HWND window);

}  // namespace tervan::ui
