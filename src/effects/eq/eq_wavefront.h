// The wavefront of eq_kernel.h, for one width of vectors.
//
// Lanes brings the vectors: Doubles and Integers of kCount elements, and what the operators on them do not give.
#pragma once

#include <emmintrin.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <span>
#include <type_traits>

#include "effects/eq/eq_kernel.h"
#include "shell/frame_codec.h"
#include "support/state_floor.h"

namespace tervan::eq {

inline constexpr int kMaxRegisters = 5;  // of a wavefront: ten stereo stages with AVX2
inline constexpr int kLeastLag = 5;      // steps from a part to the next: a frame read sooner would wait for its store
inline constexpr int kBlockFrames = 32;  // that run before the new states are checked
inline constexpr int kChunkFrames = 1024;   // of a wavefront
inline constexpr double kNearFloor = 16.0;  // times the floor: where the quickest loop would hardly get through

// An exponent in its place in a 64-bit float.
constexpr std::uint64_t ExponentField(int exponent) { return static_cast<std::uint64_t>(exponent) << 52; }

// States from 2^-32 to 2^32 are moved to the exponents 0x3C0 to 0x3FF: 64 of them that have four ones in common behind
// a zero, and no others have. Where a state has to be 0, only 0 and what is close to it gets there.
inline constexpr int kWindowBegin = 0x3C0;
inline constexpr std::uint64_t kWindowWidth = ExponentField(0x40);
inline constexpr std::uint64_t kLiveShift = ExponentField(kWindowBegin) - ExponentField(1023 - 32);
inline constexpr std::uint64_t kZeroShift = ExponentField(kWindowBegin);
static_assert(kStateFloor == 0x1p-32);

// Magnitudes from 2^99 on, and what is no number, are moved to the sign.
inline constexpr std::uint64_t kSignBit = ExponentField(0x800);
inline constexpr std::uint64_t kLargeShift = kSignBit - ExponentField(1023 + 99);
static_assert(kStateLimit > 0x1p99);

// The frames that enter and leave the parts of a wavefront in a step.
template <typename Lanes, typename Codec, std::size_t kChannels>
struct WavefrontBuffer {
  using Sample = typename Codec::Sample;
  using Frame = FrameCodec<Codec, kChannels>;
  using Doubles = typename Lanes::Doubles;
  static constexpr int kParts = Lanes::kCount / static_cast<int>(kChannels);

  Sample* samples;
  int frames;
  int lag;  // steps by which a part is behind the part before it

  // kEdge: some of the frames may lie outside the buffer.
  template <bool kEdge>
  [[gnu::always_inline]] Doubles Read(int step) const noexcept {
    __m128d parts[kParts];
#pragma GCC unroll 4
    for (int part = 0; part < kParts; ++part) {
      const int frame = step - part * lag;
      parts[part] = !kEdge || IsInside(frame) ? Frame::Load(At(frame)) : _mm_setzero_pd();
    }
    const Doubles x = Lanes::Join(parts);
    if constexpr (std::is_floating_point_v<Sample>) return x + 0.0;  // -0.0 becomes 0.0, as behind any stage
    return x;
  }

  template <bool kEdge>
  [[gnu::always_inline]] void Write(int step, Doubles y) const noexcept {
    __m128d parts[kParts];
    Lanes::Split(y, parts);
#pragma GCC unroll 4
    for (int part = 0; part < kParts; ++part) {
      const int frame = step - part * lag;
      if (!kEdge || IsInside(frame)) Frame::Store(At(frame), parts[part]);
    }
  }

  bool IsInside(int frame) const noexcept { return frame >= 0 && frame < frames; }
  Sample* At(int frame) const noexcept { return samples + frame * static_cast<std::ptrdiff_t>(kChannels); }
};

template <typename Lanes, typename Codec, std::size_t kChannels>
class Wavefront {
  using Sample = typename Codec::Sample;
  using Buffer = WavefrontBuffer<Lanes, Codec, kChannels>;
  using Doubles = typename Lanes::Doubles;
  using Integers = typename Lanes::Integers;

