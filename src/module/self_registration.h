// Enters the module's classes into the registry and its filters into the filter mapper, and takes them out again. The
// first failure ends either with its code; nothing is rolled back.
#pragma once

#include <windows.h>

namespace tervan {

HRESULT RegisterModule(HINSTANCE module);
HRESULT UnregisterModule();

}  // namespace tervan
