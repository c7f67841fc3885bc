// IEqSettings: the controls of the Track EQ. Callers reach the methods by slot: append, never reorder.
#pragma once

#include <windows.h>

#include <unknwn.h>

#include <mmreg.h>

#include "effects/eq/eq_settings.h"
#include "shell/param_slots.h"

namespace tervan {

// The slots of one setting in all bands.
#define TERVAN_BAND_SLOTS(Setting)          \
  TERVAN_PARAM_SLOTS(Band1##Setting, INT32) \
  TERVAN_PARAM_SLOTS(Band2##Setting, INT32) \
  TERVAN_PARAM_SLOTS(Band3##Setting, INT32) \
  TERVAN_PARAM_SLOTS(Band4##Setting, INT32)

// Values in the units of EqSettings. Pointers may not be null (E_POINTER). [any thread] unless told otherwise.
struct IEqSettings : IUnknown {
  // Slot 3. S_OK.
  virtual HRESULT STDMETHODCALLTYPE GetSettings(EqSettings* settings) = 0;
  // Slot 4. As given, without clamping; the recorder is told of each change. S_OK.
  virtual HRESULT STDMETHODCALLTYPE SetSettings(const EqSettings* settings) = 0;
  // Slot 5. S_OK, or VFW_E_NOT_CONNECTED.
  virtual HRESULT STDMETHODCALLTYPE GetFormat(WAVEFORMATEX* format) = 0;
  // Slot 6. Has WM_COMMAND with the id and a notification code posted to the window; id 0 ends it. S_OK, or
  // E_OUTOFMEMORY when two other windows are registered. [page]
  virtual HRESULT STDMETHODCALLTYPE SetNotifyWindow(HWND window, int command_id) = 0;

  // Slots 7 to 126.
  TERVAN_BAND_SLOTS(Gain)
  TERVAN_BAND_SLOTS(Bandwidth)
  TERVAN_BAND_SLOTS(Frequency)
  TERVAN_BAND_SLOTS(Mode)
  TERVAN_BAND_SLOTS(Rolloff)
  TERVAN_BAND_SLOTS(Enable)

  // Slots 127 and 128. The band that the page shows: neither a parameter nor a change of settings. S_OK.
  virtual HRESULT STDMETHODCALLTYPE GetSelectedBand(int* band) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetSelectedBand(int band) = 0;
  // Slot 129. S_OK once after the host has set a parameter, S_FALSE otherwise. [page]
  virtual HRESULT STDMETHODCALLTYPE PollChanged() = 0;

  // Slots 130 to 134.
  TERVAN_PARAM_SLOTS(Bypass, INT32)

  // Slots 135 to 140. Band 0 to 3; another one writes nothing. S_OK.
  virtual HRESULT STDMETHODCALLTYPE GetBandFrequency(int* frequency, int band) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetBandGain(int* gain, int band) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetBandBandwidth(int* bandwidth, int band) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetBandMode(int* mode, int band) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetBandRolloff(int* rolloff, int band) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetBandEnable(int* enable, int band) = 0;
};

#undef TERVAN_BAND_SLOTS

}  // namespace tervan

__CRT_UUID_DECL(tervan::IEqSettings, 0xbfeb9e9d, 0x25e6, 0x401e, 0xba, 0xfd, 0x6b, 0x87, 0x85, 0xc4, 0x30, 0x53)
