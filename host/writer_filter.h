// The host's own writer: hands every sample to a SampleSink on the streaming thread. With a clock in the graph a sample
// waits until its time has come.
//
// It is a renderer to the graph: it reports EC_COMPLETE once the stream has ended and the graph runs. An error is kept
// as a sentence and reported as EC_ERRORABORT. A graph that runs is stopped, never paused.
#pragma once

#include <windows.h>

#include <dshow.h>

#include <condition_variable>
#include <mutex>
#include <string>

#include "directshow/base_filter.h"
#include "directshow/input_pin.h"
#include "host/sample_stream.h"

namespace tervan::host {

class WriterFilter;

class WriterPin final : public directshow::InputPin {
 public:
  WriterPin(WriterFilter& filter, SampleSink& output) noexcept;

  HRESULT CheckMediaType(const AM_MEDIA_TYPE& type) override;
  HRESULT Active() override;
  HRESULT Run(REFERENCE_TIME start) override;
  HRESULT Inactive() override;

  // What went wrong while streaming, or empty. Read it once the graph is stopped.
  const std::string& Error() const { return error_; }

 protected:
  HRESULT OnReceive(IMediaSample& sample) override;
  HRESULT OnEndOfStream() override;

 private:
  bool WaitUntilDue(IMediaSample& sample);
  void CompleteIfDue();

  directshow::BaseFilter& owner_;
  SampleSink& output_;
  std::string error_;

  std::mutex state_mutex_;  // guards the members below
  std::condition_variable state_changed_;
  REFERENCE_TIME start_time_ = 0;  // of the stream, by the clock; while running
  bool is_active_ = false;
  bool is_running_ = false;
  bool has_ended_ = false;
  bool is_complete_ = false;  // reported
};

class WriterFilter final : public directshow::Implements<directshow::BaseFilter, IAMFilterMiscFlags> {
 public:
  // The output outlives the filter.
  explicit WriterFilter(SampleSink& output) noexcept;

  int PinCount() noexcept override { return 1; }
  directshow::BasePin* PinAt(int) noexcept override { return &pin_; }
  WriterPin& Pin() noexcept { return pin_; }

  // IAMFilterMiscFlags: how the graph knows whom it has to wait for.
  STDMETHODIMP_(ULONG) GetMiscFlags() override { return AM_FILTER_MISC_FLAGS_IS_RENDERER; }

 protected:
  IUnknown* FindInterface(REFIID iid) noexcept override;

 private:
  WriterPin pin_;
};

}  // namespace tervan::host
