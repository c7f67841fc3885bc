#include "host/writer_filter.h"

#include "host/host_media_type.h"

namespace tervan::host {
namespace {

constexpr CLSID kWriterClass{0x8c2f94e6, 0x1d0b, 0x4a3e, {0xa7, 0x1c, 0x3e, 0x55, 0x0d, 0x92, 0x6f, 0x18}};

}  // namespace

WriterPin::WriterPin(WriterFilter& filter, RenderOutput& output) noexcept
    : InputPin(filter, L"Input"), owner_(filter), output_(output) {}

HRESULT WriterPin::CheckMediaType(const AM_MEDIA_TYPE& type) { return CheckMediaTypeIs(output_.Format(), type); }

HRESULT WriterPin::OnReceive(IMediaSample& sample) {
  BYTE* data = nullptr;
  HRESULT result = sample.GetPointer(&data);
  if (SUCCEEDED(result)) {
    try {
      output_.Write(data, sample.GetActualDataLength() / output_.Format().FrameBytes());
      return S_OK;
    } catch (const std::exception& error) {
      error_ = error.what();
      result = E_FAIL;
    }
  }
  SetRuntimeError();
  owner_.NotifyGraph(EC_ERRORABORT, result, 0);
  return result;
}

HRESULT WriterPin::OnEndOfStream() {
  {
    const directshow::LockGuard guard(completion_lock_);
    has_ended_ = true;
  }
  CompleteIfDue();
  return S_OK;
}

HRESULT WriterPin::Run(REFERENCE_TIME start) {
  const HRESULT result = InputPin::Run(start);
  {
    const directshow::LockGuard guard(completion_lock_);
    is_running_ = true;
  }
  CompleteIfDue();
  return result;
}

HRESULT WriterPin::Inactive() {
  {
    const directshow::LockGuard guard(completion_lock_);
    is_running_ = has_ended_ = is_complete_ = false;
  }
  return InputPin::Inactive();
}

// A short stream ends while the graph is still pausing; graphs expect EC_COMPLETE only while they run.
void WriterPin::CompleteIfDue() {
  {
    const directshow::LockGuard guard(completion_lock_);
    if (!is_running_ || !has_ended_ || is_complete_) return;
    is_complete_ = true;
  }
  owner_.NotifyGraph(EC_COMPLETE, S_OK, 0);
}

WriterFilter::WriterFilter(RenderOutput& output) noexcept : Implements(nullptr, kWriterClass), pin_(*this, output) {}

IUnknown* WriterFilter::FindInterface(REFIID iid) noexcept {
  const auto found = directshow::FindIn(iid, {{__uuidof(IAMFilterMiscFlags), static_cast<IAMFilterMiscFlags*>(this)}});
  return found ? found : BaseFilter::FindInterface(iid);
}

}  // namespace tervan::host
