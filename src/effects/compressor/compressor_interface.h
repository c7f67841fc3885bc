// ICompressorSettings: the controls of the Track Compressor. Callers reach the methods by slot: append, never reorder.
#pragma once

#include <windows.h>

#include <unknwn.h>

#include <mmreg.h>

#include "effects/compressor/compressor_meters.h"
#include "effects/compressor/compressor_settings.h"
#include "shell/param_slots.h"

namespace tervan {

// The gate answers the same IID with its own interface: connect a page to its own effect only.
//
// Pointers may not be null (E_POINTER). [any thread] unless told otherwise.
struct ICompressorSettings : IUnknown {
  // Slot 3. All but the reserved word. S_OK.
  virtual HRESULT STDMETHODCALLTYPE GetSettings(CompressorSettings* settings) = 0;
  // Slot 4. As given, without clamping; the recorder is told of each change. S_OK.
  virtual HRESULT STDMETHODCALLTYPE SetSettings(const CompressorSettings* settings) = 0;
  // Slots 5 and 6. The bodies of two older stored forms: the first six or eight fields. S_OK.
  virtual HRESULT STDMETHODCALLTYPE SetLegacySettings6(const UINT32* words) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetLegacySettings8(const UINT32* words) = 0;
  // Slot 7. S_OK, or VFW_E_NOT_CONNECTED.
  virtual HRESULT STDMETHODCALLTYPE GetFormat(WAVEFORMATEX* format) = 0;
  // Slot 8. Has WM_COMMAND with the id and a notification code posted to the window; id 0 ends it. S_OK, or
  // E_OUTOFMEMORY when two other windows are registered. [page]
  virtual HRESULT STDMETHODCALLTYPE SetNotifyWindow(HWND window, int command_id) = 0;

  // Slots 9 to 53.
  TERVAN_PARAM_SLOTS(InputGain, float)
  TERVAN_PARAM_SLOTS(OutputGain, float)
  TERVAN_PARAM_SLOTS(Threshold, float)
  TERVAN_PARAM_SLOTS(Amount, float)
  TERVAN_PARAM_SLOTS(AttackTime, float)
  TERVAN_PARAM_SLOTS(ReleaseTime, float)
  TERVAN_PARAM_SLOTS(AutoGainCompensation, INT32)
  TERVAN_PARAM_SLOTS(SmoothSaturation, INT32)
  TERVAN_PARAM_SLOTS(Bypass, INT32)

  // Slot 54. The record of the reference clock's current time, or the latest one. S_OK. [page]
  virtual HRESULT STDMETHODCALLTYPE GetMeters(CompressorMeters* meters) = 0;
  // Slot 55. Publishes a record. S_OK. [stream]
  virtual HRESULT STDMETHODCALLTYPE PutMeters(CompressorMeters meters) = 0;
};

}  // namespace tervan

__CRT_UUID_DECL(tervan::ICompressorSettings, 0xc400f99b, 0x0c6e, 0x444c, 0x8f, 0x20, 0x98, 0xdb, 0x21, 0x6b, 0xe5, 0x6e)
