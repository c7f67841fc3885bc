// Requantises samples to a word length of 8 to 32 bits: adds one of six noises, rounds, and shapes the spectrum of the
// total error by error feedback; dither_plain.h has the formulas. Full scale is 1.0; one LSB is 2^(1 - bits).
#pragma once

#include <cstdint>
#include <memory>

#include "effects/dither/dither_state.h"
#include "effects/dither/r250_generator.h"
#include "support/millisecond_clock.h"

namespace tervan {

// Streaming thread only; Process allocates nothing. The class is exported: its members stay as they are, in name and
// order.
class CLmDither {
 public:
  // Configured.
  CLmDither(std::uint32_t bits, DitherType dither_type, NoiseShaping shaping,
            MillisecondClock clock = ModuleMilliseconds);
  CLmDither(const CLmDither&) = delete;

  // Both engines then go on alike, each with a generator of its own.
  CLmDither& operator=(const CLmDither& other);

  // False when there was no memory for the generator: Process then leaves everything as it is.
  bool IsReady() const { return m_generator != nullptr; }

  // bits: 8..32. Clears the error feedback and starts a new sequence of noise, seeded by the clock. A type or shaping
  // outside its enumeration makes Process leave everything as it is.
  void Configure(std::uint32_t bits, DitherType dither_type, NoiseShaping shaping,
                 MillisecondClock clock = ModuleMilliseconds);

  // frames × channels interleaved samples in place; channels: 1 or 2, others change nothing. Results beyond 32 bits
  // saturate, and a NaN becomes 0. Floats are processed channel by channel, integers as if each frame were a call: that
  // decides which noise meets which sample.
  void Process(std::uint8_t* samples, std::uint32_t frames, std::uint32_t channels);
  void Process(std::int16_t* samples, std::uint32_t frames, std::uint32_t channels);
  void Process(std::int32_t* samples, std::uint32_t frames, std::uint32_t channels);
  void Process(float* samples, std::uint32_t frames, std::uint32_t channels);
  void Process(double* samples, std::uint32_t frames, std::uint32_t channels);

 private:
  template <typename Codec>
  void ProcessAll(typename Codec::Sample* samples, std::uint32_t frames, std::uint32_t channels);

  std::uint32_t m_formatCode = 0;
  DitherType m_ditherType = DitherType::kNone;
  NoiseShaping m_shaping = NoiseShaping::kOff;
  std::unique_ptr<R250Generator> m_generator;
  NoiseFunction m_noiseFunction = nullptr;
  double m_amplitude = 0.0;  // full scale 1.0 without shaping, LSB with it
  double m_scale = 0.0;      // LSB per full scale
  double m_inverseScale = 0.0;
  double m_highpassHistory = 0.0;  // one for all channels
  double m_errorA[kMaxDitherChannels] = {};
  double m_errorB[kMaxDitherChannels] = {};
};

static_assert(sizeof(CLmDither) == (sizeof(void*) == 8 ? 96 : 88));

}  // namespace tervan