 public:
  static constexpr int kParts = Buffer::kParts;

  // stages: at most kMaxRegisters × kParts. resting: channels whose states and samples are silent.
  Wavefront(std::span<const StageRun> stages, const bool (&resting)[kChannels], Sample* samples, int frames) noexcept
      : registers_((static_cast<int>(stages.size()) + kParts - 1) / kParts),
        buffer_{samples, frames, LagOf(registers_)},
        delay_((kParts - 1) * buffer_.lag + registers_ - 1) {
    for (int part = 0; part < kParts; ++part) {
      for (int i = 0; i < registers_; ++i) {
        for (std::size_t channel = 0; channel < kChannels; ++channel) {
          const auto stage = static_cast<std::size_t>(part * registers_ + i);
          const bool used = stage < stages.size() && !resting[channel];
          const std::size_t lane = static_cast<std::size_t>(part) * kChannels + channel;
          Place(used ? &stages[stage] : nullptr, channel, part * buffer_.lag + i, lane, i);
        }
      }
    }
  }

  void Run() noexcept {
    int step = delay_;
    RunGuarded<true>(0, step);
    while (step < buffer_.frames) {
      const int end = std::min(step + kBlockFrames, buffer_.frames);
      const bool done = (!AnyNearFloor() && TryBlock<false>(step, end)) || TryBlock<true>(step, end);
      if (!done) RunGuarded<false>(step, end);
      step = end;
    }
    RunGuarded<true>(step, buffer_.frames + delay_);
  }

  void SaveStates(std::span<const StageRun> stages) const noexcept {
    for (std::size_t stage = 0; stage < stages.size(); ++stage) {
      const auto i = stage % static_cast<std::size_t>(registers_);
      for (std::size_t channel = 0; channel < kChannels; ++channel) {
        const std::size_t lane = stage / static_cast<std::size_t>(registers_) * kChannels + channel;
        StatePair& states = *stages[stage].states[channel];
        states.newest = Flushed(flight_->w1[i][lane]);
        if (stages[stage].section->mode == EqMode::kBand) states.older = Flushed(flight_->w2[i][lane]);
      }
    }
  }

 private:
  // The stages in the lanes of a register.
  struct Register {
    Doubles c0, gain;
    Doubles sign;    // -0.0: the earlier state is subtracted from the output
    Integers shift;  // to the window of exponents
    Doubles c1;
    Integers older;  // all ones: the earlier state is the older one
    Doubles delay;   // steps before the first frame arrives
    bool bands;      // any; otherwise c1 and the older state count for nothing
  };

  // What moves: the states of the stages, and the frames on their way to them.
  struct Flight {
    Doubles w1[kMaxRegisters], w2[kMaxRegisters], x[kMaxRegisters];
  };

  // No stage: the lane passes on what it gets.
  void Place(const StageRun* stage, std::size_t channel, int delay, std::size_t lane, int i) noexcept {
    const EqSection section = stage ? *stage->section : EqSection{.mode = EqMode::kLowShelf};
    const StatePair states = stage ? *stage->states[channel] : StatePair{};
    const bool is_band = section.mode == EqMode::kBand;
    Register& r = stages_[i];
    r.c0[lane] = section.c0;
    r.c1[lane] = is_band ? section.c1 : 0.0;
    r.gain[lane] = section.gain;
    r.delay[lane] = delay;
    r.sign[lane] = section.mode == EqMode::kLowShelf ? 0.0 : -0.0;
    r.older[lane] = is_band ? ~std::uint64_t{0} : 0;
    r.shift[lane] = stage ? kLiveShift : kZeroShift;
    r.bands = (lane != 0 && r.bands) || is_band;
    flight_->w1[i][lane] = states.newest;
    flight_->w2[i][lane] = is_band ? states.older : 0.0;
    flight_->x[i][lane] = 0.0;
  }

