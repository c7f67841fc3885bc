#include "host/writer_filter.h"

#include <chrono>

#include "host/host_media_type.h"

namespace tervan::host {
namespace {

constexpr CLSID kWriterClass{0x8c2f94e6, 0x1d0b, 0x4a3e, {0xa7, 0x1c, 0x3e, 0x55, 0x0d, 0x92, 0x6f, 0x18}};

// What a REFERENCE_TIME counts.
using ReferenceTime = std::chrono::duration<REFERENCE_TIME, std::ratio<1, 10'000'000>>;

}  // namespace

WriterPin::WriterPin(WriterFilter& filter, SampleSink& output) noexcept
    : InputPin(filter, L"Input"), owner_(filter), output_(output) {}

HRESULT WriterPin::CheckMediaType(const AM_MEDIA_TYPE& type) { return CheckMediaTypeIs(output_.Format(), type); }

HRESULT WriterPin::OnReceive(IMediaSample& sample) {
  BYTE* data = nullptr;
  HRESULT result = sample.GetPointer(&data);
  if (SUCCEEDED(result)) {
    try {
      if (!WaitUntilDue(sample)) return VFW_E_WRONG_STATE;
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

// At once without a clock. False when the stream is stopped first.
bool WriterPin::WaitUntilDue(IMediaSample& sample) {
  const directshow::ComPtr<IReferenceClock> clock = owner_.Clock();
  REFERENCE_TIME start, stop, now;
  if (!clock || FAILED(sample.GetTime(&start, &stop))) return true;
  std::unique_lock lock(state_mutex_);
  const auto is_stopped = [this] { return !is_active_; };
  state_changed_.wait(lock, [&] { return is_running_ || is_stopped(); });
  if (is_stopped() || FAILED(clock->GetTime(&now))) return false;
  return !state_changed_.wait_for(lock, ReferenceTime(start_time_ + start - now), is_stopped);
}

HRESULT WriterPin::OnEndOfStream() {
  {
    const std::lock_guard guard(state_mutex_);
    has_ended_ = true;
  }
  CompleteIfDue();
  return S_OK;
}

HRESULT WriterPin::Active() {
  const HRESULT result = InputPin::Active();
  const std::lock_guard guard(state_mutex_);
  is_active_ = SUCCEEDED(result);
  return result;
}

HRESULT WriterPin::Run(REFERENCE_TIME start) {
  const HRESULT result = InputPin::Run(start);
  {
    const std::lock_guard guard(state_mutex_);
    start_time_ = start;
    is_running_ = true;
  }
  state_changed_.notify_all();
  CompleteIfDue();
  return result;
}

HRESULT WriterPin::Inactive() {
  {
    const std::lock_guard guard(state_mutex_);
    is_active_ = is_running_ = has_ended_ = is_complete_ = false;
  }
  state_changed_.notify_all();
  return InputPin::Inactive();
}

// A short stream ends while the graph is still pausing; graphs expect EC_COMPLETE only while they run.
void WriterPin::CompleteIfDue() {
  {
    const std::lock_guard guard(state_mutex_);
    if (!is_running_ || !has_ended_ || is_complete_) return;
    is_complete_ = true;
  }
  owner_.NotifyGraph(EC_COMPLETE, S_OK, 0);
}

WriterFilter::WriterFilter(SampleSink& output) noexcept : Implements(nullptr, kWriterClass), pin_(*this, output) {}

IUnknown* WriterFilter::FindInterface(REFIID iid) noexcept {
  const auto found = directshow::FindIn(iid, {{__uuidof(IAMFilterMiscFlags), static_cast<IAMFilterMiscFlags*>(this)}});
  return found ? found : BaseFilter::FindInterface(iid);
}

}  // namespace tervan::host
