// What a rendering was, for people and for programs.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "host/audio_format.h"
#include "host/options.h"

namespace tervan::host {

struct Levels {
  double peak_db;
  double rms_db;
};

struct EffectReport {
  std::string name;
  std::optional<double> largest_reduction_db;  // nothing when the effect publishes none
};

struct FileReport {
  std::string input;
  std::string output;
  std::string error;  // a sentence; the rest is not filled then

  AudioFormat input_format{};  // of the file
  AudioFormat output_format{};
  std::uint64_t frames = 0;  // in the output
  Levels input_levels{};
  Levels output_levels{};
  std::vector<EffectReport> effects;
  double elapsed_s = 0.0;  // from opening the input to closing the output

  double DurationS() const { return static_cast<double>(frames) / output_format.rate_hz; }
  // How many times faster than playing it.
  double TimesRealTime() const { return DurationS() / elapsed_s; }
};

std::string ReportText(const FileReport& report);
std::string ReportJson(std::span<const FileReport> reports, RenderPath path);

}  // namespace tervan::host
