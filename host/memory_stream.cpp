#include "host/memory_stream.h"

#include "host/failure.h"
#include "host/text.h"

namespace tervan::host {
namespace {

void Check(HRESULT result) {
  if (FAILED(result)) throw Failure("a stream in memory fails: " + SystemMessage(result));
}

}  // namespace

directshow::ComPtr<IStream> MemoryStream() {
  directshow::ComPtr<IStream> stream;
  Check(CreateStreamOnHGlobal(nullptr, TRUE, stream.Put()));
  return stream;
}

std::vector<std::uint8_t> ContentOf(IStream& stream) {
  STATSTG status{};
  Check(stream.Stat(&status, STATFLAG_NONAME));
  std::vector<std::uint8_t> content(static_cast<size_t>(status.cbSize.QuadPart));
  Check(stream.Seek({}, STREAM_SEEK_SET, nullptr));
  Check(stream.Read(content.data(), static_cast<ULONG>(content.size()), nullptr));
  return content;
}

}  // namespace tervan::host
