// The private COM interfaces that all effects share. Callers reach the methods by slot: append, never reorder.
// (IParamRecorder is the host's to implement.) Threads: [host] any but the streaming thread, [stream] the one that
// processes.
#pragma once

#include <windows.h>

#include <unknwn.h>

namespace tervan {

struct IPluginPresets : IUnknown {
  // Slot 3. S_OK, or E_POINTER. [host]
  virtual HRESULT STDMETHODCALLTYPE GetPresetCount(LONG* count) = 0;
  // Slot 4. name_length characters, the terminator among them; a name that does not fit is cut. S_OK, E_POINTER, or
  // E_INVALIDARG for an index without a preset. [host]
  virtual HRESULT STDMETHODCALLTYPE GetPresetName(LONG index, WCHAR* name, LONG name_length) = 0;
  // Slot 5. S_OK, or E_INVALIDARG for an index without a preset. [host]
  virtual HRESULT STDMETHODCALLTYPE ApplyPreset(LONG index) = 0;
};

// Runs an effect on interleaved 32-bit float frames, without a filter graph. All methods [stream], except IsUnchanged
// [host].
struct IDirectBufferProcess : IUnknown {
  // Slot 3. S_OK, the effect's failure, or E_INVALIDARG unless channels is 1 or 2.
  virtual HRESULT STDMETHODCALLTYPE BeginStream(DWORD channels, DWORD sample_rate_hz) = 0;
  // Slot 4. In place, frames × channels floats. flush reaches the engine: the stream ends here. S_OK; S_FALSE: the
  // effect is done; E_POINTER.
  virtual HRESULT STDMETHODCALLTYPE ProcessBuffer(float* buffer, DWORD frames, DWORD flush) = 0;
  // Slot 5. *frames in: room in the buffer; out: frames written. S_FALSE with 0 when there is no tail; E_POINTER.
  virtual HRESULT STDMETHODCALLTYPE GetTail(float* buffer, DWORD* frames) = 0;
  // Slot 6. S_OK.
  virtual HRESULT STDMETHODCALLTYPE EndStream() = 0;
  // Slot 7. S_FALSE (1) when no change of settings waits to be pushed, S_OK (0) when one does.
  virtual HRESULT STDMETHODCALLTYPE IsUnchanged() = 0;
  // Slot 8. reset: clock to 0 and a full push. Else a smooth push of waiting changes, S_FALSE (1) when there are none.
  virtual HRESULT STDMETHODCALLTYPE Refresh(DWORD reset, DWORD ignored1, DWORD ignored2) = 0;
};

// What a host gives to be told of edits made on a page. Called without any lock held, on the thread that edits; count
// is always 1.
struct IParamRecorder : IUnknown {
  virtual HRESULT STDMETHODCALLTYPE BeginEdit(DWORD* indices, DWORD count) = 0;                 // slot 3
  virtual HRESULT STDMETHODCALLTYPE EditValue(DWORD* indices, DWORD count, float* values) = 0;  // slot 4
  virtual HRESULT STDMETHODCALLTYPE EndEdit(DWORD* indices, DWORD count) = 0;                   // slot 5
};

struct IParamRecorderSite : IUnknown {
  // Slot 3. Keeps a reference until the next call or the filter's end; null for none. S_OK. [host]
  virtual HRESULT STDMETHODCALLTYPE SetRecorder(IParamRecorder* recorder) = 0;
};

}  // namespace tervan

__CRT_UUID_DECL(tervan::IPluginPresets, 0x36a22460, 0x0cc9, 0x11d0, 0x85, 0x74, 0x00, 0xa0, 0xc9, 0x05, 0x39, 0x12)
__CRT_UUID_DECL(tervan::IDirectBufferProcess, 0x8568d2a1, 0x2a86, 0x11d3, 0x9e, 0x94, 0x00, 0xc0, 0x4f, 0x68, 0xbe,
                0x44)
__CRT_UUID_DECL(tervan::IParamRecorderSite, 0xf5011136, 0xc416, 0x48b9, 0x8c, 0x35, 0xe7, 0xc5, 0xf9, 0xaa, 0x6f, 0xdf)
