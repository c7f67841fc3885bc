// tervan-host: the command line that renders files through tervanfx.dll and shows its property pages.
#include <windows.h>

#include <objbase.h>

#include <string>
#include <vector>

#include "host/bench.h"
#include "host/console.h"
#include "host/describe.h"
#include "host/exit_code.h"
#include "host/failure.h"
#include "host/json_writer.h"
#include "host/module_loader.h"
#include "host/options.h"
#include "host/page.h"
#include "host/render.h"
#include "host/text.h"

namespace tervan::host {
namespace {

void ReportRegistration(const Options& options, const Module& module) {
  const bool is_registered = options.command == Command::kRegister;
  if (options.json) {
    JsonWriter json;
    json.BeginObject().Key("module").Text(module.Path()).Key("registered").Bool(is_registered).EndObject();
    PrintOut(json.Take());
    return;
  }
  PrintOut((is_registered ? "registered " : "unregistered ") + module.Path() + '\n');
}

// Windows live in a single-threaded apartment; everything else runs in the multi-threaded one.
class ComApartment {
 public:
  explicit ComApartment(bool has_windows) {
    CoInitializeEx(nullptr, has_windows ? COINIT_APARTMENTTHREADED : COINIT_MULTITHREADED);
  }
  ~ComApartment() { CoUninitialize(); }
  ComApartment(const ComApartment&) = delete;
  ComApartment& operator=(const ComApartment&) = delete;
};

int Execute(const Options& options) {
  switch (options.command) {
    case Command::kHelp: PrintOut(HelpText()); break;
    case Command::kVersion: PrintOut("tervan-host " TERVAN_VERSION "\n"); break;
    case Command::kList: PrintOut(ListEffects(Module(options.module_path), options.json)); break;
    case Command::kDescribe:
      PrintOut(DescribeEffect(Module(options.module_path), options.described_effect, options.json));
      break;
    case Command::kRender: return Render(options);
    case Command::kBench: Bench(options); break;
    case Command::kPage: return ShowPage(options);
    case Command::kRegister:
    case Command::kUnregister: {
      const Module module(options.module_path);
      options.command == Command::kRegister ? module.Register() : module.Unregister();
      ReportRegistration(options, module);
      break;
    }
  }
  return kExitDone;
}

int Main(const std::vector<std::string>& arguments) {
  try {
    CatchInterrupts();
    const Options options = ParseOptions(arguments);
    const ComApartment apartment(options.command == Command::kPage);
    return Execute(options);
  } catch (const UsageError& error) {
    PrintError("tervan-host: " + std::string(error.what()) + '\n');
    return kExitUsage;
  } catch (const std::exception& error) {
    PrintError("tervan-host: " + std::string(error.what()) + '\n');
    return kExitFailed;
  }
}

}  // namespace
}  // namespace tervan::host

int wmain(int count, wchar_t** values) {
  std::vector<std::string> arguments;
  for (int i = 1; i < count; ++i) arguments.push_back(tervan::host::Narrow(values[i]));
  return tervan::host::Main(arguments);
}
