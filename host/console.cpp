#include "host/console.h"

#include <windows.h>

#include <atomic>

#include "host/failure.h"
#include "host/text.h"

namespace tervan::host {
namespace {

std::atomic<bool> interrupted{false};

bool IsConsole(HANDLE handle) {
  DWORD mode;
  return GetConsoleMode(handle, &mode) != FALSE;
}

void Print(DWORD which, std::string_view text) {
  const HANDLE handle = GetStdHandle(which);
  DWORD written;
  if (IsConsole(handle)) {
    const std::wstring wide = Wide(text);
    WriteConsoleW(handle, wide.data(), static_cast<DWORD>(wide.size()), &written, nullptr);
    return;
  }
  // A pipe may take less than it is offered.
  while (!text.empty() && WriteFile(handle, text.data(), static_cast<DWORD>(text.size()), &written, nullptr) &&
         written > 0) {
    text.remove_prefix(written);
  }
}

BOOL WINAPI OnInterrupt(DWORD kind) {
  interrupted = true;
  // After a closed window or a logoff the process ends when this returns: leave the main thread time to clean up.
  if (kind != CTRL_C_EVENT && kind != CTRL_BREAK_EVENT) Sleep(5000);
  return TRUE;
}

}  // namespace

void PrintOut(std::string_view text) { Print(STD_OUTPUT_HANDLE, text); }
void PrintError(std::string_view text) { Print(STD_ERROR_HANDLE, text); }

void CatchInterrupts() { SetConsoleCtrlHandler(OnInterrupt, TRUE); }
bool IsInterrupted() { return interrupted; }
void ThrowIfInterrupted() {
  if (interrupted) throw Failure("interrupted");
}

ProgressLine::ProgressLine(std::string label, std::uint64_t total)
    : label_(std::move(label)), total_(total), is_shown_(IsConsole(GetStdHandle(STD_ERROR_HANDLE))) {}

ProgressLine::~ProgressLine() {
  if (percent_ >= 0) PrintError('\r' + std::string(label_.size() + 6, ' ') + '\r');
}

void ProgressLine::Show(std::uint64_t done) {
  if (!is_shown_ || total_ == 0) return;
  const int percent = static_cast<int>(100 * done / total_);
  if (percent == percent_) return;
  percent_ = percent;
  PrintError('\r' + label_ + ' ' + std::to_string(percent) + " %");
}

}  // namespace tervan::host
