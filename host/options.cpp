#include "host/options.h"

#include <algorithm>
#include <array>
#include <optional>

#include "host/failure.h"
#include "host/file_handle.h"
#include "host/text.h"

namespace tervan::host {
namespace {

constexpr std::string_view kNamePlaceholder = "{name}";

constexpr std::string_view kHelp =
    R"(tervan-host runs WAV files through the effects of tervanfx.dll, shows their property pages and tells how fast they are.

  tervan-host list                          the effects
  tervan-host describe EFFECT               its parameters, presets and interfaces
  tervan-host render IN.wav... OUT.wav      renders files
  tervan-host page EFFECT[:KEY=VALUE]... [IN.wav]
                                            shows its property page, while the file plays through it in a loop
  tervan-host bench                         how fast the effects are on this machine
  tervan-host register | unregister         enters the module into the registry, or removes it

Options of render
  --effect NAME[:KEY=VALUE]...   adds an effect to the chain. Keys, applied from left to right:
                                   preset     number or name, or the beginning of a name
                                   load       a file with stored settings
                                   save       a file to store the settings in
                                   PARAMETER  a parameter; see "describe". Blanks, '-', '_', '.' and case do not
                                              matter, and a beginning is enough: attack=5 sets "Attack Time".
                                              Switches take on and off; choices their text, or their number where
                                              the texts are no numbers: mode=high shelf, mode=3, rolloff=12.
                                 A colon starts a new setting only where KEY= follows, so names and paths may hold
                                 colons; a value in double quotes is taken as it is.
  --path graph|direct            through a filter graph (default), or as plain buffers of 32-bit float
  --bits 8|16|24|32              writes integers of this word length, rounded to the nearest and limited at full scale.
                                 Integer files then run through the graph as 64-bit float, so that nothing is cut off
                                 before the end. After a dither of the same depth nothing is left to round. Otherwise
                                 the output has the format that the effects worked on.
  --automation FILE.csv          lines of: parameter, start s, end s, start value, end value, curve
                                 Curves: jump, linear, square, invsquare. In a chain the parameter is written with the
                                 effect in front: compressor.threshold, or 2.threshold for the second effect.
  --load-state FILE              the same as :load= of the only effect, before its other settings
  --save-state FILE              the same as :save= of the only effect
  --force                        replaces existing files
Without an effect the audio is passed on as it is.
With several inputs the output is a pattern: {name} stands for the input's name, as in out/{name}-comp.wav.

Options of page
  --picture FILE.png             takes a picture of the window after a second and closes it
  --open about|menu              with the about box open, or with the page's menu and its presets
  --automation FILE.csv          as above, in stream time: loops do not begin it again
  --load-state, --save-state, --force
                                 as above; settings are saved as they are when the window is closed

Options of bench
  --effect NAME...               only this effect
  --quick                        a few seconds instead of a quarter of a minute, for rough figures

Options of all commands
  --module FILE                  the module; otherwise the tervanfx.dll beside this program, or the registered one
  --json                         prints the result as JSON
  --version, --help

Exit codes: 0 done, 1 the command line is wrong, 2 something failed.

