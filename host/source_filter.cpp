#include "host/source_filter.h"

#include <algorithm>
#include <limits>

#include "directshow/allocators.h"
#include "host/failure.h"
#include "host/host_media_type.h"

namespace tervan::host {
namespace {

constexpr CLSID kSourceClass{0x5f0e7b5a, 0x3c1d, 0x4e0f, {0x9b, 0x52, 0x61, 0x0a, 0x8e, 0x77, 0x2c, 0x41}};
constexpr long kBuffers = 4;
constexpr std::uint64_t kUnitsPerSecond = 10'000'000;  // REFERENCE_TIME

// Whether somebody else holds a reference.
bool IsShared(IMediaSample& sample) {
  sample.AddRef();
  return sample.Release() > 1;
}

}  // namespace

SourcePin::SourcePin(SourceFilter& filter, SampleSource& input, size_t buffer_frames) noexcept
    : OutputPin(filter, L"Output"), owner_(filter), input_(input), buffer_frames_(buffer_frames) {}

HRESULT SourcePin::GetMediaType(int index, directshow::MediaType* type) {
  if (index > 0) return VFW_S_NO_MORE_ITEMS;
  return AssignMediaType(input_.Format(), type);
}

HRESULT SourcePin::CheckMediaType(const AM_MEDIA_TYPE& type) { return CheckMediaTypeIs(input_.Format(), type); }

HRESULT SourcePin::DecideBufferSize(IMemAllocator& allocator, ALLOCATOR_PROPERTIES* properties) {
  properties->cBuffers = std::max(properties->cBuffers, kBuffers);
  properties->cbBuffer =
      std::max(properties->cbBuffer, static_cast<long>(buffer_frames_ * input_.Format().FrameBytes()));
  return directshow::SetAllocatorProperties(allocator, *properties);
}

HRESULT SourcePin::Active() {
  const HRESULT result = OutputPin::Active();
  if (FAILED(result)) return result;
  is_stopping_ = false;
  try {
    thread_ = std::thread(&SourcePin::Stream, this);
  } catch (const std::exception&) {
    return E_OUTOFMEMORY;
  }
  return S_OK;
}

HRESULT SourcePin::Inactive() {
  is_stopping_ = true;
  const HRESULT result = OutputPin::Inactive();
  if (thread_.joinable()) thread_.join();
  return result;
}

void SourcePin::Stream() noexcept {
  CoInitializeEx(nullptr, COINIT_MULTITHREADED);
  HRESULT result;
  try {
    result = DeliverAll();
  } catch (const std::exception& error) {
    error_ = error.what();
    result = E_FAIL;
  }
  // A stop ends the delivery as well: nobody waits for the rest then.
  const bool is_stopping = result == VFW_E_WRONG_STATE || result == VFW_E_NOT_COMMITTED;
  if (FAILED(result) && !is_stopping) owner_.NotifyGraph(EC_ERRORABORT, result, 0);
  CoUninitialize();
}

// S_OK at the end of the stream, or a failure.
HRESULT SourcePin::DeliverAll() {
  const size_t frame_bytes = input_.Format().FrameBytes();
  const auto total = input_.Frames();
  HRESULT result = DeliverNewSegment(0, total ? TimeOf(*total) : std::numeric_limits<REFERENCE_TIME>::max(), 1.0);
  std::uint64_t position = 0;
  directshow::ComPtr<IMediaSample> sample;
  while (SUCCEEDED(result)) {
    if (is_stopping_) return VFW_E_WRONG_STATE;
    // Usually everybody is done with the sample when it has been delivered. Under Wine each one that goes back to the
    // allocator and comes from there again costs two calls of a server.
    BYTE* data = nullptr;
    if (!sample || IsShared(*sample)) result = GetDeliveryBuffer(sample.Put(), nullptr, nullptr, 0);
    if (SUCCEEDED(result)) result = sample->GetPointer(&data);
    if (FAILED(result)) break;
    const size_t room = std::min(buffer_frames_, static_cast<size_t>(sample->GetSize()) / frame_bytes);
    const size_t frames = input_.Read(data, room);
    if (frames == 0) return DeliverEndOfStream();
    REFERENCE_TIME start = TimeOf(position), stop = TimeOf(position + frames);
    sample->SetActualDataLength(static_cast<long>(frames * frame_bytes));
    sample->SetTime(&start, &stop);
    sample->SetDiscontinuity(position == 0);
    sample->SetSyncPoint(TRUE);
    sample->SetPreroll(FALSE);
    position += frames;
    result = Deliver(sample.Get());
    if (result == S_FALSE) return DeliverEndOfStream();  // downstream has enough
  }
  return result;
}

// From the frame count each time, so that rounding never adds up. 64 bits last for 100 days at 192 kHz.
REFERENCE_TIME SourcePin::TimeOf(std::uint64_t frames) const {
  const std::uint64_t rate_hz = input_.Format().rate_hz;
  return static_cast<REFERENCE_TIME>((frames * kUnitsPerSecond + rate_hz / 2) / rate_hz);
}

SourceFilter::SourceFilter(SampleSource& input, size_t buffer_frames) noexcept
    : BaseFilter(nullptr, kSourceClass), pin_(*this, input, buffer_frames) {}

}  // namespace tervan::host
