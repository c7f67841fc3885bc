// The windows that want to hear of a filter's changes: at most two.
#pragma once

#include <array>
#include <cstdint>

#include "support/result.h"

namespace tervan {

using WindowHandle = void*;

// Codes that effects post. The compressor has one of its own for replaced settings.
inline constexpr std::uint16_t kInputFormatSet = 0;
inline constexpr std::uint16_t kOutputFormatSet = 1;
inline constexpr std::uint16_t kParamSetByHost = 0;
inline constexpr std::uint16_t kSettingsReplaced = 100;

// How notifications reach a window. Neither call waits for the window's thread.
class WindowPoster {
 public:
  virtual ~WindowPoster() = default;
  virtual bool Exists(WindowHandle window) = 0;
  // Posts a command message with the command id in the low and the code in the high word.
  virtual void PostCommand(WindowHandle window, std::int32_t command_id, std::uint16_t code) = 0;
};

// Not synchronised: its owner's lock guards it.
class NotificationTable {
 public:
  explicit NotificationTable(WindowPoster& poster) : poster_(poster) {}

  // Registers the window, or gives a registered one its new id; id 0 removes it. E_OUTOFMEMORY when two others are
  // registered.
  HRESULT SetWindow(WindowHandle window, std::int32_t command_id);

  // Windows that no longer exist are forgotten.
  void Post(std::uint16_t code);

  bool HasWindow() const;

 private:
  struct Entry {
    WindowHandle window = nullptr;  // null: empty
    std::int32_t command_id = 0;
  };

  WindowPoster& poster_;
  std::array<Entry, 2> entries_;
};

}  // namespace tervan
