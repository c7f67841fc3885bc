#include "host/direct_render.h"

#include <string>
#include <vector>

#include "directshow/com_ptr.h"
#include "host/failure.h"
#include "host/text.h"
#include "shell/plugin_interfaces.h"

namespace tervan::host {
namespace {

using directshow::ComPtr;

// One effect between BeginStream and EndStream.
class Stage {
 public:
  Stage(const EffectInstance& effect, const AudioFormat& format)
      : name_(effect.Type().name), process_(effect.As<IDirectBufferProcess>()) {
    Check(process_ ? process_->BeginStream(format.channels, format.rate_hz) : E_NOINTERFACE, "does not start");
  }
  ~Stage() {
    if (process_) process_->EndStream();
  }
  Stage(Stage&&) = default;

  // False when the effect is done and gives nothing more.
  bool Process(float* buffer, size_t frames) {
    const HRESULT result = process_->ProcessBuffer(buffer, static_cast<DWORD>(frames), FALSE);
    Check(result, "does not process");
    return result != S_FALSE;
  }

  // Frames that the effect still had, 0 when there are no more.
  size_t Tail(float* buffer, size_t room) {
    DWORD frames = static_cast<DWORD>(room);
    const HRESULT result = process_->GetTail(buffer, &frames);
    Check(result, "does not finish");
    return result == S_OK ? frames : 0;
  }

 private:
  void Check(HRESULT result, const char* what) const {
    if (FAILED(result)) throw Failure("the " + name_ + ' ' + what + ": " + SystemMessage(result));
  }

  std::string name_;
  ComPtr<IDirectBufferProcess> process_;
};

// Runs the buffer through the stages from this one on, and writes it.
bool PassOn(std::span<Stage> stages, RenderOutput& output, float* buffer, size_t frames) {
  for (Stage& stage : stages) {
    if (!stage.Process(buffer, frames)) return false;
  }
  output.Write(buffer, frames);
  return true;
}

}  // namespace

void RenderDirectly(RenderInput& input, RenderOutput& output, std::span<const EffectInstance> chain,
                    size_t buffer_frames, ProgressLine& progress) {
  const AudioFormat& format = input.Format();
  std::vector<Stage> stages;
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