  tervan-host render in.wav out.wav --effect "compressor:preset=Soft Limiter:threshold=-12"
  tervan-host render in.wav out.wav --effect eq:band2.gain=4.5 --effect dither:depth=16 --bits 16
  tervan-host page gate:threshold=-30 in.wav
)";

struct CommandName {
  std::string_view name;
  Command command;
};
constexpr std::array kCommands{CommandName{"list", Command::kList},
                               CommandName{"describe", Command::kDescribe},
                               CommandName{"render", Command::kRender},
                               CommandName{"page", Command::kPage},
                               CommandName{"bench", Command::kBench},
                               CommandName{"register", Command::kRegister},
                               CommandName{"unregister", Command::kUnregister}};

// Options that not all commands have.
struct OptionUse {
  std::string_view name;
  std::array<Command, 2> users;  // twice the same where there is only one
};
constexpr Command kRender = Command::kRender, kPage = Command::kPage, kBench = Command::kBench;
constexpr std::array kOptionUses{
    OptionUse{"--effect", {kRender, kBench}},    OptionUse{"--path", {kRender, kRender}},
    OptionUse{"--bits", {kRender, kRender}},     OptionUse{"--automation", {kRender, kPage}},
    OptionUse{"--load-state", {kRender, kPage}}, OptionUse{"--save-state", {kRender, kPage}},
    OptionUse{"--force", {kRender, kPage}},      OptionUse{"--picture", {kPage, kPage}},
    OptionUse{"--open", {kPage, kPage}},         OptionUse{"--quick", {kBench, kBench}}};

std::string NameOf(Command command) {
  return std::string(std::ranges::find(kCommands, command, &CommandName::command)->name);
}

[[noreturn]] void Fail(const std::string& message) { throw UsageError(message); }

// Sorts the arguments into options and words.
class Parser {
 public:
  explicit Parser(const std::vector<std::string>& arguments) : arguments_(arguments) {}

  Options Parse() {
    while (next_ < arguments_.size()) {
      const std::string& argument = arguments_[next_++];
      if (!only_words_ && argument == "--") {
        only_words_ = true;
      } else if (!only_words_ && argument.starts_with('-') && argument != "-") {
        TakeOption(argument);
      } else {
        words_.push_back(argument);
      }
    }
    if (options_.command == Command::kHelp && !asks_for_help_) TakeWords();
    return options_;
  }

 private:
  void TakeOption(const std::string& argument) {
    const size_t equals = argument.find('=');
    const std::string name = argument.substr(0, equals);
    inline_value_.reset();
    if (equals != std::string::npos) inline_value_ = argument.substr(equals + 1);

    if (name == "--help" || name == "-h") {
      asks_for_help_ = true;
      options_.command = Command::kHelp;
    } else if (name == "--version") {
      if (!asks_for_help_) options_.command = Command::kVersion;
    } else if (name == "--json") {
      options_.json = true;
    } else if (name == "--module") {
      options_.module_path = Value(name);
    } else {
      TakeStreamOption(name);
    }
    if (inline_value_) Fail("the option " + name + " takes no value");
  }

  void TakeStreamOption(const std::string& name) {
    stream_options_.push_back(name);
    if (name == "--effect") {
      options_.effects.push_back(ParseEffectRequest(Value(name)));
    } else if (name == "--path") {
      const std::string value = Value(name);
      if (value != "graph" && value != "direct") Fail("--path takes graph or direct, not " + Quoted(value));
      options_.path = value == "graph" ? RenderPath::kGraph : RenderPath::kDirect;
    } else if (name == "--bits") {
      const std::string value = Value(name);
      const auto bits = ParseInteger(value);
      options_.word_length = bits ? PcmType(*bits) : std::nullopt;
      if (!options_.word_length) Fail("--bits takes 8, 16, 24 or 32, not " + Quoted(value));
    } else if (name == "--automation") {
      options_.automation_path = Value(name);
    } else if (name == "--picture") {
      options_.picture_path = Value(name);
    } else if (name == "--open") {
      const std::string value = Value(name);
      if (value != "about" && value != "menu") Fail("--open takes about or menu, not " + Quoted(value));
      options_.opening = value == "menu" ? PageOpening::kMenu : PageOpening::kAboutBox;
    } else if (name == "--load-state") {
      load_state_path_ = Value(name);
    } else if (name == "--save-state") {
      save_state_path_ = Value(name);
    } else if (name == "--force") {
      options_.force = true;
    } else if (name == "--quick") {
      options_.quick = true;
    } else {
      Fail("there is no option " + name + "; --help shows all");
    }
  }

  // The text after "=", or the next argument.
  std::string Value(const std::string& name) {
    if (inline_value_) {
      const std::string value = *inline_value_;
      inline_value_.reset();
      if (value.empty()) Fail("the option " + name + " needs a value");
      return value;
    }
    if (next_ == arguments_.size() || arguments_[next_].empty()) Fail("the option " + name + " needs a value");
    return arguments_[next_++];
  }

