// IDitherSettings: the controls of the Dither. Callers reach the methods by slot: append, never reorder.
#pragma once

#include <windows.h>

#include <unknwn.h>

#include <mmreg.h>

#include "effects/dither/dither_settings.h"

namespace tervan {

// Pointers may not be null (E_POINTER). [any thread] unless told otherwise.
struct IDitherSettings : IUnknown {
  // Slot 3. S_OK.
  virtual HRESULT STDMETHODCALLTYPE GetSettings(DitherSettings* settings) = 0;
  // Slot 4. Clamps each field; counts as a change even if nothing differs. S_OK.
  virtual HRESULT STDMETHODCALLTYPE SetSettings(const DitherSettings* settings) = 0;
  // Slot 5. S_OK, or VFW_E_NOT_CONNECTED.
  virtual HRESULT STDMETHODCALLTYPE GetFormat(WAVEFORMATEX* format) = 0;
  // Slot 6. Has WM_COMMAND with the id and a notification code posted to the window; id 0 ends it. S_OK, or
  // E_OUTOFMEMORY when two other windows are registered. [page]
  virtual HRESULT STDMETHODCALLTYPE SetNotifyWindow(HWND window, int command_id) = 0;

  // Slots 7 to 12. Indices as in DitherSettings; setters clamp. S_OK.
  virtual HRESULT STDMETHODCALLTYPE GetQuantizationDepth(INT32* index) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetQuantizationDepth(INT32 index) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetDitherType(INT32* type) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetDitherType(INT32 type) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetNoiseShaping(INT32* shaping) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetNoiseShaping(INT32 shaping) = 0;
};

}  // namespace tervan

__CRT_UUID_DECL(tervan::IDitherSettings, 0x260df3e4, 0xac77, 0x11d2, 0x9e, 0x93, 0x00, 0xc0, 0x4f, 0x68, 0xbe, 0x44)
