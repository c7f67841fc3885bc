#include "effects/dither/dither_engine.h"

#include <cmath>
#include <cstddef>
#include <new>

#include "support/float_environment.h"
#include "support/round_to_nearest.h"
#include "support/state_floor.h"

namespace tervan {
namespace {

constexpr double kHighpassCoefficient = 0.99;
constexpr double kLowWordScale = 2.0 / 65535.0;  // the low 16 bits of a word to [-1, 1]
constexpr std::uint32_t kLowWord = 0xFFFF;

// No error that noise and rounding leave is as large. One that is comes from a sample beyond the range, or from one
// that is not a number, and does not go on into the next.
constexpr double kMostError_lsb = 16.0;

double NoNoise(R250Generator&, double, double&) { return 0.0; }

double Rectangular(R250Generator& generator, double amplitude, double&) { return generator.DrawUniform() * amplitude; }

double Triangular(R250Generator& generator, double amplitude, double&) {
  const double first = generator.DrawUniform();
  return (first + generator.DrawUniform()) * amplitude * 0.5;
}

double HighpassTriangular(R250Generator& generator, double amplitude, double& history) {
  const double uniform = generator.DrawUniform();
  const double noise = (uniform - kHighpassCoefficient * history) * amplitude * 0.5;
  history = uniform;
  return noise;
}

// Polar method. Source: G. Marsaglia, T. A. Bray, "A convenient method for generating normal variables", SIAM Review 6
// (1964).
double Gaussian(R250Generator& generator, double amplitude, double&) {
  double second, r;
  do {
    const double first = (generator.Draw() & kLowWord) * kLowWordScale - 1.0;
    second = (generator.Draw() & kLowWord) * kLowWordScale - 1.0;
    r = first * first + second * second;
  } while (r >= 1.0 || r == 0.0);
  return second * std::sqrt(-2.0 * std::log(r) / r) * amplitude;
}

double Carried(double error_lsb) noexcept { return std::fabs(error_lsb) <= kMostError_lsb ? error_lsb : 0.0; }

}  // namespace

// Indexed by DitherType.
const CLmDither::NoiseSource CLmDither::kNoiseSources[kDitherTypeCount] = {
    {NoNoise, 0.0},    {Rectangular, 0.5},        {Rectangular, 1.0},
    {Triangular, 1.0}, {HighpassTriangular, 1.0}, {Gaussian, 0.5},
};

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
  for (std::size_t channel = 0; channel < kMaxChannels; ++channel) {
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
  for (std::size_t channel = 0; channel < kMaxChannels; ++channel) m_errorA[channel] = m_errorB[channel] = 0.0;
  if (m_generator) m_generator->Seed(clock());

  const auto type = static_cast<std::uint32_t>(dither_type);
  const NoiseSource source = type < kDitherTypeCount ? kNoiseSources[type] : NoiseSource{};
  m_noiseFunction = source.function;
  // Without shaping the noise is added before the scaling.
  m_amplitude = shaping == NoiseShaping::kOff ? source.amplitude_lsb * m_inverseScale : source.amplitude_lsb;
}

template <typename Sample>
void CLmDither::ProcessFlat(Sample* samples, std::uint32_t frames, std::uint32_t channels) {
  for (std::uint32_t channel = 0; channel < channels; ++channel) {
    Sample* sample = samples + channel;
    for (std::uint32_t frame = 0; frame < frames; ++frame, sample += channels) {
      const double y = (static_cast<double>(*sample) + NextNoise()) * m_scale;
      *sample = static_cast<Sample>(RoundedToInt32(y) * m_inverseScale);
    }
  }
}

template <typename Sample>
void CLmDither::ProcessFirstOrder(Sample* samples, std::uint32_t frames, std::uint32_t channels) {
  for (std::uint32_t channel = 0; channel < channels; ++channel) {
    Sample* sample = samples + channel;
    double error = m_errorA[channel];
    for (std::uint32_t frame = 0; frame < frames; ++frame, sample += channels) {
      const double v = static_cast<double>(*sample) * m_scale - error;
      const double q = RoundedToInt32(v + NextNoise());
      error = Carried(q - v);
      *sample = static_cast<Sample>(q * m_inverseScale);
    }
    m_errorA[channel] = Flushed(error);
  }
}

template <typename Sample>
void CLmDither::ProcessSecondOrder(Sample* samples, std::uint32_t frames, std::uint32_t channels, double k) {
  for (std::uint32_t channel = 0; channel < channels; ++channel) {
    Sample* sample = samples + channel;
    double a = m_errorA[channel];
    double b = m_errorB[channel];
    for (std::uint32_t frame = 0; frame < frames; ++frame, sample += channels) {
      const double v = static_cast<double>(*sample) * m_scale - a + b;
      const double q = RoundedToInt32(v + NextNoise());
      b = k * a;
      a = Carried(q - v);
      *sample = static_cast<Sample>(q * m_inverseScale);
    }
    m_errorA[channel] = Flushed(a);
    m_errorB[channel] = Flushed(b);
  }
}

// Not inlined: no arithmetic may move out of the scope that the caller sets up.
template <typename Sample>
[[gnu::noinline]] void CLmDither::ProcessRounding(Sample* samples, std::uint32_t frames, std::uint32_t channels) {
  switch (m_shaping) {
    case NoiseShaping::kOff: return ProcessFlat(samples, frames, channels);
    case NoiseShaping::kHighPassContour: return ProcessFirstOrder(samples, frames, channels);
    case NoiseShaping::kEqualLoudnessContour: return ProcessSecondOrder(samples, frames, channels, 0.75);
    case NoiseShaping::kSecondOrderHalf: return ProcessSecondOrder(samples, frames, channels, 0.5);
  }
}

template <typename Sample>
void CLmDither::ProcessAll(Sample* samples, std::uint32_t frames, std::uint32_t channels) {
  if (!m_generator || !m_noiseFunction || channels > kMaxChannels) return;
  const FloatEnvironmentScope environment;
  ProcessRounding(samples, frames, channels);
}

void CLmDither::Process(float* samples, std::uint32_t frames, std::uint32_t channels) {
  ProcessAll(samples, frames, channels);
}

void CLmDither::Process(double* samples, std::uint32_t frames, std::uint32_t channels) {
  ProcessAll(samples, frames, channels);
}

}  // namespace tervan