  // As a later stage finds it in the buffer.
  [[gnu::always_inline]] static Doubles Rounded(Doubles y) noexcept {
    if constexpr (std::is_same_v<Sample, double>) {
      return y;
    } else if constexpr (std::is_same_v<Sample, float>) {
      return Lanes::RoundedToSingle(y);
    } else {
      constexpr double kScale = static_cast<double>(std::uint64_t{1} << (8 * sizeof(Sample) - 1));
      const Doubles clipped = Lanes::Clipped(y * kScale, -kScale, kScale - 1.0);
      return Lanes::Truncated(clipped) * (1.0 / kScale);
    }
  }

  [[gnu::always_inline]] static Doubles EarlierState(const Register& r, Doubles w1, Doubles w2) noexcept {
    if constexpr (kParts == 1) return w2;
    return Lanes::Select(r.older, w2, w1);
  }

  // any, all: OR and AND of states that were moved to the window. Adding to the four ones carries into the zero in
  // front of them, if all states had the ones; and none may have had a one there.
  [[gnu::always_inline]] static bool AreInWindow(Integers any, Integers all) noexcept {
    const Integers passed = (all + kWindowWidth) & ~any;  // the carry of the four ones, and the zero in front of them
    return Lanes::SignBits(passed + passed) == (1 << Lanes::kCount) - 1;
  }

  bool AnyNearFloor() const noexcept {
    Integers any{};
    Integers all = ~any;
    for (int i = 0; i < registers_; ++i) {
      const Integers moved = Lanes::Bits(flight_->w1[i] * (1.0 / kNearFloor)) + stages_[i].shift;
      any |= moved;
      all &= moved;
    }
    return !AreInWindow(any, all);
  }

  // Runs steps that all lie inside the buffer; false: they have to be run in another way, and nothing has changed.
  template <bool kFloored>
  bool TryBlock(int begin, int end) noexcept {
    Sample saved[(kBlockFrames + kMaxDelay) * kChannels];
    Sample* const first = buffer_.At(begin - delay_);
    // Frame by frame where frames have just been written: longer loads would wait for the stores.
    const std::size_t recent = static_cast<std::size_t>(delay_) * kChannels;
    for (std::size_t at = 0; at < recent; at += kChannels)
      std::memcpy(saved + at, first + at, sizeof(Sample) * kChannels);
    const std::size_t count = static_cast<std::size_t>(end - begin) * kChannels;
    std::memcpy(saved + recent, first + recent, count * sizeof(Sample));

    Flight* const next = flight_ == &flights_[0] ? &flights_[1] : &flights_[0];
    if (RunFast<kFloored>(begin, end, *next)) {
      flight_ = next;
      return true;
    }
    std::memcpy(first, saved, (recent + count) * sizeof(Sample));
    return false;
  }

  template <bool kFloored>
  bool RunFast(int begin, int end, Flight& next) const noexcept {
    switch (registers_) {
      case 1: return RunBlock<1, kFloored>(begin, end, next);
      case 2: return RunBlock<2, kFloored>(begin, end, next);
      case 3: return RunBlock<3, kFloored>(begin, end, next);
      case 4: return RunBlock<4, kFloored>(begin, end, next);
      default: return RunBlock<kMaxRegisters, kFloored>(begin, end, next);
    }
  }

