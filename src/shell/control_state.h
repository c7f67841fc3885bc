// What every effect's control object keeps beside its settings: change flags, registered windows, the connected format,
// one lock.
#pragma once

#include <atomic>
#include <cstdint>
#include <optional>

#include "shell/notification_table.h"
#include "shell/stream_format.h"
#include "support/lock.h"
#include "support/result.h"

namespace tervan {

class ControlState {
 public:
  explicit ControlState(WindowPoster& poster) : windows_(poster) {}
  ControlState(const ControlState&) = delete;
  ControlState& operator=(const ControlState&) = delete;

  // S_OK; E_POINTER; kNotConnected while no format has been set. [any thread]
  HRESULT GetFormat(StreamFormat* format) const;
  void SetFormat(const StreamFormat& format);

  // As NotificationTable. [any thread]
  HRESULT SetNotifyWindow(WindowHandle window, std::int32_t command_id);
  void Notify(std::uint16_t code);
  bool HasNotifyWindow() const;

  void MarkChanged();          // the engine must fetch the settings
  void MarkChangedAndDirty();  // and the host should save them
  // Without clearing. Without a lock: the stream asks before every chunk.
  bool IsChanged() const { return changed_.load(std::memory_order_relaxed); }
  bool IsDirty() const;
  bool TakeDirty();  // clears it and says what it was
  void MarkDirty();

 protected:
  ~ControlState() = default;

  mutable Lock lock_;  // guards all below and what the derived class names. Taken before the parameter store's.
  std::atomic<bool> changed_ = true;  // written under the lock
  bool dirty_ = false;

 private:
  NotificationTable windows_;
  std::optional<StreamFormat> format_;
};

}  // namespace tervan
