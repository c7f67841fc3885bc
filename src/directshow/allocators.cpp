#include "directshow/allocators.h"

#include <algorithm>

namespace tervan::directshow {

HRESULT CreateMemoryAllocator(ComPtr<IMemAllocator>* allocator) noexcept {
  return CoCreateInstance(CLSID_MemoryAllocator, nullptr, CLSCTX_INPROC_SERVER, IID_IMemAllocator,
                          allocator->PutVoid());
}

HRESULT SetAllocatorProperties(IMemAllocator& allocator, ALLOCATOR_PROPERTIES wanted) noexcept {
  wanted.cBuffers = std::max(wanted.cBuffers, 1L);
  wanted.cbBuffer = std::max(wanted.cbBuffer, 1L);
  wanted.cbAlign = std::max(wanted.cbAlign, 1L);
  ALLOCATOR_PROPERTIES granted{};
  const HRESULT result = allocator.SetProperties(&wanted, &granted);
  if (FAILED(result)) return result;
  return granted.cBuffers < wanted.cBuffers || granted.cbBuffer < wanted.cbBuffer ? E_FAIL : S_OK;
}

}  // namespace tervan::directshow
