#include "shell/stream_processor.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "effects/compressor/compressor_settings.h"
#include "testing/fakes.h"

namespace tervan {
namespace {

using tervan::testing::RecordingEffect;

enum class Like { kCompressor, kGate, kEq, kDither };

EffectTraits TraitsLike(Like like) {
  EffectTraits traits{};
  traits.drains_at_end = like == Like::kCompressor;
  traits.mode_settles = like == Like::kEq ? ModeSettles::kAfterFirstChunk : ModeSettles::kAfterPush;
  traits.stored.record_bytes = 40;
  return traits;
}

constexpr std::int64_t kMs = 10000;  // 100-ns units
constexpr std::uint32_t kFrameBytes = 4;

// A stereo 16-bit stream at 48 kHz through an effect that takes notes.
struct Rig {
  explicit Rig(Like like)
      : effect(TraitsLike(like), like == Like::kDither ? std::span<const ParamDescriptor>{} : compressor::kParams) {
    processor.SetFormat({kTagPcm, 2, 48000, 192000, 4, 16, 0});
    EXPECT_EQ(processor.StartStreaming(), S_OK);
    EXPECT_EQ(effect.Take(), "start");
  }
  HRESULT Automate(SegmentData segment, std::uint32_t row = 0) {
    return effect.params()->AddEnvelope(row, 1, &segment);
  }
  HRESULT RunBytes(std::uint32_t bytes, bool discontinuity = false) {
    buffer.assign(bytes + 16, 0x77);
    sample = {buffer.data(), bytes, static_cast<std::uint32_t>(buffer.size()), discontinuity};
    return processor.Transform(sample);
  }
  HRESULT Run(std::uint32_t frames, bool discontinuity = false) {
    return RunBytes(frames * kFrameBytes, discontinuity);
  }
  std::uint32_t FramesOut() const { return sample.length_bytes / kFrameBytes; }

