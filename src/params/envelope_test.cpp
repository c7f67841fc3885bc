#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "params/param_manager.h"

namespace tervan {
namespace {

constexpr std::int64_t kMs = 10000;  // 100-ns units
constexpr std::int64_t kSecond = 1000 * kMs;
constexpr std::int64_t kEarliest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kLatest = std::numeric_limits<std::int64_t>::max();

constexpr ParamDescriptor RowWithMask(std::uint32_t mask) {
  ParamDescriptor row = Describe({u"Row", u"", ParamType::kFloat, -100, 100, -7, -100, 100, ControlKind::kFloat, 0});
  row.changeMask = mask;
  return row;
}
constexpr ParamDescriptor kRows[] = {RowWithMask(1), RowWithMask(2), RowWithMask(4)};

struct Automation {
  explicit Automation(std::uint32_t rate_hz = 48000) {
    manager.SetSampleRate(rate_hz);
    manager.SetStreaming(true);
  }
  HRESULT Add(std::vector<SegmentData> segments, std::uint32_t row = 0) {
    return manager.AddEnvelope(row, static_cast<std::uint32_t>(segments.size()), segments.data());
  }
  void JumpTo(std::int64_t time) { manager.SetBlock({time, time}); }
  std::uint32_t Next(std::uint32_t frames = 48000) {
    flags = 0;
    return manager.NextChangeFrames(frames, &flags);
  }
  float Value(std::uint32_t row = 0) const {
    float value = NAN;
    EXPECT_EQ(manager.GetParam(row, &value), S_OK);
    return value;
  }
  float ValueAt(std::int64_t time) { return JumpTo(time), Next(), Value(); }
  bool CoveredAt(std::int64_t time) { return JumpTo(time), Next(), !manager.IsEditable(0); }
  std::int64_t Clock() {
    manager.StartDirectBlock(0);
    return manager.block().start_100ns;
  }

