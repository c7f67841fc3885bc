#include "host/graph_render.h"

#include "host/stream_graph.h"

namespace tervan::host {
namespace {

constexpr long kPollMs = 50;

}  // namespace

void RenderThroughGraph(RenderInput& input, RenderOutput& output, std::span<const EffectInstance> chain,
                        size_t buffer_frames, ProgressLine& progress) {
  StreamGraph graph(input, output, chain, buffer_frames, Pace::kUnlimited);
  graph.Run();
  while (!graph.IsComplete(kPollMs)) {
    ThrowIfInterrupted();
    progress.Show(input.FramesRead());
  }
}

}  // namespace tervan::host
