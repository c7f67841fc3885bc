#include "host/graph_render.h"

#include <windows.h>

#include <dshow.h>

#include <string>

#include "directshow/com_ptr.h"
#include "host/failure.h"
#include "host/source_filter.h"
#include "host/text.h"
#include "host/writer_filter.h"

namespace tervan::host {
namespace {

using directshow::ComPtr;
using directshow::Query;

constexpr long kPollMs = 50;

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

class Graph {
 public:
  Graph() {
    Check(
        CoCreateInstance(CLSID_FilterGraph, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IGraphBuilder), builder_.PutVoid()),
        "the platform makes no filter graph");
    control_ = Query<IMediaControl>(builder_.Get());
    builder_->QueryInterface(IID_IMediaEvent, events_.PutVoid());
    const auto clock = Query<IMediaFilter>(builder_.Get());
    if (!control_ || !events_ || !clock) throw Failure("the platform's filter graph cannot be controlled");
    Check(clock->SetSyncSource(nullptr), "the filter graph insists on a clock");
  }
  ~Graph() { control_->Stop(); }
  Graph(const Graph&) = delete;
  Graph& operator=(const Graph&) = delete;

  // Adds the filter behind the last one.
  void Append(IBaseFilter& filter, const std::string& name) {
    Check(builder_->AddFilter(&filter, Wide(name).c_str()), "the filter graph does not take the " + name);
    if (last_) {
      const auto from = FindPin(*last_, PINDIR_OUTPUT), to = FindPin(filter, PINDIR_INPUT);
      Check(builder_->ConnectDirect(from.Get(), to.Get(), nullptr), "the " + name + " cannot be connected");
    }
    last_ = ComPtr<IBaseFilter>(&filter);
  }

  void Run() { Check(control_->Run(), "the filter graph does not run"); }
  void Stop() { control_->Stop(); }

  // False while the stream goes on. Throws a Failure when it was broken off.
  bool IsComplete() {
    long code;
    LONG_PTR first, second;
    while (events_->GetEvent(&code, &first, &second, kPollMs) == S_OK) {
      events_->FreeEventParams(code, first, second);
      if (code == EC_COMPLETE) return true;
      if (code == EC_ERRORABORT) {
        throw Failure("the filter graph broke off: " + SystemMessage(static_cast<DWORD>(first)));
      }
    }
    return false;
  }

 private:
  ComPtr<IGraphBuilder> builder_;
  ComPtr<IMediaControl> control_;
  ComPtr<IMediaEvent> events_;
  ComPtr<IBaseFilter> last_;
};

}  // namespace

void RenderThroughGraph(RenderInput& input, RenderOutput& output, std::span<const EffectInstance> chain,
                        size_t buffer_frames, ProgressLine& progress) {
  const ComPtr<SourceFilter> source(new SourceFilter(input, buffer_frames));
  const ComPtr<WriterFilter> writer(new WriterFilter(output));
  Graph graph;
  graph.Append(*source, "source");
  for (const EffectInstance& effect : chain) graph.Append(effect.Filter(), std::string(effect.Type().name));
  graph.Append(*writer, "writer");
  try {
    graph.Run();
    while (!graph.IsComplete()) {
      ThrowIfInterrupted();
      progress.Show(input.FramesRead());
    }
    graph.Stop();
  } catch (const Failure&) {
    // The filter that met the error knows more about it than the graph.
    graph.Stop();
    if (!writer->Pin().Error().empty()) throw Failure(writer->Pin().Error());
    if (!source->Pin().Error().empty()) throw Failure(source->Pin().Error());
    throw;
  }
}

}  // namespace tervan::host
