// The host's own source: delivers a SampleSource from a thread of its own, as fast as downstream takes it.
//
// Samples carry stream times counted from the first frame; only the first one is a discontinuity. A read error
// ends the stream, is kept as a sentence and reported to the graph as EC_ERRORABORT.
#pragma once

#include <windows.h>

#include <dshow.h>

#include <atomic>
#include <string>
#include <thread>

#include "directshow/base_filter.h"
#include "directshow/output_pin.h"
#include "host/sample_stream.h"

namespace tervan::host {

class SourceFilter;

class SourcePin final : public directshow::OutputPin {
 public:
  SourcePin(SourceFilter& filter, SampleSource& input, size_t buffer_frames) noexcept;

  HRESULT GetMediaType(int index, directshow::MediaType* type) override;
  HRESULT CheckMediaType(const AM_MEDIA_TYPE& type) override;
  HRESULT Active() override;
  HRESULT Inactive() override;

  // What went wrong while streaming, or empty. Read it once the graph is stopped.
  const std::string& Error() const { return error_; }

 protected:
  HRESULT DecideBufferSize(IMemAllocator& allocator, ALLOCATOR_PROPERTIES* properties) override;

 private:
  // [stream]
  void Stream() noexcept;
  HRESULT DeliverAll();
  REFERENCE_TIME TimeOf(std::uint64_t frames) const;

  directshow::BaseFilter& owner_;
  SampleSource& input_;
  const size_t buffer_frames_;
  std::atomic<bool> is_stopping_{false};
  std::string error_;  // written by the streaming thread, which Inactive ends
  std::thread thread_;
};

class SourceFilter final : public directshow::BaseFilter {
 public:
  // The input outlives the filter.
  SourceFilter(SampleSource& input, size_t buffer_frames) noexcept;

  int PinCount() noexcept override { return 1; }
  directshow::BasePin* PinAt(int) noexcept override { return &pin_; }
  SourcePin& Pin() noexcept { return pin_; }

 private:
  SourcePin pin_;
};

}  // namespace tervan::host
