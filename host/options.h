// What the command line asks for.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/audio_format.h"
#include "host/effect_request.h"

namespace tervan::host {

enum class Command { kHelp, kVersion, kList, kDescribe, kRender, kPage, kBench, kRegister, kUnregister };
enum class RenderPath { kGraph, kDirect };
enum class PageOpening { kNothing, kAboutBox, kMenu };  // before its picture is taken

struct Options {
  Command command = Command::kHelp;
  std::string module_path;  // empty: look for it
  bool json = false;

  std::string described_effect;

  std::vector<std::string> inputs;     // of a page at most one
  std::string output;                  // a pattern when there are several inputs
  std::vector<EffectRequest> effects;  // of a page exactly one; of a benchmark only names, none for all
  RenderPath path = RenderPath::kGraph;
  std::optional<SampleType> word_length;  // integers to write; nothing: what the effects worked on
  std::string automation_path;            // empty: none
  std::string picture_path;               // likewise
  PageOpening opening = PageOpening::kNothing;
  bool force = false;
  bool quick = false;
};

// Throws a UsageError.
Options ParseOptions(const std::vector<std::string>& arguments);

std::string_view HelpText();

// "{name}" in the output stands for the input's name without folder and extension.
std::string OutputPathFor(const std::string& pattern, const std::string& input);

}  // namespace tervan::host
