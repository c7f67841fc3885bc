// What figures were measured on.
#pragma once

#include <unknwn.h>

#include <string>

namespace tervan::host {

// As the processor calls itself.
std::string ProcessorName();

struct LoadedModule {
  std::string path;
  std::string version;  // of its version resource; empty without one
};

// The module whose code an object runs.
LoadedModule ModuleOf(IUnknown& object);

}  // namespace tervan::host