  // True when states and samples are those of the plain passes. Large states fail; small ones fail, too, or become 0 if
  // kFloored.
  template <int kRegisters, bool kFloored>
  [[gnu::noinline]] bool RunBlock(int begin, int end, Flight& next) const noexcept {
    Doubles w1[kRegisters], w2[kRegisters], x[kRegisters];
#pragma GCC unroll 8
    for (int i = 0; i < kRegisters; ++i) {
      w1[i] = flight_->w1[i];
      w2[i] = flight_->w2[i];
      x[i] = flight_->x[i];
    }
    Integers any{};
    Integers all = ~any;
    const Buffer buffer = buffer_;
    for (int step = begin; step < end; ++step) {
      Doubles y = buffer.template Read<false>(step);
#pragma GCC unroll 8
      for (int i = 0; i < kRegisters; ++i) {
        const Register& r = stages_[i];
        const Doubles in = i == 0 ? y : x[i];
        x[i] = y;
        Doubles w = r.c0 * w1[i];
        Doubles earlier = w1[i];
        if (r.bands) {
          w = w + r.c1 * w2[i];
          earlier = EarlierState(r, w1[i], w2[i]);
          w2[i] = w1[i];
        }
        w = w + r.gain * in;
        if constexpr (kFloored) {
          const Integers magnitude = Lanes::Bits(w) & ~kSignBit;
          w = Lanes::FromBits(Lanes::Bits(w) & Lanes::IsNotBelow(magnitude, kStateFloor));
          any |= magnitude + kLargeShift;
        } else {
          const Integers moved = Lanes::Bits(w) + r.shift;
          any |= moved;
          all &= moved;
        }
        y = in + w + Lanes::Flipped(earlier, r.sign);
        w1[i] = w;
        if (i + 1 < kRegisters) y = Rounded(y);
      }
      buffer.template Write<false>(step - (kRegisters - 1), y);
    }
#pragma GCC unroll 8
    for (int i = 0; i < kRegisters; ++i) {
      next.w1[i] = w1[i];
      next.w2[i] = w2[i];
      next.x[i] = x[i];
    }
    return kFloored ? Lanes::SignBits(any) == 0 : AreInWindow(any, all);
  }

  // kEdge: stages whose frames lie outside the buffer keep their states.
  template <bool kEdge>
  [[gnu::noinline]] void RunGuarded(int begin, int end) noexcept {
    const Buffer buffer = buffer_;
    Flight& flight = *flight_;
    for (int step = begin; step < end; ++step) {
      const Doubles entering = buffer.template Read<kEdge>(step);
      // None of the stages in the registers before and behind these is active.
      const int first = kEdge ? std::max(step - delay_ - buffer.frames + registers_, 0) : 0;
      const int last = kEdge ? std::min(step, registers_ - 1) : registers_ - 1;
      Doubles leaving{};
      for (int i = last; i >= first; --i) {
        const Register& r = stages_[i];
        const Doubles w1 = flight.w1[i], w2 = flight.w2[i];
        const Doubles in = i == 0 ? entering : flight.x[i];
        const Doubles feedback = r.bands ? r.c0 * w1 + r.c1 * w2 : r.c0 * w1;
        Doubles w = feedback + r.gain * in;
        const Integers moved = Lanes::Bits(w) + r.shift;
        if (!AreInWindow(moved, moved)) w = Guarded(w, feedback);
        const Doubles earlier = r.bands ? EarlierState(r, w1, w2) : w1;
        const Doubles y = in + w + Lanes::Flipped(earlier, r.sign);
        Doubles older = w1;
        if constexpr (kEdge) {
          const Integers active =
              Integers(Doubles{} + step >= r.delay) & Integers(Doubles{} + (step - buffer.frames) < r.delay);
          w = Lanes::Select(active, w, w1);
          older = Lanes::Select(active, w1, w2);
        }
        flight.w1[i] = w;
        flight.w2[i] = older;
        if (i + 1 < registers_) {
          flight.x[i + 1] = Rounded(y);
        } else {
          leaving = y;
        }
      }
      buffer.template Write<kEdge>(step - (registers_ - 1), leaving);
    }
  }

  // The new state as the plain pass has it: too small ones become 0; where a sample made it too large or no number, the
  // sample is left out.
  static Doubles Guarded(Doubles w, Doubles feedback) noexcept {
    const auto magnitude = [](Doubles v) { return Lanes::FromBits(Lanes::Bits(v) & ~kSignBit); };
    const auto is_fit = [&](Doubles v) {
      return Integers(magnitude(v) >= Doubles{} + kStateFloor) & Integers(magnitude(v) <= Doubles{} + kStateLimit);
    };
    const Integers small = Integers(magnitude(w) < Doubles{} + kStateFloor);
    const Integers left_out = ~(is_fit(w) | small);
    return Lanes::FromBits((Lanes::Bits(w) & is_fit(w)) | (Lanes::Bits(feedback) & left_out & is_fit(feedback)));
  }

