#include "host/direct_stage.h"

#include "host/failure.h"
#include "host/text.h"

namespace tervan::host {

DirectStage::DirectStage(const EffectInstance& effect, const AudioFormat& format)
    : name_(effect.Type().name), process_(effect.As<IDirectBufferProcess>()) {
  Check(process_ ? process_->BeginStream(format.channels, format.rate_hz) : E_NOINTERFACE, "does not start");
}

DirectStage::~DirectStage() {
  if (process_) process_->EndStream();
}

bool DirectStage::Process(float* buffer, size_t frames) {
  const HRESULT result = process_->ProcessBuffer(buffer, static_cast<DWORD>(frames), FALSE);
  Check(result, "does not process");
  return result != S_FALSE;
}

size_t DirectStage::Tail(float* buffer, size_t room) {
  DWORD frames = static_cast<DWORD>(room);
  const HRESULT result = process_->GetTail(buffer, &frames);
  Check(result, "does not finish");
  return result == S_OK ? frames : 0;
}

void DirectStage::Check(HRESULT result, const char* what) const {
  if (FAILED(result)) throw Failure("the " + name_ + ' ' + what + ": " + SystemMessage(result));
}

}  // namespace tervan::host
