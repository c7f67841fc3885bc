#include "shell/notification_table.h"

#include <algorithm>

namespace tervan {

HRESULT NotificationTable::SetWindow(WindowHandle window, std::int32_t command_id) {
  const auto holds = [](WindowHandle wanted) { return [wanted](const Entry& e) { return e.window == wanted; }; };
  auto entry = std::find_if(entries_.begin(), entries_.end(), holds(window));
  if (entry == entries_.end()) {
    const auto last_empty = std::find_if(entries_.rbegin(), entries_.rend(), holds(nullptr));
    if (last_empty == entries_.rend()) return command_id == 0 ? S_OK : E_OUTOFMEMORY;
    entry = last_empty.base() - 1;
  }
  *entry = {command_id == 0 ? nullptr : window, command_id};
  return S_OK;
}

void NotificationTable::Post(std::uint16_t code) {
  for (Entry& entry : entries_) {
    if (!entry.window) continue;
    if (poster_.Exists(entry.window)) {
      poster_.PostCommand(entry.window, entry.command_id, code);
    } else {
      entry = {};
    }
  }
}

bool NotificationTable::HasWindow() const {
  return std::any_of(entries_.begin(), entries_.end(), [](const Entry& entry) { return entry.window != nullptr; });
}

}  // namespace tervan
