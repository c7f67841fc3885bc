#include "params/envelope.h"

#include <algorithm>

#include "support/saturate.h"

namespace tervan {
namespace {

constexpr double kSecondsPer100ns = 1e-7;

// Segments of a list without overlaps are ordered by both times; only a host that breaks the rules makes another.
bool IsOrdered(const SegmentList& list) {
  const auto by_both = [](const SegmentData& a, const SegmentData& b) {
    return a.rtStart < b.rtStart && a.rtEnd < b.rtEnd;
  };
  return std::adjacent_find(list.begin(), list.end(), [&](const auto& a, const auto& b) { return !by_both(a, b); }) ==
         list.end();
}

// Marks the stored segments that overlap [start, end). The scan ends at the first one that starts at or after the end.
void MarkOverlaps(const SegmentList& list, bool ordered, const SegmentData& span, std::vector<bool>& removed) {
  auto it = list.begin();
  if (ordered) {
    it = std::partition_point(list.begin(), list.end(), [&](const auto& s) { return s.rtEnd <= span.rtStart; });
  }
  for (; it != list.end(); ++it) {
    const auto index = static_cast<std::size_t>(it - list.begin());
    if (removed[index] || it->rtEnd <= span.rtStart) continue;
    if (it->rtStart >= span.rtEnd) return;
    removed[index] = true;
  }
}

// The stream may be marking segments as visited meanwhile. A mark that comes too late costs one extra change report.
EnvelopeSegment CopyOf(const EnvelopeSegment& segment) {
  EnvelopeSegment copy{};
  static_cast<SegmentData&>(copy) = segment;
  copy.visited = std::atomic_ref(const_cast<std::uint32_t&>(segment.visited)).load(std::memory_order_relaxed);
  return copy;
}

SegmentList Remaining(const SegmentList& stored, std::span<const SegmentData> spans) {
  std::vector<bool> removed(stored.size());
  const bool ordered = IsOrdered(stored);
  for (const SegmentData& span : spans) MarkOverlaps(stored, ordered, span, removed);
  SegmentList kept;
  kept.reserve(stored.size());
  for (std::size_t i = 0; i < stored.size(); ++i) {
    if (!removed[i]) kept.push_back(CopyOf(stored[i]));
  }
  return kept;
}

// X runs over the fraction of the segment elapsed; value = base + amplitude X^2.
void SetParabola(ParamState& state, double x, double amplitude, double base, double scaled_length) {
  state.value = static_cast<float>(base + amplitude * (x * x));
  state.curvature = 2.0 * amplitude / (scaled_length * scaled_length);
  state.slope = (2.0 * x + 1.0 / scaled_length) * amplitude / scaled_length;
}

// True when the value changed. The segment covers now.
bool EvaluateSegment(ParamState& state, std::int64_t now_100ns, EnvelopeSegment& segment, double time_scale) {
  const double length_s = static_cast<double>(Distance(segment.rtStart, segment.rtEnd)) * kSecondsPer100ns;
  const double x = static_cast<double>(Distance(segment.rtStart, now_100ns)) * kSecondsPer100ns / length_s;
  const double scaled_length = length_s * time_scale;
  const double start = static_cast<double>(segment.valStart);
  const double end = static_cast<double>(segment.valEnd);
  const double delta = end - start;
  switch (segment.iCurve) {
    case kCurveLinear:
      state.value = static_cast<float>(start + x * delta);
      state.slope = delta / scaled_length;
      state.curvature = 0.0;
      break;
    case kCurveSquare: SetParabola(state, x, delta, start, scaled_length); break;
    case kCurveInverseSquare: SetParabola(state, x - 1.0, -delta, end, scaled_length); break;
    default: state.value = segment.valStart; state.slope = state.curvature = 0.0;
  }
  const bool constant = state.slope == 0.0 && state.curvature == 0.0;
  const bool unchanged = now_100ns != segment.rtStart && segment.visited != 0 && constant;
  std::atomic_ref(segment.visited).store(1, std::memory_order_relaxed);
  return !unchanged;
}

enum class WalkEnd { kFound, kPastLast, kElsewhere };

WalkEnd Walk(ParamState& state, std::int64_t now_100ns) {
  const SegmentList& list = state.segments;
  if (state.found_index >= list.size()) state.found_index = 0;
  std::size_t i = state.disjoint && state.seen_index < list.size() ? state.seen_index : state.found_index;
  bool backward = false;
  for (;;) {
    const EnvelopeSegment& segment = list[i];
    state.seen_index = i;
    if (now_100ns >= segment.rtStart && now_100ns < segment.rtEnd) {
      state.found_index = i;
      return WalkEnd::kFound;
    }
    if (now_100ns < segment.rtStart) backward = true;
    if (now_100ns > segment.rtEnd && backward) return WalkEnd::kElsewhere;
    if (backward) {
      if (i-- == 0) return WalkEnd::kElsewhere;
    } else if (++i == list.size()) {
      return WalkEnd::kPastLast;
    }
  }
}

}  // namespace

SegmentList WithSegments(const SegmentList& stored, std::span<const SegmentData> given) {
  const SegmentList kept = Remaining(stored, given);
  SegmentList merged;
  merged.reserve(kept.size() + given.size());
  auto next_kept = kept.begin();
  for (const SegmentData& segment : given) {
    while (next_kept != kept.end() && next_kept->rtStart < segment.rtStart) merged.push_back(*next_kept++);
    merged.push_back({segment, 0});
  }
  merged.insert(merged.end(), next_kept, kept.end());
  return merged;
}

SegmentList WithoutSpan(const SegmentList& stored, std::int64_t start_100ns, std::int64_t end_100ns) {
  const SegmentData span{start_100ns, end_100ns, 0.0f, 0.0f, kCurveJump, 0};
  return Remaining(stored, {&span, 1});
}

bool IsDisjoint(const SegmentList& list) {
  std::int64_t free_from = INT64_MIN;
  for (const SegmentData& segment : list) {
    if (segment.rtStart < free_from || segment.rtEnd <= segment.rtStart) return false;
    free_from = segment.rtEnd;
  }
  return true;
}

bool StopMoving(ParamState& state) noexcept {
  const bool moving = state.slope != 0.0 || state.curvature != 0.0;
  state.slope = state.curvature = 0.0;
  return moving;
}

SegmentHit FindSegment(ParamState& state, std::int64_t now_100ns, double time_scale) noexcept {
  SegmentHit hit;
  if (state.captured) return hit;
  state.in_segment = false;
  if (state.segments.empty()) {
    hit.changed = StopMoving(state);
    return hit;
  }
  switch (Walk(state, now_100ns)) {
    case WalkEnd::kFound: {
      EnvelopeSegment& segment = state.segments[state.found_index];
      hit.covered = true;
      hit.remaining_100ns =
          static_cast<std::int64_t>(std::min(Distance(now_100ns, segment.rtEnd), std::uint64_t{INT64_MAX}));
      hit.changed = EvaluateSegment(state, now_100ns, segment, time_scale);
      state.in_segment = true;
      break;
    }
    case WalkEnd::kPastLast:
      state.slope = state.curvature = 0.0;
      hit.changed = state.segments.back().rtEnd == now_100ns;
      break;
    case WalkEnd::kElsewhere: break;
  }
  if (state.released) {
    state.released = false;
    hit.changed = true;
  }
  return hit;
}

}  // namespace tervan
