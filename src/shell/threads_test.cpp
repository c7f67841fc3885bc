// Host, page and streaming threads at work together. Meant for ThreadSanitizer; what must hold in any interleaving is
// checked as well.
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <cstring>
#include <memory>
#include <thread>
#include <vector>

#include "effects/compressor/compressor_settings.h"
#include "shell/stream_processor.h"
#include "testing/fakes.h"

namespace tervan {
namespace {

using tervan::testing::FakePoster;
using tervan::testing::FakeStream;
using tervan::testing::OpenAutomatedControl;
using tervan::testing::RecordingEffect;
using tervan::testing::Window;

constexpr std::int64_t kMs = 10000;  // 100-ns units
constexpr std::uint32_t kRows = static_cast<std::uint32_t>(std::size(compressor::kParams));

// Counts edits; a host may call back from any of these.
class CountingRecorder : public ParamRecorder {
 public:
  explicit CountingRecorder(ParamManager& params) : params_(params) {}
  void BeginEdit(std::uint32_t index) override { ++begun[index]; }
  void EditValue(std::uint32_t index, float) override {
    float value = 0;
    params_.GetParam(index, &value);
  }
  void EndEdit(std::uint32_t index) override { ++ended[index]; }

  std::array<std::atomic<int>, kRows> begun{}, ended{};

 private:
  ParamManager& params_;
};

EffectTraits Traits() {
  EffectTraits traits{};
  traits.mode_settles = ModeSettles::kAfterPush;
  traits.settings_replaced_code = 32701;
  traits.stored = {compressor::kForms, 40, LoadNotifies::kAfterBodyRead};
  traits.presets = ListOf(compressor::kPresets);
  return traits;
}

void StreamAudio(StreamProcessor& processor) {
  processor.SetFormat(FloatFormat(2, 48000));
  std::vector<float> frames(2 * 1024);
  for (int run = 0; run < 20; ++run) {
    processor.StartStreaming();
    for (std::int64_t block = 0; block < 60; ++block) {
      processor.SetBlock({block * 20 * kMs, (block + 1) * 20 * kMs});
      SampleView sample{frames.data(), 8192, 8192, block == 0};
      EXPECT_EQ(processor.Transform(sample), S_OK);
      EXPECT_EQ(sample.length_bytes, 8192u);
    }
    processor.StopStreaming();
  }
}

void EditOnPage(OpenAutomatedControl& control) {
  for (int i = 0; i < 6000; ++i) {
    const auto row = static_cast<std::uint32_t>(i) % kRows;
    control.SetNotifyWindow(Window(1), i % 2);
    control.BeginEdit(row);
    if (compressor::kParams[row].controlKind == ControlKind::kFloat) {
      control.Set(row, static_cast<float>(i % 50));
    } else {
      control.Set(row, i % 2);
    }
    control.IsAutomated(row);
    control.EndEdit(row);
    StreamFormat format;
    control.GetFormat(&format);
  }
}

void AutomateAsHost(RecordingEffect& effect) {
  ParamManager& params = *effect.params();
  for (std::uint32_t i = 0; i < 1500; ++i) {
    const std::int64_t start = (i % 50) * 20 * kMs;
    const SegmentData segments[] = {{start, start + 15 * kMs, -6, -1, kCurveSquare, 0},
                                    {start + 15 * kMs, start + 200 * kMs, -1, -9, kCurveJump, 0}};
    params.AddEnvelope(i % 3 == 0 ? kAllParams : i % kRows, 2, segments);
    params.SetParam(i % kRows, 1);
    if (i % 7 == 0) params.FlushEnvelope(kAllParams, start, start + 400 * kMs);
    effect.control().Notify(0);
    effect.control().IsChanged();
  }
}

void SaveAndLoadAsHost(RecordingEffect& effect) {
  for (std::int32_t i = 0; i < 800; ++i) {
    ApplyPreset(effect, i % 9);
    FakeStream stream;
    EXPECT_EQ(SaveState(effect, stream, i % 2 == 0), S_OK);
    EXPECT_EQ(LoadState(effect, stream), S_OK);
  }
}

TEST(Threads, HostPageAndStreamWorkTogether) {
  RecordingEffect effect(Traits(), compressor::kParams);
  StreamProcessor processor(effect);
  const auto recorder = std::make_shared<CountingRecorder>(*effect.params());
  effect.params()->SetRecorder(recorder);

  std::vector<std::thread> threads;
  threads.emplace_back([&] { StreamAudio(processor); });
  threads.emplace_back([&] { EditOnPage(effect.automated()); });
  threads.emplace_back([&] { AutomateAsHost(effect); });
  threads.emplace_back([&] { SaveAndLoadAsHost(effect); });
  for (std::thread& thread : threads) thread.join();

  for (std::uint32_t row = 0; row < kRows; ++row) {
    EXPECT_TRUE(effect.params()->BeginEdit(row)) << "an edit of row " << row << " stayed open";
    EXPECT_TRUE(effect.params()->EndEdit(row));
    EXPECT_EQ(recorder->begun[row], recorder->ended[row]) << row;
  }
}

TEST(Threads, SnapshotsHoldAllOfARecordOrNone) {
  FakePoster poster;
  OpenAutomatedControl control(compressor::kParams, poster);
  const auto record_of = [](float value) {
    const auto word = static_cast<std::int32_t>(value);
    return CompressorSettings{value, value, value, value, value, value, word, word, 0, word};
  };
  CompressorSettings record = record_of(0);
  control.ImportRecord(&record);

  std::jthread host([&] {
    for (int i = 0; i <= 3000; ++i) {
      const CompressorSettings given = record_of(static_cast<float>(i));
      control.ImportRecord(&given);
    }
  });
  float latest = 0;
  for (int polls = 0; latest < 3000 && polls < 100'000'000; ++polls) {
    if (!control.FetchRecord(&record)) continue;  // a change that is not announced is never looked at
    EXPECT_GE(record.input_gain_db, latest);
    latest = record.input_gain_db;
    const CompressorSettings whole = record_of(latest);
    ASSERT_EQ(std::memcmp(&record, &whole, sizeof record), 0) << latest;
  }
  host.join();
  EXPECT_EQ(latest, 3000);  // the last change was announced, too
}

TEST(Threads, RecorderCanBeReplacedWhileItIsTold) {
  ParamManager params(compressor::kParams);
  std::jthread page([&] {
    for (int i = 0; i < 2000; ++i) params.SetFloat(0, static_cast<float>(i % 20));
  });
  for (int i = 0; i < 500; ++i) params.SetRecorder(i % 2 == 0 ? std::make_shared<CountingRecorder>(params) : nullptr);
  page.join();
}

}  // namespace
}  // namespace tervan
