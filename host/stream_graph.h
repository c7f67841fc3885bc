// A stream through the platform's filter graph: source, effects and writer, connected directly.
#pragma once

#include <windows.h>

#include <dshow.h>

#include <span>
#include <string>

#include "directshow/com_ptr.h"
#include "host/effect_instance.h"
#include "host/sample_stream.h"
#include "host/source_filter.h"
#include "host/writer_filter.h"

namespace tervan::host {

enum class Pace {
  kUnlimited,  // without a clock
  kRealTime,   // by the graph's own clock
};

// One of the platform's, empty. Throws a Failure. The first of a process takes Wine up to a quarter of a second, which
// loads what graphs need and makes the process's first window.
directshow::ComPtr<IGraphBuilder> CreateFilterGraph();

class StreamGraph {
 public:
  // Throws a Failure. The ends outlive the graph, the effects stay when it goes.
  StreamGraph(SampleSource& input, SampleSink& output, std::span<const EffectInstance> chain, size_t buffer_frames,
              Pace pace);
  ~StreamGraph() { control_->Stop(); }
  StreamGraph(const StreamGraph&) = delete;
  StreamGraph& operator=(const StreamGraph&) = delete;

  // Throws a Failure.
  void Run();
  // False while the stream goes on; waits so long for news. Throws a Failure when the stream was broken off.
  bool IsComplete(long wait_ms);

 private:
  void Append(IBaseFilter& filter, const std::string& name);
  [[noreturn]] void Fail(const std::string& message);

  const directshow::ComPtr<SourceFilter> source_;
  const directshow::ComPtr<WriterFilter> writer_;
  const directshow::ComPtr<IGraphBuilder> builder_;
  directshow::ComPtr<IMediaControl> control_;
  directshow::ComPtr<IMediaEvent> events_;
  directshow::ComPtr<IBaseFilter> last_;
};

}  // namespace tervan::host