  // A frame has to have left a part before it enters the next.
  static constexpr int LagOf(int registers) noexcept { return std::max(registers + 1, kLeastLag); }
  static constexpr int kMaxDelay = (kParts - 1) * LagOf(kMaxRegisters) + kMaxRegisters - 1;

  Register stages_[kMaxRegisters];
  Flight flights_[2];
  const int registers_;
  const Buffer buffer_;
  const int delay_;  // steps from a frame's entrance to its leave
  Flight* flight_ = &flights_[0];
};

// Silence in a channel: its states are 0, and no sample moves one of them away from there. (Lanes keeps the copies for
// different instruction sets apart.)
template <typename Lanes, typename Codec, std::size_t kChannels>
bool IsResting(std::span<const StageRun> stages, std::size_t channel, const typename Codec::Sample* samples,
               int frames) noexcept {
  double most_gain = 0.0;
  for (const StageRun& stage : stages) {
    const StatePair& states = *stage.states[channel];
    if (states.newest != 0.0 || (stage.section->mode == EqMode::kBand && states.older != 0.0)) return false;
    most_gain = std::max(most_gain, std::fabs(stage.section->gain));
  }
  const double bound = 0.5 * kStateFloor / most_gain;
  for (int frame = 0; frame < frames; ++frame) {
    const double x = Codec::Decode(samples[static_cast<std::size_t>(frame) * kChannels + channel]);
    if (!(std::fabs(x) < bound)) return false;
  }
  return true;
}

// What stages at rest make of their samples.
template <typename Lanes, typename Codec>
void RunResting(typename Codec::Sample* samples, std::size_t count) noexcept {
  if constexpr (std::is_floating_point_v<typename Codec::Sample>) {
    for (std::size_t i = 0; i < count; ++i) samples[i] += 0;  // -0.0 becomes 0.0
  }
}

// stages: as many as a wavefront takes; frames: of a chunk.
template <typename Lanes, typename Codec, std::size_t kChannels>
void RunChunk(std::span<const StageRun> stages, typename Codec::Sample* samples, int frames) noexcept {
  bool resting[kChannels];
  bool all_resting = true;
  for (std::size_t channel = 0; channel < kChannels; ++channel) {
    for (const StageRun& stage : stages) {
      StatePair& states = *stage.states[channel];
      states = {Flushed(states.newest), Flushed(states.older)};
    }
    resting[channel] = IsResting<Lanes, Codec, kChannels>(stages, channel, samples, frames);
    all_resting = all_resting && resting[channel];
  }
  if (all_resting) return RunResting<Lanes, Codec>(samples, static_cast<std::size_t>(frames) * kChannels);
  Wavefront<Lanes, Codec, kChannels> wavefront(stages, resting, samples, frames);
  wavefront.Run();
  wavefront.SaveStates(stages);
}

template <typename Lanes, typename Codec, std::size_t kChannels>
void RunWavefront(std::span<const StageRun> stages, typename Codec::Sample* samples, std::uint32_t frames) noexcept {
  constexpr std::size_t kMost = kMaxRegisters * Wavefront<Lanes, Codec, kChannels>::kParts;
  const std::size_t sweeps = (stages.size() + kMost - 1) / kMost;
  do {  // once without frames, too: it floors the states
    const std::uint32_t chunk = std::min<std::uint32_t>(frames, kChunkFrames);
    for (std::size_t sweep = 0; sweep < sweeps; ++sweep) {
      const std::size_t first = stages.size() * sweep / sweeps;
      const std::size_t end = stages.size() * (sweep + 1) / sweeps;
      RunChunk<Lanes, Codec, kChannels>(stages.subspan(first, end - first), samples, static_cast<int>(chunk));
    }
    samples += chunk * kChannels;
    frames -= chunk;
  } while (frames > 0);
}

}  // namespace tervan::eq
