#include "shell/control_state.h"

#include <utility>

namespace tervan {

HRESULT ControlState::GetFormat(StreamFormat* format) const {
  if (!format) return E_POINTER;
  const LockGuard guard(lock_);
  if (!format_) return kNotConnected;
  *format = *format_;
  return S_OK;
}

void ControlState::SetFormat(const StreamFormat& format) {
  const LockGuard guard(lock_);
  format_ = format;
}

HRESULT ControlState::SetNotifyWindow(WindowHandle window, std::int32_t command_id) {
  const LockGuard guard(lock_);
  return windows_.SetWindow(window, command_id);
}

void ControlState::Notify(std::uint16_t code) {
  const LockGuard guard(lock_);
  windows_.Post(code);
}

bool ControlState::HasNotifyWindow() const {
  const LockGuard guard(lock_);
  return windows_.HasWindow();
}

void ControlState::MarkChanged() {
  const LockGuard guard(lock_);
  changed_ = true;
}

void ControlState::MarkChangedAndDirty() {
  const LockGuard guard(lock_);
  changed_ = true;
  dirty_ = true;
}

bool ControlState::IsDirty() const {
  const LockGuard guard(lock_);
  return dirty_;
}

bool ControlState::TakeDirty() {
  const LockGuard guard(lock_);
  return std::exchange(dirty_, false);
}

void ControlState::MarkDirty() {
  const LockGuard guard(lock_);
  dirty_ = true;
}

}  // namespace tervan
