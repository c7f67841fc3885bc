#include "host/stream_graph.h"

#include "host/failure.h"
#include "host/text.h"

namespace tervan::host {
namespace {

using directshow::ComPtr;
using directshow::Query;

void Check(HRESULT result, const std::string& what) {
  if (FAILED(result)) throw Failure(what + ": " + SystemMessage(result));
}

ComPtr<IPin> FindPin(IBaseFilter& filter, PIN_DIRECTION wanted) {
  ComPtr<IEnumPins> pins;
  Check(filter.EnumPins(pins.Put()), "a filter does not show its pins");
  for (ComPtr<IPin> pin; pins->Next(1, pin.Put(), nullptr) == S_OK;) {
    PIN_DIRECTION direction;
    if (SUCCEEDED(pin->QueryDirection(&direction)) && direction == wanted) return pin;
  }
  throw Failure("a filter has no pin to connect");
}

}  // namespace

ComPtr<IGraphBuilder> CreateFilterGraph() {
  ComPtr<IGraphBuilder> graph;
  Check(CoCreateInstance(CLSID_FilterGraph, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IGraphBuilder), graph.PutVoid()),
        "the platform makes no filter graph");
  return graph;
}

StreamGraph::StreamGraph(SampleSource& input, SampleSink& output, std::span<const EffectInstance> chain,
                         size_t buffer_frames, Pace pace)
    : source_(new SourceFilter(input, buffer_frames)),
      writer_(new WriterFilter(output)),
      builder_(CreateFilterGraph()) {
  control_ = Query<IMediaControl>(builder_.Get());
  builder_->QueryInterface(IID_IMediaEvent, events_.PutVoid());
  const auto clock = Query<IMediaFilter>(builder_.Get());
  if (!control_ || !events_ || !clock) throw Failure("the platform's filter graph cannot be controlled");
  if (pace == Pace::kUnlimited) Check(clock->SetSyncSource(nullptr), "the filter graph insists on a clock");

  Append(*source_, "source");
  for (const EffectInstance& effect : chain) Append(effect.Filter(), std::string(effect.Type().name));
  Append(*writer_, "writer");
}

// Behind the last one.
void StreamGraph::Append(IBaseFilter& filter, const std::string& name) {
  Check(builder_->AddFilter(&filter, Wide(name).c_str()), "the filter graph does not take the " + name);
  if (last_) {
    const auto from = FindPin(*last_, PINDIR_OUTPUT), to = FindPin(filter, PINDIR_INPUT);
    Check(builder_->ConnectDirect(from.Get(), to.Get(), nullptr), "the " + name + " cannot be connected");
  }
  last_ = ComPtr<IBaseFilter>(&filter);
}

void StreamGraph::Run() {
  const HRESULT result = control_->Run();
  if (FAILED(result)) Fail("the filter graph does not run: " + SystemMessage(result));
}

bool StreamGraph::IsComplete(long wait_ms) {
  long code;
  LONG_PTR first, second;
  while (events_->GetEvent(&code, &first, &second, wait_ms) == S_OK) {
    events_->FreeEventParams(code, first, second);
    if (code == EC_COMPLETE) return true;
    if (code == EC_ERRORABORT) Fail("the filter graph broke off: " + SystemMessage(static_cast<DWORD>(first)));
  }
  return false;
}

// The filter that met the error knows more about it than the graph.
void StreamGraph::Fail(const std::string& message) {
  control_->Stop();
  for (const std::string& error : {writer_->Pin().Error(), source_->Pin().Error()}) {
    if (!error.empty()) throw Failure(error);
  }
  throw Failure(message);
}

}  // namespace tervan::host
