// IGateSettings: the controls of the Track Noise Gate. Callers reach the methods by slot: append, never reorder.
#pragma once

#include <windows.h>

#include <unknwn.h>

#include <mmreg.h>

#include "effects/gate/gate_settings.h"
#include "shell/param_slots.h"

namespace tervan {

// The compressor answers the same IID with its own interface: connect a page to its own effect only.
//
// Pointers may not be null (E_POINTER). [any thread] unless told otherwise.
struct IGateSettings : IUnknown {
  // Slot 3. S_OK.
  virtual HRESULT STDMETHODCALLTYPE GetSettings(GateSettings* settings) = 0;
  // Slot 4. As given, without clamping; the recorder is told of each change. S_OK.
  virtual HRESULT STDMETHODCALLTYPE SetSettings(const GateSettings* settings) = 0;
  // Slot 5. S_OK, or VFW_E_NOT_CONNECTED.
  virtual HRESULT STDMETHODCALLTYPE GetFormat(WAVEFORMATEX* format) = 0;
  // Slot 6. Has WM_COMMAND with the id and a notification code posted to the window; id 0 ends it. S_OK, or
  // E_OUTOFMEMORY when two other windows are registered. [page]
  virtual HRESULT STDMETHODCALLTYPE SetNotifyWindow(HWND window, int command_id) = 0;

  // Slots 7 to 26, in the units of GateSettings.
  TERVAN_PARAM_SLOTS(AttackTime, INT32)
  TERVAN_PARAM_SLOTS(ReleaseTime, INT32)
  TERVAN_PARAM_SLOTS(ThresholdLevel, INT32)
  TERVAN_PARAM_SLOTS(Bypass, INT32)
};

}  // namespace tervan

__CRT_UUID_DECL(tervan::IGateSettings, 0xc400f99b, 0x0c6e, 0x444c, 0x8f, 0x20, 0x98, 0xdb, 0x21, 0x6b, 0xe5, 0x6e)
