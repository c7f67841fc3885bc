// The vector instructions that a fast routine may use beyond SSE2, which every build has.
//
// Functions for a higher level carry [[gnu::target("sse4.1")]] or [[gnu::target("avx2")]]; what they inline needs no
// mark. Fused multiply-add is left out: it would change results.
#pragma once

namespace tervan {

enum class SimdLevel { kSse2, kSse41, kAvx2 };

// Of this machine and its system.
inline SimdLevel BestSimdLevel() noexcept {
  if (__builtin_cpu_supports("avx2")) return SimdLevel::kAvx2;
  return __builtin_cpu_supports("sse4.1") ? SimdLevel::kSse41 : SimdLevel::kSse2;
}

}  // namespace tervan