  RecordingEffect effect;
  StreamProcessor processor{effect};
  std::vector<std::uint8_t> buffer;
  SampleView sample{};
};

constexpr SegmentData kConstant{-1000 * kMs, 100000 * kMs, 5, 5, kCurveJump, 0};

TEST(StreamProcessor, BufferStaysWholeAndSettingsGoInOnlyWhenChanged) {
  Rig rig(Like::kCompressor);
  const auto calls = [&] {
    EXPECT_EQ(rig.Run(4096), S_OK);
    return rig.effect.Take();
  };
  EXPECT_EQ(calls(), "push1 m1x4096");  // a new effect's settings count as changed
  EXPECT_EQ(calls(), "m1x4096");
  rig.effect.automated().Set(0, 7.0f);
  EXPECT_EQ(calls(), "push1 m1x4096");
  rig.effect.automated().Set(0, 7.0f);  // the same
  EXPECT_EQ(calls(), "m1x4096");
  rig.effect.needs_settings = true;
  EXPECT_EQ(calls(), "push1 m1x4096");
}

TEST(StreamProcessor, DiscontinuityIsOverAsTheEffectSays) {
  struct Case {
    Like like;
    bool changed;
    const char* calls;
  };
  for (const Case& c : {Case{Like::kCompressor, false, "m0x960 m0x960 m0x80"},
                        {Like::kCompressor, true, "push0 m1x960 m1x960 m1x80"},
                        {Like::kEq, false, "m0x960 m1x960 m1x80"},
                        {Like::kEq, true, "push0 m0x960 m1x960 m1x80"}}) {
    SCOPED_TRACE(c.calls);
    Rig rig(c.like);
    rig.Automate(kConstant);
    rig.Run(960);
    rig.effect.Take();
    if (c.changed) rig.effect.control().MarkChanged();
    EXPECT_EQ(rig.Run(2000, true), S_OK);
    EXPECT_EQ(rig.effect.Take(), c.calls);
    rig.Run(10);
    EXPECT_EQ(rig.effect.Take(), "m1x10");
  }
}

TEST(StreamProcessor, ChunksEndAtSegmentEndsAndCarryTheValuesOfTheirStart) {
  Rig rig(Like::kCompressor);
  rig.processor.SetBlock({500 * kMs, 600 * kMs});
  rig.Automate({500 * kMs, 500 * kMs + 20833, -6, -6, kCurveJump, 0});            // 100 frames
  rig.Automate({500 * kMs + 20833, 540 * kMs + 20833, 10, 20, kCurveLinear, 0});  // 1920 frames
  EXPECT_EQ(rig.Run(4096), S_OK);
  std::vector<float> values;
  const auto* position = rig.buffer.data();
  for (const RecordingEffect::Call& call : rig.effect.calls) {
    if (call.kind != RecordingEffect::Kind::kProcess) continue;
    EXPECT_EQ(call.data, position);
    EXPECT_EQ(call.format, SampleFormat::kPcm16);
    EXPECT_FALSE(call.stop);
    position += call.frames * kFrameBytes;
    values.push_back(call.value);
  }
  EXPECT_EQ(rig.effect.Take(), "push1 m1x100 push1 m1x960 push1 m1x960 push1 m1x960 m1x960 m1x156");
  EXPECT_EQ(values, (std::vector<float>{-6, 10, 15, 15, 15, 15}));
  EXPECT_EQ(rig.FramesOut(), 4096u);
}

// The first visit of a constant segment is the only one that reports a change.
TEST(StreamProcessor, ValueSetByAnEmptySampleStillReachesTheEngine) {
  Rig rig(Like::kCompressor);
  rig.Run(10);
  rig.effect.Take();
  rig.Automate(kConstant);
  rig.processor.SetBlock({0, 0});
  EXPECT_EQ(rig.RunBytes(0), S_OK);
  EXPECT_EQ(rig.effect.Take(), "");
  rig.Run(10);
  EXPECT_EQ(rig.effect.Take(), "push1 m1x10");
  rig.Run(10);
  EXPECT_EQ(rig.effect.Take(), "m1x10");
}

TEST(StreamProcessor, InactiveChunksPassUntouchedAndFetchNothing) {
  Rig rig(Like::kEq);
  rig.Automate(kConstant);
  int chunk = 0;
  rig.effect.is_active = [&] { return chunk++ == 1; };
  EXPECT_EQ(rig.Run(2500, true), S_OK);
  EXPECT_EQ(rig.effect.Take(), "push0 m0x960");
  EXPECT_EQ(rig.FramesOut(), 2500u);
  EXPECT_TRUE(std::all_of(rig.buffer.begin(), rig.buffer.end(), [](std::uint8_t byte) { return byte == 0x77; }));
}

TEST(StreamProcessor, EngineDecidesHowFarTheSampleGoes) {
  struct Case {
    std::uint32_t frames;  // that the second chunk leaves
    HRESULT result;
    std::uint32_t frames_out;
    const char* calls;
  };
  for (const Case& c : {Case{960, S_OK, 2000, "push1 m1x960 m1x960 m1x80"},
                        {10, S_OK, 2000, "push1 m1x960 m1x960 m1x960 m1x70"},
                        {0, S_OK, 960, "push1 m1x960 m1x960"},
                        {960, S_FALSE, 1920, "push1 m1x960 m1x960"},
                        {5, E_FAIL, 965, "push1 m1x960 m1x960"}}) {
    SCOPED_TRACE(::testing::Message() << c.frames << " left, result " << c.result);
    Rig rig(Like::kCompressor);
    rig.Automate(kConstant);
    int chunk = 0;
    rig.effect.on_process = [&](std::uint32_t* frames) -> HRESULT {
      if (++chunk != 2) return S_OK;
      *frames = c.frames;
      return c.result;
    };
    EXPECT_EQ(rig.RunBytes(2000 * kFrameBytes + 3), c.result);  // cut to whole frames
    EXPECT_EQ(rig.sample.length_bytes, c.frames_out * kFrameBytes);
    EXPECT_EQ(rig.effect.Take(), c.calls);
  }
}

TEST(StreamProcessor, FailingPushEndsTheSampleWithItsCode) {
  Rig rig(Like::kCompressor);
  rig.Automate({0, 1000 * kMs, 0, 10, kCurveLinear, 0});
  rig.effect.failing_push = 2;
  EXPECT_EQ(rig.Run(4096), E_OUTOFMEMORY);
  EXPECT_EQ(rig.effect.Take(), "push1 m1x960 push1 m1x960");
  EXPECT_EQ(rig.FramesOut(), 1920u);
}

TEST(StreamProcessor, WithoutAutomationTheEffectGetsTheWholeBuffer) {
  Rig rig(Like::kDither);
  rig.Run(4096, true);
  EXPECT_EQ(rig.effect.Take(), "m0x4096");
  rig.effect.on_process = [](std::uint32_t* frames) -> HRESULT { return *frames = 7, S_FALSE; };
  EXPECT_EQ(rig.Run(4096), S_FALSE);
  EXPECT_EQ(rig.effect.Take(), "m1x4096");
  EXPECT_EQ(rig.FramesOut(), 7u);
}

TEST(StreamProcessor, DrainGivesOneEmptySample) {
  Rig rig(Like::kCompressor);
  rig.Run(64);
  EXPECT_TRUE(rig.processor.has_data());
  rig.effect.Take();
  rig.processor.BeginDrain();
  EXPECT_EQ(rig.RunBytes(0), S_FALSE);
  EXPECT_EQ(rig.sample.length_bytes, 0u);
  EXPECT_EQ(rig.buffer, std::vector<std::uint8_t>(16));  // the whole buffer, wherever its data ended
  SampleView none{rig.buffer.data(), 0, 0, false};
  EXPECT_EQ(rig.processor.Transform(none), S_FALSE);  // or a drain would never end
  EXPECT_EQ(rig.effect.Take(), "");
  rig.processor.EndDrain();
  EXPECT_FALSE(rig.processor.has_data());
  rig.Run(64);
  EXPECT_EQ(rig.effect.Take(), "m1x64");
}

TEST(StreamProcessor, StartAndStopReachTheEffect) {
  Rig rig(Like::kGate);
  rig.Automate(kConstant);
  rig.Run(10);
  EXPECT_FALSE(rig.effect.params()->IsEditable(0));
  rig.effect.Take();
  EXPECT_EQ(rig.processor.StopStreaming(), S_OK);
  EXPECT_TRUE(rig.effect.params()->IsEditable(0));
  EXPECT_EQ(rig.processor.StartStreaming(), S_OK);
  EXPECT_EQ(rig.effect.Take(), "stop start");
  EXPECT_FALSE(rig.processor.has_data());
  rig.processor.AdvanceStreamTime(403);
  EXPECT_EQ(rig.effect.Take(), "advance100");
}

struct DirectRig : Rig {
  explicit DirectRig(Like like) : Rig(like) {
    EXPECT_EQ(processor.BeginStream(2, 44100), S_OK);
    EXPECT_EQ(processor.Refresh(true), S_OK);
    effect.Take();
  }
  HRESULT Process(std::uint32_t frames, bool stop = false) {
    return processor.ProcessBuffer(floats.data(), frames, stop);
  }
  std::int64_t Clock() {
    effect.params()->StartDirectBlock(0);
    return effect.params()->block().start_100ns;
  }
  std::vector<float> floats = std::vector<float>(2 * 4096);
};

TEST(DirectProcessing, PageChangesWaitForARefreshAutomationDoesNot) {
  DirectRig rig(Like::kGate);
  EXPECT_TRUE(rig.processor.IsUnchanged());
  rig.effect.automated().Set(0, 7.0f);
  EXPECT_FALSE(rig.processor.IsUnchanged());
  EXPECT_EQ(rig.Process(4096), S_OK);
  EXPECT_EQ(rig.effect.Take(), "advance4096 m1x4096");
  EXPECT_EQ(rig.processor.Refresh(false), S_OK);
  EXPECT_EQ(rig.processor.Refresh(false), S_FALSE);
  EXPECT_TRUE(rig.processor.IsUnchanged());
  EXPECT_EQ(rig.effect.Take(), "push1");
  EXPECT_EQ(rig.processor.Refresh(true), S_OK);
  EXPECT_EQ(rig.effect.Take(), "push0");
  EXPECT_EQ(rig.Clock(), 0);

  rig.Automate({0, 1000 * kMs, 1, 2, kCurveLinear, 0});
  EXPECT_EQ(rig.Process(1764, true), S_OK);
  EXPECT_EQ(rig.effect.calls[2].format, SampleFormat::kFloat32);
  EXPECT_EQ(rig.effect.calls[4].data, rig.floats.data() + 2 * 882);
  EXPECT_EQ(rig.effect.Take(), "advance1764 push1 m1x882stop push1 m1x882stop");
  EXPECT_EQ(rig.Clock(), 40 * kMs);

  rig.effect.on_process = [](std::uint32_t*) -> HRESULT { return S_FALSE; };
  EXPECT_EQ(rig.Process(4410, true), S_FALSE);
  EXPECT_EQ(rig.effect.Take(), "advance4410 push1 m1x882stop");
  EXPECT_EQ(rig.Clock(), 140 * kMs + 227);  // past the block and one frame
}

TEST(DirectProcessing, OnlyTheCompressorHasATailAndOnlyAfterData) {
  for (const Like like : {Like::kCompressor, Like::kGate}) {
    DirectRig rig(like);
    for (const bool tail : {false, like == Like::kCompressor}) {
      std::uint32_t frames = 50;
      EXPECT_EQ(rig.processor.GetTail(rig.floats.data(), &frames), tail ? S_OK : S_FALSE);
      EXPECT_EQ(frames, tail ? 50u : 0u);
      EXPECT_EQ(rig.effect.Take(), tail ? "m2x50" : "");
      rig.Process(64);
      rig.effect.Take();
    }
  }
}

}  // namespace
}  // namespace tervan
