// Standard output for data, standard error for messages and progress, and Ctrl-C.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tervan::host {

// UTF-8 as it is into files and pipes, properly shown on a console.
void PrintOut(std::string_view text);
void PrintError(std::string_view text);

// From now on Ctrl-C and the like only raise a flag, so that unfinished files can be removed.
void CatchInterrupts();
bool IsInterrupted();
// Throws a Failure once the flag is up.
void ThrowIfInterrupted();

// One line that shows how far a file is, on a terminal only. It vanishes with the object.
class ProgressLine {
 public:
  ProgressLine(std::string label, std::uint64_t total);
  ~ProgressLine();
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;

  void Show(std::uint64_t done);

 private:
  const std::string label_;
  const std::uint64_t total_;
  const bool is_shown_;
  int percent_ = -1;  // what stands there now
};

}  // namespace tervan::host