  ParamManager manager{kRows};
  std::uint32_t flags = 0;
};

TEST(Envelope, EveryCurveFollowsItsFormula) {
  constexpr std::uint32_t kSine = 16, kUnknown = 77;
  for (const auto& [start, end] : {std::pair{2.0f, 10.0f}, {6.0f, -1.5f}, {3.0f, 3.0f}}) {
    for (const double x : {0.0, 0.125, 0.5, 0.75, 0.9999999}) {
      SCOPED_TRACE(::testing::Message() << start << " to " << end << " at " << x);
      const double rise = end - start;
      const std::pair<std::uint32_t, double> cases[] = {{kCurveJump, start},
                                                        {kCurveLinear, start + rise * x},
                                                        {kCurveSquare, start + rise * x * x},
                                                        {kCurveInverseSquare, end - rise * (1 - x) * (1 - x)},
                                                        {kSine, start},
                                                        {kUnknown, start}};
      for (const auto& [curve, expected] : cases) {
        Automation automation;
        automation.Add({{-kSecond, kSecond, start, end, curve, 0}});
        EXPECT_NEAR(automation.ValueAt(-kSecond + std::llround(x * 2 * kSecond)), expected, 1e-6) << "curve " << curve;
      }
    }
  }
}

TEST(Envelope, RampBecomesAStaircaseOf20Milliseconds) {
  for (const auto& [rate_hz, chunk] : {std::pair{48000u, 960u}, {44100u, 882u}, {8000u, 160u}, {192000u, 3840u}}) {
    SCOPED_TRACE(rate_hz);
    Automation automation(rate_hz);
    automation.Add({{0, kSecond, 0.0f, 1.0f, kCurveLinear, 0}});
    for (int step = 0; step < 50; ++step) {
      ASSERT_EQ(automation.Next(rate_hz), chunk);
      EXPECT_FLOAT_EQ(automation.Value(), 0.02f * static_cast<float>(step));
      EXPECT_EQ(automation.flags, 1u);
    }
    EXPECT_EQ(automation.Next(rate_hz), chunk);  // the exact end: a change is reported, the value stays
    EXPECT_EQ(automation.flags, 1u);
    EXPECT_FLOAT_EQ(automation.Value(), 0.98f);
    automation.Next();
    EXPECT_EQ(automation.flags, 0u);
  }
}

TEST(Envelope, ChunkEndsWhereTheNearestSegmentEnds) {
  Automation automation;
  automation.Add({{0, 20833, 1, 1, kCurveJump, 0}}, 1);  // 100 frames
  automation.Add({{0, 10417, 2, 2, kCurveJump, 0}}, 2);  // 50 frames
  EXPECT_EQ(automation.Next(4096), 50u);
  EXPECT_EQ(automation.flags, 6u);
  EXPECT_EQ(automation.Clock(), 10417);
  EXPECT_EQ(automation.Next(4046), 50u);
  EXPECT_EQ(automation.flags, 4u);  // row 2 ended, row 1 is constant and was visited
  EXPECT_EQ(automation.Next(30), 30u);
  EXPECT_EQ(automation.flags, 2u);
}

TEST(Envelope, BoundaryWithinHalfAFrameStillGivesOneFrame) {
  Automation automation;
  automation.Add({{0, 50, 1, 1, kCurveJump, 0}, {50, kSecond, 2, 2, kCurveJump, 0}});
  EXPECT_EQ(automation.Next(64), 1u);
  EXPECT_EQ(automation.Clock(), 50);  // the clock takes the boundary, not the frame
  automation.Next(0);
  EXPECT_EQ(automation.Value(), 2.0f);
  EXPECT_EQ(automation.Next(0), 0u);
}

TEST(Envelope, WithoutSegmentsBuffersStayWholeAndTheClockFollows) {
  Automation automation(44100);
  EXPECT_EQ(automation.Next(4096), 4096u);
  EXPECT_EQ(automation.Clock(), 928798);  // 4096 / 44100 s, rounded
  EXPECT_EQ(automation.Next(0xFFFFFFFFu), 0xFFFFFFFFu);
  EXPECT_EQ(automation.Clock(), 928798 + std::llround(4294967295.0 * 1e7 / 44100.0));
  automation.manager.StepPastBlock();
  EXPECT_EQ(automation.Clock(), 928798 + std::llround(4294967295.0 * 1e7 / 44100.0) + 227);
  automation.manager.ResetClock();
  automation.manager.StartDirectBlock(441);
  EXPECT_EQ(automation.manager.block().end_100ns, 10 * kMs);
}

TEST(Envelope, ConstantSegmentsReportOncePerEntryAndMovingOnesAlways) {
  struct Case {
    SegmentData segment;
    bool again;
  };
  for (const Case& c : {Case{{0, kSecond, -10, 0, kCurveJump, 0}, false},
                        {{0, kSecond, 5, 5, kCurveLinear, 0}, false},
                        {{0, kSecond, 5, 5, kCurveSquare, 0}, false},
                        {{0, kSecond, 5, 6, kCurveSquare, 0}, true},
                        {{0, kSecond, 5, 6, kCurveInverseSquare, 0}, true}}) {
    SCOPED_TRACE(c.segment.iCurve);
    Automation automation;
    automation.Add({c.segment});
    automation.JumpTo(3 * kMs);
    automation.Next();
    EXPECT_EQ(automation.flags, 1u);
    automation.Next();
    EXPECT_EQ(automation.flags, c.again ? 1u : 0u);
    automation.JumpTo(0);  // the exact start reports even when visited
    automation.Next();
    EXPECT_EQ(automation.flags, 1u);
  }
}

TEST(Envelope, GapsKeepTheValueAndReportNothing) {
  Automation automation;
  automation.Add({{0, 10 * kMs, 1, 2, kCurveLinear, 0}, {100 * kMs, 110 * kMs, 3, 3, kCurveJump, 0}});
  EXPECT_FLOAT_EQ(automation.ValueAt(5 * kMs), 1.5f);
  for (const std::int64_t ms : {10, 11, 60, 99}) {
    EXPECT_FALSE(automation.CoveredAt(ms * kMs)) << ms;
    EXPECT_EQ(automation.flags, 0u) << ms;
  }
  EXPECT_EQ(automation.Value(), 1.5f);
  EXPECT_TRUE(automation.CoveredAt(100 * kMs));
  EXPECT_FALSE(automation.CoveredAt(50 * kMs));  // backwards, into the gap
  EXPECT_FALSE(automation.CoveredAt(-1));        // and before everything
  EXPECT_EQ(automation.flags, 0u);
  EXPECT_TRUE(automation.CoveredAt(0));
}

TEST(Envelope, FlushOfAMovingParameterReportsOnce) {
  for (const auto& [curve, reports] :
       {std::pair{kCurveLinear, 1u}, {kCurveSquare, 1u}, {kCurveInverseSquare, 1u}, {kCurveJump, 0u}}) {
    for (const bool other_row_automated : {false, true}) {
      SCOPED_TRACE(::testing::Message() << curve << (other_row_automated ? ", another row stays" : ""));
      Automation automation;
      automation.Add({{0, kSecond, 1, 2, curve, 0}});
      if (other_row_automated) automation.Add({{kSecond, 2 * kSecond, 1, 2, kCurveJump, 0}}, 1);
      const float value = automation.ValueAt(500 * kMs);
      EXPECT_EQ(automation.manager.FlushEnvelope(0, kEarliest, kLatest), S_OK);
      automation.Next();
      EXPECT_EQ(automation.flags, reports);
      EXPECT_EQ(automation.Value(), value);
      EXPECT_TRUE(automation.manager.IsEditable(0));
      automation.Next();
      EXPECT_EQ(automation.flags, 0u);
    }
  }
}

TEST(Envelope, NewSegmentsReplaceWhatTheyOverlapAndKeepWhatTheyTouch) {
  Automation automation;
  const auto covered = [&] {
    std::string map;
    for (int ms = 1; ms < 40; ms += 2) map += automation.CoveredAt(ms * kMs) ? 'x' : '.';
    return map;
  };
  const auto jump = [](std::int64_t from_ms, std::int64_t to_ms) {
    return SegmentData{from_ms * kMs, to_ms * kMs, 0, 0, kCurveJump, 0};
  };
  automation.Add({jump(0, 10), jump(10, 20), jump(30, 40)});
  EXPECT_EQ(covered(), "xxxxxxxxxx.....xxxxx");
  automation.Add({jump(20, 26)});
  EXPECT_EQ(covered(), "xxxxxxxxxxxxx..xxxxx");
  automation.Add({jump(6, 14)});
  EXPECT_EQ(covered(), "...xxxx...xxx..xxxxx");
  automation.manager.FlushEnvelope(0, 14 * kMs, 20 * kMs);  // touches two
  EXPECT_EQ(covered(), "...xxxx...xxx..xxxxx");
  automation.manager.FlushEnvelope(0, 26 * kMs - 1, 30 * kMs + 1);
  EXPECT_EQ(covered(), "...xxxx.............");
}

TEST(Envelope, RefusedArgumentsChangeNothing) {
  const SegmentData good{0, kSecond, 1, 2, kCurveLinear, 0};
  const float inf = std::numeric_limits<float>::infinity();
  Automation automation;
  EXPECT_EQ(automation.manager.AddEnvelope(0, 1, nullptr), E_POINTER);
  EXPECT_EQ(automation.manager.AddEnvelope(0, 0, &good), E_INVALIDARG);
  EXPECT_EQ(automation.manager.AddEnvelope(3, 1, &good), E_INVALIDARG);
  EXPECT_EQ(automation.manager.AddEnvelope(kAllParams - 1, 1, &good), E_INVALIDARG);
  EXPECT_EQ(automation.manager.FlushEnvelope(3, 0, kSecond), E_INVALIDARG);
  for (const float bad : {NAN, inf, -inf}) {
    EXPECT_EQ(automation.Add({good, {0, kSecond, bad, 0, kCurveJump, 0}}), E_INVALIDARG);
    EXPECT_EQ(automation.Add({{0, kSecond, 0, bad, kCurveJump, 0}}, kAllParams), E_INVALIDARG);
  }
  EXPECT_EQ(automation.Next(4096), 4096u);  // no segment got in

  EXPECT_EQ(automation.Add({good}, kAllParams), S_OK);
  automation.JumpTo(0);
  automation.Next();
  EXPECT_EQ(automation.flags, 7u);
  EXPECT_EQ(automation.manager.FlushEnvelope(kAllParams, 0, 1), S_OK);
  EXPECT_EQ(automation.Next(4096), 4096u);
  EXPECT_EQ(automation.flags, 7u);
}

TEST(Envelope, PageEditSuspendsAutomationUntilItEnds) {
  Automation automation;
  automation.Add({{0, kSecond, 0, 50, kCurveJump, 0}});
  automation.Next();
  EXPECT_EQ(automation.manager.SetParam(0, 5), S_FALSE);
  automation.manager.BeginEdit(0);
  automation.manager.SetFloat(0, 9);
  EXPECT_EQ(automation.Next(), 960u);
  EXPECT_EQ(automation.flags, 0u);
  EXPECT_EQ(automation.Value(), 9);
  automation.manager.EndEdit(0);
  automation.Next();
  EXPECT_EQ(automation.flags, 1u);  // a visited jump, but the edit had replaced its value
  EXPECT_EQ(automation.Value(), 0);
  automation.Next();
  EXPECT_EQ(automation.flags, 0u);
  automation.JumpTo(5 * kSecond);  // outside all segments an ended edit is reported as well
  automation.Next();
  automation.manager.EndEdit(0);
  automation.Next();
  EXPECT_EQ(automation.flags, 1u);
}

TEST(Envelope, ExtremeTimesAndRatesNeitherOverflowNorHang) {
  for (const std::uint32_t rate_hz : {0u, 1u, 44100u, 0xFFFFFFFFu}) {
    for (const std::int64_t clock :
         {kEarliest, kEarliest + 1, std::int64_t{-1}, std::int64_t{0}, kLatest - 1, kLatest}) {
      SCOPED_TRACE(::testing::Message() << rate_hz << " Hz at " << clock);
      Automation automation(rate_hz);
      automation.Add({{kEarliest, kLatest, 0, 1, kCurveLinear, 0}});
      automation.Add({{kEarliest, kEarliest + 1, 0, 1, kCurveSquare, 0}, {kLatest - 1, kLatest, 0, 1, kCurveSquare, 0}},
                     1);
      automation.Add({{5, 5, 0, 1, 2, 0}, {9, -9, 0, 1, 4, 0}, {kLatest, kEarliest, 0, 1, 8, 0}, {0, 1, 0, 1, 2, 0}},
                     2);
      automation.JumpTo(clock);
      std::uint32_t left = 100;
      for (int chunk = 0; left != 0 && chunk < 200; ++chunk) left -= std::min(automation.Next(left), left);
      EXPECT_EQ(left, 0u);
      const double x = clock < 0 ? (clock == -1 ? 0.5 : 0.0) : (clock == 0 ? 0.5 : 1.0);
      if (clock == kEarliest && rate_hz != 0) {
        automation.JumpTo(clock);
        automation.Next();
        EXPECT_EQ(automation.Clock(), clock + 1);
      }
      if (clock == kLatest) continue;  // ends are exclusive
      EXPECT_NEAR(automation.ValueAt(clock), x, 1e-9);
    }
  }
}

TEST(Envelope, TenThousandSegmentsAreFoundFromAnywhere) {
  constexpr int kCount = 10000;
  Automation automation;
  std::vector<SegmentData> segments;
  for (int i = 0; i < kCount; ++i) {
    segments.push_back({i * kMs, (i + 1) * kMs, static_cast<float>(i % 97), 0, kCurveJump, 0});
  }
  automation.Add(segments);
  automation.Add({{2000 * kMs, 7000 * kMs, 98, 98, kCurveJump, 0}});
  automation.Add({{3000 * kMs, 3001 * kMs, 99, 99, kCurveJump, 0}});  // takes the whole of the one before with it
  for (const int i : {0, 1, 9999, 1999, 7000, 5, 8000, 1234}) {
    EXPECT_EQ(automation.ValueAt(i * kMs), static_cast<float>(i % 97)) << i;
    EXPECT_EQ(automation.ValueAt((i + 1) * kMs - 1), static_cast<float>(i % 97)) << i;
  }
  EXPECT_EQ(automation.ValueAt(3000 * kMs), 99);
  for (const int i : {2000, 2999, 3001, 6999, kCount}) EXPECT_FALSE(automation.CoveredAt(i * kMs)) << i;
}

// The same rules once more, word by word and without regard to speed.
class PlainAutomation {
 public:
  explicit PlainAutomation(std::uint32_t rate_hz) : rate_hz_(rate_hz) {}

