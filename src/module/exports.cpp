// The module's entry points. Their plain names are set in tervanfx.def.

#include <windows.h>

#include <objbase.h>

#include "module/class_factory.h"
#include "module/self_registration.h"
#include "ui/band_glyphs.h"
#include "ui/controls/control_classes.h"
#include "ui/pages/context_help.h"
#include "ui/ui_library.h"

namespace {

HINSTANCE module_instance = nullptr;

}  // namespace

extern "C" {

BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, void* /*reserved*/) {
  switch (reason) {
    case DLL_PROCESS_ATTACH:
      module_instance = instance;
      tervan::ui::StartUi(instance);
      tervan::ui::RegisterControls(instance);
      DisableThreadLibraryCalls(instance);
      break;
    case DLL_PROCESS_DETACH:
      tervan::ui::UnregisterControls(instance);
      tervan::ui::UnregisterHelpPopup();
      tervan::ui::EndUi();
      module_instance = nullptr;
      break;
  }
  return TRUE;
}

STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, void** out) { return tervan::GetClassObject(clsid, iid, out); }
STDAPI DllCanUnloadNow() { return tervan::CanUnload() ? S_OK : S_FALSE; }
STDAPI DllRegisterServer() { return tervan::RegisterModule(module_instance); }
STDAPI DllUnregisterServer() { return tervan::UnregisterModule(); }

// Hosts look it up by name. It does nothing. The caller cleans the stack, as is usual for plain functions.
void BuildPositionStringEx(char* /*buffer*/, const void* /*position_format*/, INT64 /*position*/, char* /*text*/,
                           UINT32 /*flags*/) {}

// Null when the system has no font of that name; the caller deletes it. Which characters it has is for the caller to
// ask.
HFONT GetWingdingsFont() { return tervan::ui::MakeWingdingsFont().release(); }

}  // extern "C"
