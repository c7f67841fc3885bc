// Automation of one parameter: segments in time order, and their evaluation at a point in time.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace tervan {

// Curve shapes of a segment. Any other value, the sine among them, holds the start value.
inline constexpr std::uint32_t kCurveJump = 1;
inline constexpr std::uint32_t kCurveLinear = 2;
inline constexpr std::uint32_t kCurveSquare = 4;
inline constexpr std::uint32_t kCurveInverseSquare = 8;

// Laid out as MP_ENVELOPE_SEGMENT. Times are stream times in 100-ns units; the end is exclusive.
struct SegmentData {
  std::int64_t rtStart;
  std::int64_t rtEnd;
  float valStart;
  float valEnd;
  std::uint32_t iCurve;
  std::uint32_t flags;  // stored, not interpreted
};
static_assert(sizeof(SegmentData) == 32);

struct EnvelopeSegment : SegmentData {
  std::uint32_t visited = 0;  // 1 after the first evaluation; touched by FindSegment while an editor may be copying
};

struct ParamState;

// What a search at one point in time tells.
struct SegmentHit {
  bool covered = false;              // a segment covers the time
  bool changed = false;              // the value changed, or may have
  std::int64_t remaining_100ns = 0;  // until that segment ends, when covered
};

using SegmentList = std::vector<EnvelopeSegment>;

// The list that results from adding `given` to `stored`: stored segments that overlap a given one go, touching ones
// stay, and the given ones are inserted in order, never before the one inserted last. May throw std::bad_alloc.
SegmentList WithSegments(const SegmentList& stored, std::span<const SegmentData> given);

// The list without the segments that overlap the span. May throw std::bad_alloc.
SegmentList WithoutSpan(const SegmentList& stored, std::int64_t start_100ns, std::int64_t end_100ns);

// True when the segments are in order, cover something and do not overlap: a search then finds the same wherever it
// begins.
bool IsDisjoint(const SegmentList& list);

// State of one parameter. All of it is guarded by its manager's lock, but for the shape of `segments`, which only
// changes under the manager's edit lock as well, so that an editor may read it without holding up the stream.
struct ParamState {
  SegmentList segments;
  bool disjoint = true;  // IsDisjoint(segments)
  // The next search begins at the segment found last; in a disjoint list at the one looked at last, which is near even
  // where nothing is found.
  std::size_t found_index = 0;
  std::size_t seen_index = 0;
  float value = 0.0f;
  double slope = 0.0;      // forward differences of the segment found last, per time-scale unit;
  double curvature = 0.0;  // both 0 tell a constant value from a moving one
  bool captured = false;   // a page edit is in progress: automation keeps off
  bool released = false;   // an edit ended since the last search
  bool in_segment = false;
};

// Searches from where the last search ended, evaluates the covering segment into state.value, and says how long it
// lasts. time_scale > 0: seconds in one unit of slope and curvature.
SegmentHit FindSegment(ParamState& state, std::int64_t now_100ns, double time_scale) noexcept;

// Clears slope and curvature; true when the value was moving.
bool StopMoving(ParamState& state) noexcept;

}  // namespace tervan