  void Add(std::size_t row, const std::vector<SegmentData>& given) {
    std::vector<Entry>& list = params[row].list;
    for (const SegmentData& segment : given) Remove(row, segment.rtStart, segment.rtEnd);
    std::size_t position = 0;
    for (const SegmentData& segment : given) {
      while (position < list.size() && list[position].data.rtStart < segment.rtStart) ++position;
      list.insert(list.begin() + static_cast<std::ptrdiff_t>(position++), Entry{segment, false});
    }
  }
  void Remove(std::size_t row, std::int64_t start, std::int64_t end) {
    std::vector<Entry>& list = params[row].list;
    for (std::size_t i = 0; i < list.size();) {
      if (list[i].data.rtEnd <= start) {
        ++i;
      } else if (list[i].data.rtStart >= end) {
        return;
      } else {
        list.erase(list.begin() + static_cast<std::ptrdiff_t>(i));
      }
    }
  }
  std::uint32_t Next(std::uint32_t frames, std::uint32_t& flags) {
    auto limit = static_cast<std::int64_t>(frames * (1e7 / rate_hz_) + 0.5);
    if (std::all_of(params.begin(), params.end(), [](const Param& p) { return p.list.empty(); })) {
      for (std::size_t i = 0; i < params.size(); ++i) {
        params[i].in_segment = false;
        if (ClearMotion(params[i])) flags |= 1u << i;
      }
      clock += limit;
      return frames;
    }
    for (std::size_t i = 0; i < params.size(); ++i) {
      std::int64_t remaining = 0;
      const int found = Find(params[i], remaining);
      if (found & 1) limit = std::min(limit, remaining);
      if (found & 2) flags |= 1u << i;
    }
    limit = std::min<std::int64_t>(limit, 200000);
    clock += limit;
    const auto chunk = static_cast<std::uint32_t>(static_cast<double>(limit) * (rate_hz_ * 1e-7) + 0.5);
    return frames == 0 ? chunk : std::max(chunk, 1u);
  }

