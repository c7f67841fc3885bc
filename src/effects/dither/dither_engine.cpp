#include "effects/dither/dither_engine.h"

#include <cmath>
#include <cstddef>
#include <new>

#include "effects/dither/dither_kernel.h"
#include "effects/dither/dither_noise.h"
#include "shell/sample_codec.h"
#include "support/float_environment.h"

namespace tervan {
namespace {

// Not inlined: no arithmetic may move out of the scope that the caller sets up.
template <typename Codec>
[[gnu::noinline]] void ProcessRounding(const DitherState& state, typename Codec::Sample* samples, std::uint32_t frames,
                                       std::uint32_t channels) {
  dither_kernel::Process<Codec>(state, samples, frames, channels);
}

}  // namespace

CLmDither::CLmDither(std::uint32_t bits, DitherType dither_type, NoiseShaping shaping, MillisecondClock clock)
    : m_generator(new (std::nothrow) R250Generator) {
  Configure(bits, dither_type, shaping, clock);
}

CLmDither& CLmDither::operator=(const CLmDither& other) {
  if (this == &other) return *this;
  m_formatCode = other.m_formatCode;
  m_ditherType = other.m_ditherType;
  m_shaping = other.m_shaping;
  if (m_generator && other.m_generator) {
    *m_generator = *other.m_generator;
  } else {
    m_generator.reset(other.m_generator ? new (std::nothrow) R250Generator(*other.m_generator) : nullptr);
  }
  m_noiseFunction = other.m_noiseFunction;
  m_amplitude = other.m_amplitude;
  m_scale = other.m_scale;
  m_inverseScale = other.m_inverseScale;
  m_highpassHistory = other.m_highpassHistory;
  for (std::size_t channel = 0; channel < kMaxDitherChannels; ++channel) {
    m_errorA[channel] = other.m_errorA[channel];
    m_errorB[channel] = other.m_errorB[channel];
  }
  return *this;
}

void CLmDither::Configure(std::uint32_t bits, DitherType dither_type, NoiseShaping shaping, MillisecondClock clock) {
  m_formatCode = 0;
  m_ditherType = dither_type;
  m_shaping = shaping;
  m_scale = std::ldexp(1.0, static_cast<int>(bits) - 1);
  m_inverseScale = 1.0 / m_scale;
  m_highpassHistory = 0.0;
  for (std::size_t channel = 0; channel < kMaxDitherChannels; ++channel) m_errorA[channel] = m_errorB[channel] = 0.0;
  if (m_generator) m_generator->Seed(clock());

  const auto type = static_cast<std::uint32_t>(dither_type);
  const NoiseSource source = type < kDitherTypeCount ? kNoiseSources[type] : NoiseSource{};
  m_noiseFunction = source.function;
  // Without shaping the noise is added before the scaling.
  m_amplitude = shaping == NoiseShaping::kOff ? source.amplitude_lsb * m_inverseScale : source.amplitude_lsb;
}

template <typename Codec>
void CLmDither::ProcessAll(typename Codec::Sample* samples, std::uint32_t frames, std::uint32_t channels) {
  if (!m_generator || !m_noiseFunction) return;
  const DitherState state{m_ditherType,   m_shaping,    m_noiseFunction,   m_amplitude, m_scale,
                          m_inverseScale, *m_generator, m_highpassHistory, m_errorA,    m_errorB};
  const FloatEnvironmentScope environment;
  ProcessRounding<Codec>(state, samples, frames, channels);
}

void CLmDither::Process(std::uint8_t* samples, std::uint32_t frames, std::uint32_t channels) {
  ProcessAll<Pcm8Codec>(samples, frames, channels);
}

void CLmDither::Process(std::int16_t* samples, std::uint32_t frames, std::uint32_t channels) {
  ProcessAll<Pcm16Codec>(samples, frames, channels);
}

void CLmDither::Process(std::int32_t* samples, std::uint32_t frames, std::uint32_t channels) {
  ProcessAll<Pcm32Codec>(samples, frames, channels);
}

void CLmDither::Process(float* samples, std::uint32_t frames, std::uint32_t channels) {
  ProcessAll<Float32Codec>(samples, frames, channels);
}

void CLmDither::Process(double* samples, std::uint32_t frames, std::uint32_t channels) {
  ProcessAll<Float64Codec>(samples, frames, channels);
}

}  // namespace tervan
