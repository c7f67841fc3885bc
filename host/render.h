// The render command: checks everything that can be checked, then renders one input after the other.
#pragma once

#include <windows.h>

#include <span>
#include <string>

#include "host/automation_csv.h"
#include "host/module_loader.h"
#include "host/options.h"
#include "host/report.h"

namespace tervan::host {

// Prints the results on stdout and a sentence for every file that failed on stderr; the others are rendered all the
// same. Throws a UsageError or Failure for what concerns all files, before any output is touched.
// Gives the exit code.
int Render(const Options& options);

// What all files have in common.
struct RenderPlan {
  const Options& options;
  const Module* module = nullptr;  // only where there are effects
  HWND meter_window = nullptr;     // null for none
  std::span<const Envelope> automation = {};
};

// Throws a Failure.
FileReport RenderFile(const RenderPlan& plan, const std::string& input);

}  // namespace tervan::host
