// What the effects' filters tell the filter mapper: the same but for CLSID and name.
#pragma once

#include <windows.h>

#include <dshow.h>

#include "directshow/registration.h"

namespace tervan {

inline constexpr directshow::PinTypeSetup kAnyAudio[] = {{&MEDIATYPE_Audio, &GUID_NULL}};

inline constexpr wchar_t kInputPinName[] = L"Input";
inline constexpr wchar_t kOutputPinName[] = L"Output";

// name, rendered, output, may be absent, may be many, connects to, types
inline constexpr directshow::PinSetup kEffectPins[] = {
    {kInputPinName, false, false, false, false, kOutputPinName, kAnyAudio},
    {kOutputPinName, false, true, false, false, kInputPinName, kAnyAudio},
};

// Effects are inserted by hosts that know them, never by the graph's own search.
constexpr directshow::FilterSetup EffectFilterSetup(const CLSID* clsid, const wchar_t* name) {
  return {clsid, name, MERIT_DO_NOT_USE, kEffectPins};
}

}  // namespace tervan
