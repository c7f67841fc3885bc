// Picks the routine of an engine that matches the stream's format.
#pragma once

#include <cstdint>

#include "shell/effect.h"
#include "shell/stream_format.h"

namespace tervan {

template <typename Engine>
HRESULT ProcessWith(Engine& engine, SampleFormat format, ProcessMode mode, void* data, std::uint32_t* frames,
                    bool stop) {
  switch (format) {
    case SampleFormat::kPcm8: return engine.ProcessPcm8(mode, static_cast<std::uint8_t*>(data), frames);
    case SampleFormat::kPcm16: return engine.ProcessPcm16(mode, static_cast<std::int16_t*>(data), frames);
    case SampleFormat::kPcm32: return engine.ProcessPcm32(mode, static_cast<std::int32_t*>(data), frames);
    case SampleFormat::kFloat32: return engine.ProcessFloat32(mode, static_cast<float*>(data), frames, stop);
    case SampleFormat::kFloat64: return engine.ProcessFloat64(mode, static_cast<double*>(data), frames);
    case SampleFormat::kNone: break;
  }
  return S_OK;  // unchanged
}

}  // namespace tervan
