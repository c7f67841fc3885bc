// The COM classes that the module creates, in a fixed order: registration walks it forwards, unregistration backwards.
#pragma once

#include <windows.h>

#include <span>

#include "directshow/com_object.h"
#include "directshow/registration.h"

namespace tervan {

struct ClassTemplate {
  const wchar_t* name;
  const CLSID* clsid;
  // A new object for the outer unknown (may be null), or null with the reason in *result.
  directshow::ComObject* (*create)(IUnknown* outer, HRESULT* result);
  const directshow::FilterSetup* setup;  // null: not a filter
};

std::span<const ClassTemplate> ClassTable();

// Creates an object and queries it. S_OK, E_OUTOFMEMORY, the object's own failure, E_NOINTERFACE; *out is null on
// failure.
HRESULT CreateFrom(const ClassTemplate& row, IUnknown* outer, REFIID iid, void** out);

}  // namespace tervan