  struct Entry {
    SegmentData data;
    bool visited;
  };
  struct Param {
    std::vector<Entry> list;
    std::size_t cached = 0;
    float value = -7.0f;
    bool moving = false, captured = false, released = false, in_segment = false;
  };
  std::array<Param, 3> params;
  std::int64_t clock = 0;

 private:
  static bool ClearMotion(Param& param) { return std::exchange(param.moving, false); }

  int Find(Param& param, std::int64_t& remaining) const {
    if (param.captured) return 0;
    param.in_segment = false;
    if (param.list.empty()) return ClearMotion(param) ? 2 : 0;
    if (param.cached >= param.list.size()) param.cached = 0;
    int result = 0;
    const auto length = static_cast<std::ptrdiff_t>(param.list.size());
    auto i = static_cast<std::ptrdiff_t>(param.cached);
    for (std::ptrdiff_t step = 1; i >= 0 && i < length; i += step) {
      Entry& entry = param.list[static_cast<std::size_t>(i)];
      if (clock >= entry.data.rtStart && clock < entry.data.rtEnd) {
        param.cached = static_cast<std::size_t>(i);
        remaining = entry.data.rtEnd - clock;
        result = Evaluate(param, entry) ? 3 : 1;
        param.in_segment = true;
        break;
      }
      if (clock < entry.data.rtStart) step = -1;
      if (clock > entry.data.rtEnd && step < 0) break;
    }
    if (i == length) {
      param.moving = false;
      if (param.list.back().data.rtEnd == clock) result |= 2;
    }
    return std::exchange(param.released, false) ? result | 2 : result;
  }
  bool Evaluate(Param& param, Entry& entry) const {
    const SegmentData& s = entry.data;
    const double x = static_cast<double>(clock - s.rtStart) / static_cast<double>(s.rtEnd - s.rtStart);
    const double rise = static_cast<double>(s.valEnd) - static_cast<double>(s.valStart);
    const double part = s.iCurve == 2 ? x : s.iCurve == 4 ? x * x : s.iCurve == 8 ? 1 - (x - 1) * (x - 1) : 0;
    param.value = static_cast<float>(static_cast<double>(s.valStart) + rise * part);
    param.moving = (s.iCurve == 2 || s.iCurve == 4 || s.iCurve == 8) && rise != 0;
    const bool visited = std::exchange(entry.visited, true);
    return clock == s.rtStart || !visited || param.moving;
  }

