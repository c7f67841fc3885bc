#include "host/direct_render.h"

#include <vector>

#include "host/direct_stage.h"

namespace tervan::host {
namespace {

// Runs the buffer through the stages from this one on, and writes it.
bool PassOn(std::span<DirectStage> stages, RenderOutput& output, float* buffer, size_t frames) {
  for (DirectStage& stage : stages) {
    if (!stage.Process(buffer, frames)) return false;
  }
  output.Write(buffer, frames);
  return true;
}

}  // namespace

void RenderDirectly(RenderInput& input, RenderOutput& output, std::span<const EffectInstance> chain,
                    size_t buffer_frames, ProgressLine& progress) {
  const AudioFormat& format = input.Format();
  std::vector<DirectStage> stages;
  for (const EffectInstance& effect : chain) stages.emplace_back(effect, format);

  std::vector<float> buffer(buffer_frames * format.channels);
  bool goes_on = true;
  while (goes_on) {
    ThrowIfInterrupted();
    const size_t frames = input.Read(buffer.data(), buffer_frames);
    if (frames == 0) break;
    goes_on = PassOn(stages, output, buffer.data(), frames);
    progress.Show(input.FramesRead());
  }
  for (size_t i = 0; i < stages.size(); ++i) {
    while (const size_t frames = stages[i].Tail(buffer.data(), buffer_frames)) {
      ThrowIfInterrupted();
      PassOn(std::span(stages).subspan(i + 1), output, buffer.data(), frames);
    }
  }
}

}  // namespace tervan::host
