// Requantises samples to a word length of 8 to 32 bits: adds one of six noises, rounds, and shapes the spectrum of the
// total error by error feedback. Full scale is 1.0; one LSB is 2^(1 - bits).
//
// With the LSB as unit, noise d, and k the factor of the second order:
//
//   off            q = round(x + d)
//   first order    v = x - e;      q = round(v + d);  e = q - v                    error shaped by 1 - z^-1
//   second order   v = x - a + b;  q = round(v + d);  b = k a';  a = q - v         by 1 - z^-1 + k z^-2
//
// Source: S. P. Lipshitz, J. Vanderkooy, R. A. Wannamaker, "Minimally audible noise shaping", Journal of the Audio
// Engineering Society 39 (1991).
#pragma once

#include <cstdint>
#include <memory>

#include "effects/dither/r250_generator.h"
#include "support/millisecond_clock.h"

namespace tervan {

// Records hold these values.
enum class DitherType : std::uint32_t {
  kNone,
  kHalfRectangular,     // ±0.5 LSB
  kRectangular,         // ±1 LSB
  kTriangular,          // triangular density within ±1 LSB
  kHighpassTriangular,  // the difference of successive uniform values, within ±0.995 LSB
  kGaussian,            // standard deviation 0.5 LSB
};
inline constexpr std::uint32_t kDitherTypeCount = 6;

enum class NoiseShaping : std::uint32_t {
  kOff,
  kHighPassContour,       // first order
  kEqualLoudnessContour,  // second order, k = 0.75
  kSecondOrderHalf,       // second order, k = 0.5; no setting selects it
};

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

  // frames × channels interleaved samples in place, channel by channel. channels: 1 or 2; others change nothing.
  // Results beyond 32 bits saturate, and a NaN becomes 0.
  void Process(float* samples, std::uint32_t frames, std::uint32_t channels);
  void Process(double* samples, std::uint32_t frames, std::uint32_t channels);

 private:
  using NoiseFunction = double (*)(R250Generator& generator, double amplitude, double& highpass_history);
  struct NoiseSource {
    NoiseFunction function;
    double amplitude_lsb;
  };
  static const NoiseSource kNoiseSources[kDitherTypeCount];

  template <typename Sample>
  void ProcessAll(Sample* samples, std::uint32_t frames, std::uint32_t channels);
  template <typename Sample>
  void ProcessRounding(Sample* samples, std::uint32_t frames, std::uint32_t channels);
  template <typename Sample>
  void ProcessFlat(Sample* samples, std::uint32_t frames, std::uint32_t channels);
  template <typename Sample>
  void ProcessFirstOrder(Sample* samples, std::uint32_t frames, std::uint32_t channels);
  template <typename Sample>
  void ProcessSecondOrder(Sample* samples, std::uint32_t frames, std::uint32_t channels, double k);
  double NextNoise() { return m_noiseFunction(*m_generator, m_amplitude, m_highpassHistory); }

  static constexpr std::uint32_t kMaxChannels = 2;

  std::uint32_t m_formatCode = 0;
  DitherType m_ditherType = DitherType::kNone;
  NoiseShaping m_shaping = NoiseShaping::kOff;
  std::unique_ptr<R250Generator> m_generator;
  NoiseFunction m_noiseFunction = nullptr;
  double m_amplitude = 0.0;  // full scale 1.0 without shaping, LSB with it
  double m_scale = 0.0;      // LSB per full scale
  double m_inverseScale = 0.0;
  double m_highpassHistory = 0.0;  // one for all channels
  double m_errorA[kMaxChannels] = {};
  double m_errorB[kMaxChannels] = {};
};

static_assert(sizeof(CLmDither) == (sizeof(void*) == 8 ? 96 : 88));

}  // namespace tervan