  double rate_hz_;
};

// Random edits at random clocks. In order: lists as hosts should make them; otherwise anything goes.
void CompareWithPlainAutomation(std::uint32_t seed, bool in_order) {
  std::mt19937 random(seed);
  const auto below = [&](std::uint32_t n) { return random() % n; };
  const auto time = [&] { return static_cast<std::int64_t>(below(200)) * kMs; };
  const std::uint32_t rate_hz = std::array{8000u, 44100u, 48000u, 50000u, 192000u}[below(5)];
  Automation real(rate_hz);
  PlainAutomation plain(rate_hz);
  for (int round = 0; round < 400; ++round) {
    const std::uint32_t row = below(3);
    PlainAutomation::Param& param = plain.params[row];
    switch (below(16)) {
      case 0:
      case 1: {
        std::vector<SegmentData> given(1 + below(5));
        std::int64_t from = time();
        for (SegmentData& segment : given) {
          const std::int64_t length = (1 + below(30)) * kMs;
          if (!in_order) from = time();
          const std::int64_t to = in_order ? from + length : time();
          segment = {from,
                     to,
                     static_cast<float>(below(5)),
                     static_cast<float>(below(5)),
                     std::array{1u, 2u, 4u, 8u, 16u}[below(5)],
                     0};
          from = to + below(2) * below(20) * kMs;
        }
        real.Add(given, row);
        plain.Add(row, given);
        break;
      }
      case 2: {
        const std::int64_t start = time(), end = in_order ? start + below(60) * kMs : time();
        real.manager.FlushEnvelope(row, start, end);
        plain.Remove(row, start, end);
        break;
      }
      case 3: real.JumpTo(plain.clock = time() - 20 * kMs); break;
      case 4: EXPECT_EQ(real.manager.BeginEdit(row), !std::exchange(param.captured, true)); break;
      case 5:
        EXPECT_EQ(real.manager.EndEdit(row), std::exchange(param.captured, false));
        param.released = true;
        break;
      case 6: {
        const auto value = static_cast<float>(below(5));
        const HRESULT same = param.value == value ? S_FALSE : S_OK;
        EXPECT_EQ(real.manager.SetParam(row, value), param.in_segment ? S_FALSE : same);
        if (!param.in_segment) param.value = value;
        break;
      }
      default: {
        const std::uint32_t frames = below(8) == 0 ? 0 : below(3000);
        std::uint32_t plain_flags = 0;
        ASSERT_EQ(real.Next(frames), plain.Next(frames, plain_flags)) << "round " << round;
        ASSERT_EQ(real.flags, plain_flags) << "round " << round;
      }
    }
    for (std::uint32_t i = 0; i < 3; ++i) {
      ASSERT_NEAR(real.Value(i), plain.params[i].value, 1e-5) << "row " << i << ", round " << round;
      ASSERT_EQ(real.manager.IsEditable(i), !plain.params[i].in_segment) << "row " << i << ", round " << round;
    }
  }
  EXPECT_EQ(real.Clock(), plain.clock);
}

TEST(Envelope, AgreesWithThePlainRulesOnOrderedSegments) {
  for (std::uint32_t seed = 0; seed < 300 && !::testing::Test::HasFailure(); ++seed) {
    SCOPED_TRACE(seed);
    CompareWithPlainAutomation(seed, true);
  }
}

TEST(Envelope, AgreesWithThePlainRulesOnSegmentsInAnyOrder) {
  for (std::uint32_t seed = 0; seed < 300 && !::testing::Test::HasFailure(); ++seed) {
    SCOPED_TRACE(seed);
    CompareWithPlainAutomation(seed, false);
  }
}

}  // namespace
}  // namespace tervan
