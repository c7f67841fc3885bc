// Streams in memory, for components that read and write only through IStream. Throw a Failure.
#pragma once

#include <windows.h>

#include <objidl.h>

#include <cstdint>
#include <vector>

#include "directshow/com_ptr.h"

namespace tervan::host {

directshow::ComPtr<IStream> MemoryStream();
std::vector<std::uint8_t> ContentOf(IStream& stream);

}  // namespace tervan::host
