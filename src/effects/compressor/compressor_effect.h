// The Track Compressor as the shell sees it.
#pragma once

#include "effects/compressor/compressor_control.h"
#include "effects/compressor/compressor_engine.h"
#include "shell/automated_effect.h"

namespace tervan {

extern const EffectTraits kCompressorTraits;

class CompressorEffect final : public AutomatedEffect<CompressorSettings, CompressorControl, CompressorEngine> {
 public:
  explicit CompressorEffect(WindowPoster& poster) : AutomatedEffect(kCompressorTraits, poster) {}
  ~CompressorEffect() override;

  void SetFormat(const StreamFormat& format) override;
  HRESULT Start() override;
  HRESULT Stop() override;
  void AdvanceStreamTime(std::uint32_t frames) override;

 private:
  std::uint32_t sample_rate_hz_ = 0;
};

}  // namespace tervan
