// Class objects, and what keeps the module loaded.
#pragma once

#include <windows.h>

#include <unknwn.h>

namespace tervan {

// S_OK, E_POINTER, E_NOINTERFACE (only IUnknown and IClassFactory are served), CLASS_E_CLASSNOTAVAILABLE,
// E_OUTOFMEMORY.
HRESULT GetClassObject(REFCLSID clsid, REFIID iid, void** out);

// True when no object, factory or server lock is left.
bool CanUnload();

}  // namespace tervan
