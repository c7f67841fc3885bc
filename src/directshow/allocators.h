// The platform's memory allocator, and what every pin asks of one.
#pragma once
#include <windows.h>

#include <dshow.h>

#include "directshow/com_ptr.h"

namespace tervan::directshow {

HRESULT CreateMemoryAllocator(ComPtr<IMemAllocator>* allocator) noexcept;

// Sets these properties; at least one buffer of one byte. E_FAIL when the allocator grants less than asked.
HRESULT SetAllocatorProperties(IMemAllocator& allocator, ALLOCATOR_PROPERTIES wanted) noexcept;

}  // namespace tervan::directshow
