// IMediaSeeking and IMediaPosition of a filter that leaves both to whatever is upstream of its input pin.
#pragma once
#include <windows.h>

#include <dshow.h>

#include "directshow/com_ptr.h"
#include "directshow/critical_section.h"

namespace tervan::directshow {

// The platform's pass-through object, made at the first query and aggregated by the pin that answers for it. It holds
// no reference on either pin, so the filter's count is not affected.
class SeekingPassThrough {
 public:
  // E_NOINTERFACE when the platform offers none; otherwise as QueryInterface. Both pins outlive this object.
  HRESULT Query(IPin* owner, IPin* input_pin, REFIID iid, void** out) noexcept;

 private:
  CriticalSection lock_;  // guards inner_
  ComPtr<IUnknown> inner_;
};

}  // namespace tervan::directshow
