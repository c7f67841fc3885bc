// IMediaParams with the slots in the order in which hosts call them. The toolchain's own declaration has the same IID
// and methods but another order, so it must not be used; of its header only the records and IMediaParamInfo serve.
#pragma once

#include <windows.h>

#include <unknwn.h>

#include <medparam.h>

namespace tervan {

// Indices are rows of the effect's parameter table; 0xFFFFFFFF reaches all of them where told so. E_INVALIDARG for
// other indices.
struct IMediaParams : IUnknown {
  // Slot 3. S_OK, or E_POINTER. [any thread]
  virtual HRESULT STDMETHODCALLTYPE GetParam(DWORD index, MP_DATA* value) = 0;
  // Slot 4. S_OK; S_FALSE when that is already the value or automation governs it; E_INVALIDARG outside the range.
  // [host]
  virtual HRESULT STDMETHODCALLTYPE SetParam(DWORD index, MP_DATA value) = 0;
  // Slot 5. One or all parameters. S_OK; E_POINTER; E_INVALIDARG without segments or for values that are not finite;
  // E_OUTOFMEMORY. [host]
  virtual HRESULT STDMETHODCALLTYPE AddEnvelope(DWORD index, DWORD count, MP_ENVELOPE_SEGMENT* segments) = 0;
  // Slot 6. One or all parameters; removes the segments that overlap the span. S_OK; E_OUTOFMEMORY.
  // [host]
  virtual HRESULT STDMETHODCALLTYPE FlushEnvelope(DWORD index, REFERENCE_TIME start, REFERENCE_TIME end) = 0;
  // Slot 7. S_OK for GUID_TIME_REFERENCE, else E_FAIL. [host]
  virtual HRESULT STDMETHODCALLTYPE SetTimeFormat(GUID format, MP_TIMEDATA time_data) = 0;
};

}  // namespace tervan

__CRT_UUID_DECL(tervan::IMediaParams, 0x6d6cbb61, 0xa223, 0x44aa, 0x84, 0x2f, 0xa2, 0xf0, 0x67, 0x50, 0xbe, 0x6e)
