// The EQ's passes as one sweep: all stages of all bands run over a buffer side by side, in place, with the results and
// states of eq_plain.h bit for bit.
//
// A stage is bound by its recurrence: the new state waits for the old one, 6 cycles for a shelf's multiplication and
// addition, 9 for a band's. Run one after the other, stages leave the pipes empty meanwhile; run together they fill
// them. So the stages form a wavefront: in a step each works on one frame, one frame behind the stage before it,
// whose output it takes as rounded to the buffer's format. Channels lie side by side in a register. Registers with room
// for more hold a second part of the stages (AVX2; SSE2 for mono) or four (AVX2 for mono). Parts run some frames apart:
// the first leaves its output in the buffer, where the next finds it.
//
// The guard of the states stays off the recurrence, where it would cost 4 cycles. A fast loop without it runs for a
// short block and watches the exponents of the new states: each has to lie between 2^-32 and 2^32, where the guard
// does nothing. When one does not, the block is taken back and run again by a loop that lets small states become 0 and
// watches for large ones, which also runs while a state is close to the floor; when that one meets a large state, too,
// by a loop with the whole guard. The last one also runs where stages have yet to start or have ended. A silent channel
// between silent states is known before: its stages are left out.
//
// A stereo frame of 32-bit floats takes four stages with AVX2 41 vector operations and ten 79, of which a processor of
// today begins four in a cycle. They come to 15 and 30 cycles: about three begin in a cycle.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "effects/eq/eq_design.h"
#include "support/simd_level.h"

namespace tervan::eq {

// States of a stage in one channel.
struct StatePair {
  double newest = 0.0;
  double older = 0.0;  // of bands; shelves leave it alone
};

// Larger states come from samples that are not numbers or lead there, or from a slot whose sections change from chunk
// to chunk.
inline constexpr double kStateLimit = 1e30;

// A stage of a section, and where its states are, per channel.
struct StageRun {
  const EqSection* section;
  StatePair* states[2];
};

// Vectors of 64-bit floats.
struct Sse2Lanes;
struct Avx2Lanes;

// stages: in the order in which they follow each other. frames × kChannels interleaved samples.
template <typename Lanes, typename Codec, std::size_t kChannels>
void RunWavefront(std::span<const StageRun> stages, typename Codec::Sample* samples, std::uint32_t frames) noexcept;

template <typename Codec, std::size_t kChannels>
void RunStages(SimdLevel level, std::span<const StageRun> stages, typename Codec::Sample* samples,
               std::uint32_t frames) noexcept {
  if (level == SimdLevel::kAvx2 && stages.size() > 1) {  // one stage would leave half of a register empty
    RunWavefront<Avx2Lanes, Codec, kChannels>(stages, samples, frames);
  } else {
    RunWavefront<Sse2Lanes, Codec, kChannels>(stages, samples, frames);
  }
}

}  // namespace tervan::eq
