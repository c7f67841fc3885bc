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

TEST(Envelope, RampBecomesAStaircaseOf20Milliseconds) {
  for (const auto& [rate_hz, chunk] : {std::pair{48000u, 960u}, {44100u, 882u}, {192000u, 3840u}}) {
    SCOPED_TRACE(rate_hz);
    Automation automation(rate_hz);
    automation.Add({{0, kSecond, 0.0f, 1.0f, kCurveLinear, 0}});
    for (int step = 0; step <= 50; ++step) {
      ASSERT_EQ(automation.Next(rate_hz), chunk);
      EXPECT_FLOAT_EQ(automation.Value(), 0.02f * static_cast<float>(std::min(step, 49)));
      EXPECT_EQ(automation.flags, 1u);  // at the exact end, too, where the value stays
    }
    automation.Next();
    EXPECT_EQ(automation.flags, 0u);
  }
}

TEST(Envelope, RefusedArgumentsChangeNothing) {
  const SegmentData good{0, kSecond, 1, 2, kCurveLinear, 0};
  Automation automation;
  EXPECT_EQ(automation.manager.AddEnvelope(0, 1, nullptr), E_POINTER);
  EXPECT_EQ(automation.manager.AddEnvelope(0, 0, &good), E_INVALIDARG);
  for (const std::uint32_t no_row : {3u, kAllParams - 1}) {
    EXPECT_EQ(automation.Add({good}, no_row), E_INVALIDARG);
    EXPECT_EQ(automation.manager.FlushEnvelope(no_row, 0, kSecond), E_INVALIDARG);
  }
  for (const float bad : {NAN, std::numeric_limits<float>::infinity()}) {
    EXPECT_EQ(automation.Add({good, {0, kSecond, bad, 0, kCurveJump, 0}}), E_INVALIDARG);
    EXPECT_EQ(automation.Add({{0, kSecond, 0, -bad, kCurveJump, 0}}, kAllParams), E_INVALIDARG);
  }
  EXPECT_EQ(automation.Next(4096), 4096u);  // no segment got in
}

TEST(Envelope, ExtremeTimesAndRatesNeitherOverflowNorHang) {
  for (const std::uint32_t rate_hz : {0u, 1u, 44100u, 0xFFFFFFFFu}) {
    for (const auto& [clock, x] :
         {std::pair{kEarliest, 0.0}, {kEarliest + 1, 0.0}, {std::int64_t{0}, 0.5}, {kLatest - 1, 1.0}}) {
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
      EXPECT_NEAR(automation.ValueAt(clock), x, 1e-9);
    }
    Automation automation(rate_hz);
    automation.Add({{kEarliest, kLatest, 0, 1, kCurveLinear, 0}});
    EXPECT_FALSE(automation.CoveredAt(kLatest));  // ends are exclusive
  }
}

// The same rules once more, word by word and without regard to speed.
class PlainAutomation {
 public:
  explicit PlainAutomation(std::uint32_t rate_hz) : rate_hz_(rate_hz) {}

  void Add(std::size_t row, const std::vector<SegmentData>& given) {
    std::vector<SegmentData>& list = params[row].list;
    for (const SegmentData& segment : given) Remove(row, segment.rtStart, segment.rtEnd);
    auto position = list.begin();
    for (const SegmentData& segment : given) {
      while (position != list.end() && position->rtStart < segment.rtStart) ++position;
      position = list.insert(position, segment) + 1;
    }
  }
  void Remove(std::size_t row, std::int64_t start, std::int64_t end) {
    std::vector<SegmentData>& list = params[row].list;
    for (auto it = list.begin(); it != list.end();) {
      if (it->rtEnd > start && it->rtStart >= end) return;
      it = it->rtEnd > start ? list.erase(it) : it + 1;
    }
  }
  std::uint32_t Next(std::uint32_t frames, std::uint32_t& flags) {
    auto limit = static_cast<std::int64_t>(frames * (1e7 / rate_hz_) + 0.5);
    if (std::all_of(params.begin(), params.end(), [](const Param& p) { return p.list.empty(); })) {
      for (std::size_t i = 0; i < params.size(); ++i) {
        params[i].in_segment = false;
        if (std::exchange(params[i].moving, false)) flags |= 1u << i;
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

  struct Param {
    std::vector<SegmentData> list;  // flags: 1 once visited
    std::size_t cached = 0;
    float value = -7.0f;
    bool moving = false, captured = false, released = false, in_segment = false;
  };
  std::array<Param, 3> params;
  std::int64_t clock = 0;

 private:
  int Find(Param& param, std::int64_t& remaining) const {
    if (param.captured) return 0;
    param.in_segment = false;
    if (param.list.empty()) return std::exchange(param.moving, false) ? 2 : 0;
    if (param.cached >= param.list.size()) param.cached = 0;
    int result = 0;
    const auto length = static_cast<std::ptrdiff_t>(param.list.size());
    auto i = static_cast<std::ptrdiff_t>(param.cached);
    for (std::ptrdiff_t step = 1; i >= 0 && i < length; i += step) {
      SegmentData& segment = param.list[static_cast<std::size_t>(i)];
      if (clock >= segment.rtStart && clock < segment.rtEnd) {
        param.cached = static_cast<std::size_t>(i);
        remaining = segment.rtEnd - clock;
        result = Evaluate(param, segment) ? 3 : 1;
        param.in_segment = true;
        break;
      }
      if (clock < segment.rtStart) step = -1;
      if (clock > segment.rtEnd && step < 0) break;
    }
    if (i == length) {
      param.moving = false;
      if (param.list.back().rtEnd == clock) result |= 2;
    }
    return std::exchange(param.released, false) ? result | 2 : result;
  }
  bool Evaluate(Param& param, SegmentData& s) const {
    const double x = static_cast<double>(clock - s.rtStart) / static_cast<double>(s.rtEnd - s.rtStart);
    const double rise = static_cast<double>(s.valEnd) - static_cast<double>(s.valStart);
    const double part = s.iCurve == 2 ? x : s.iCurve == 4 ? x * x : s.iCurve == 8 ? 1 - (x - 1) * (x - 1) : 0;
    param.value = static_cast<float>(static_cast<double>(s.valStart) + rise * part);
    param.moving = (s.iCurve == 2 || s.iCurve == 4 || s.iCurve == 8) && rise != 0;
    return std::exchange(s.flags, 1u) == 0 || clock == s.rtStart || param.moving;
  }

  double rate_hz_;
};

// Random edits at random clocks. In order: lists as hosts should make them; otherwise anything goes.
void CompareWithPlainAutomation(std::uint32_t seed, bool in_order) {
  std::mt19937 random(seed);
  const auto below = [&](std::uint32_t n) { return static_cast<std::uint32_t>(random() % n); };
  const auto time = [&] {
    const std::uint32_t between_frames = below(4) == 0 ? below(kMs) : 0;
    return static_cast<std::int64_t>(below(200)) * kMs + between_frames;
  };
  const auto level = [&] { return static_cast<float>(below(5)); };
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
          if (!in_order) from = time();
          const std::int64_t to = in_order ? from + (1 + below(30)) * kMs : time();
          const float start = level(), end = level();
          segment = {from, to, start, end, 1u << below(5), 0};
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
        const float value = level();
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

TEST(Envelope, AgreesWithThePlainRules) {
  for (std::uint32_t seed = 0; seed < 600 && !::testing::Test::HasFailure(); ++seed) {
    SCOPED_TRACE(seed);
    CompareWithPlainAutomation(seed, seed % 2 == 0);
  }
}

}  // namespace
}  // namespace tervan
