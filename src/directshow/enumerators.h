// IEnumPins and IEnumMediaTypes over a filter's pins and a pin's types. Each keeps its filter alive.
#pragma once
#include <windows.h>

#include <dshow.h>

#include "directshow/base_filter.h"
#include "directshow/base_pin.h"

namespace tervan::directshow {

// Next: S_OK; S_FALSE when fewer than asked are left; E_POINTER; E_INVALIDARG when more than one is asked for without a
// place for the number fetched.
// Skip: S_FALSE, and the position stays, when fewer are left.
HRESULT CreatePinEnumerator(BaseFilter& filter, IEnumPins** out) noexcept;
HRESULT CreateMediaTypeEnumerator(BasePin& pin, IEnumMediaTypes** out) noexcept;

}  // namespace tervan::directshow
