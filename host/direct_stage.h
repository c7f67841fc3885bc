// An effect that works on plain buffers of 32-bit float: its IDirectBufferProcess between BeginStream and EndStream.
#pragma once

#include <cstddef>
#include <string>

#include "directshow/com_ptr.h"
#include "host/audio_format.h"
#include "host/effect_instance.h"
#include "shell/plugin_interfaces.h"

namespace tervan::host {

class DirectStage {
 public:
  // Throw a Failure.
  DirectStage(const EffectInstance& effect, const AudioFormat& format);
  ~DirectStage();
  DirectStage(DirectStage&&) = default;

  // False when the effect is done and gives nothing more.
  bool Process(float* buffer, size_t frames);
  // Frames that the effect still had, 0 when there are no more.
  size_t Tail(float* buffer, size_t room);

 private:
  void Check(HRESULT result, const char* what) const;

  std::string name_;
  directshow::ComPtr<IDirectBufferProcess> process_;
};

}  // namespace tervan::host