  void TakeWords() {
    if (words_.empty()) {
      if (arguments_.empty()) return;  // nothing at all shows the help
      Fail("no command is given; --help shows all");
    }
    for (const auto& [name, command] : kCommands) {
      if (words_[0] == name) options_.command = command;
    }
    if (options_.command == Command::kHelp) {
      Fail("there is no command " + Quoted(words_[0]) +
           "; there are list, describe, render, page, bench, register and unregister");
    }
    const size_t operands = words_.size() - 1;
    switch (options_.command) {
      case Command::kRender: TakeFiles(); break;
      case Command::kPage: TakePage(); break;
      case Command::kDescribe:
        if (operands != 1) Fail("describe takes the name of one effect");
        options_.described_effect = words_[1];
        break;
      default:
        if (operands != 0) Fail(words_[0] + " takes no argument, so " + Quoted(words_[1]) + " means nothing");
    }
    CheckStreamOptions();
    if (options_.command == Command::kBench) CheckBenchEffects();
    TakeStatePaths();
  }

  void CheckStreamOptions() const {
    for (const std::string& option : stream_options_) {
      const OptionUse& use = *std::ranges::find(kOptionUses, option, &OptionUse::name);
      const auto [first, second] = use.users;
      if (options_.command == first || options_.command == second) continue;
      Fail("the option " + option + " belongs to " + NameOf(first) + (first == second ? "" : " and " + NameOf(second)));
    }
  }

  void CheckBenchEffects() const {
    for (const EffectRequest& effect : options_.effects) {
      if (!effect.settings.empty()) Fail("bench has settings of its own; its --effect takes only a name");
    }
  }

  void TakeFiles() {
    if (words_.size() < 3) Fail("render takes at least one input file and an output file");
    options_.inputs.assign(words_.begin() + 1, words_.end() - 1);
    options_.output = words_.back();
    if (options_.inputs.size() > 1 && options_.output.find(kNamePlaceholder) == std::string::npos) {
      Fail("several inputs need an output with {name} in it, not " + Quoted(options_.output));
    }
  }

  void TakePage() {
    if (words_.size() < 2 || words_.size() > 3) Fail("page takes an effect and at most one input file");
    if (options_.opening != PageOpening::kNothing && options_.picture_path.empty()) Fail("--open needs a --picture");
    options_.effects.push_back(ParseEffectRequest(words_[1]));
    options_.inputs.assign(words_.begin() + 2, words_.end());
  }

  void TakeStatePaths() {
    if (load_state_path_.empty() && save_state_path_.empty()) return;
    if (options_.effects.size() != 1) {
      Fail("--load-state and --save-state need a single --effect; in a chain write :load=FILE and :save=FILE");
    }
    std::vector<Setting>& settings = options_.effects[0].settings;
    if (!load_state_path_.empty()) settings.insert(settings.begin(), {std::string(kLoadKey), load_state_path_});
    if (!save_state_path_.empty()) settings.push_back({std::string(kSaveKey), save_state_path_});
  }

  const std::vector<std::string>& arguments_;
  size_t next_ = 0;
  bool only_words_ = false;
  bool asks_for_help_ = false;
  std::optional<std::string> inline_value_;
  std::vector<std::string> stream_options_;  // those that not all commands have
  std::string load_state_path_;
  std::string save_state_path_;
  std::vector<std::string> words_;
  Options options_;
};

}  // namespace

Options ParseOptions(const std::vector<std::string>& arguments) { return Parser(arguments).Parse(); }

std::string_view HelpText() { return kHelp; }

std::string OutputPathFor(const std::string& pattern, const std::string& input) {
  std::string path = pattern;
  const std::string name = FileStem(input);
  for (size_t at = path.find(kNamePlaceholder); at != std::string::npos;
       at = path.find(kNamePlaceholder, at + name.size())) {
    path.replace(at, kNamePlaceholder.size(), name);
  }
  return path;
}

}  // namespace tervan::host
