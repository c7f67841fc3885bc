// A picture of a property page, taken while its frame is shown.
#pragma once

#include <windows.h>

#include <cstdint>
#include <vector>

#include "host/options.h"

namespace tervan::host {

class PagePhotographer {
 public:
  explicit PagePhotographer(PageOpening opening) : opening_(opening) {}

  // For each turn in the frame's message loop and in those of what the page opens. False once the picture is taken.
  // Throws a Failure.
  bool Tick(HWND frame);

  // A PNG file. Throws a Failure when somebody closed the frame before.
  const std::vector<std::uint8_t>& Picture() const;

 private:
  void Open(HWND page) const;

  const PageOpening opening_;
  bool is_ready_ = false;
  ULONGLONG due_ms_ = 0;
  std::vector<std::uint8_t> picture_;
};

}  // namespace tervan::host
