// Host, page and streaming threads at work on each effect, and on what effects are made of. Meant for ThreadSanitizer;
// what must hold in any interleaving is checked as well.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <thread>
#include <type_traits>
#include <vector>

#include "effects/compressor/compressor_effect.h"
#include "effects/dither/dither_effect.h"
#include "effects/eq/eq_effect.h"
#include "effects/gate/gate_effect.h"
#include "shell/stream_processor.h"
#include "testing/fakes.h"
#include "testing/programme.h"

namespace tervan {
namespace {

using tervan::testing::FakePoster;
using tervan::testing::FakeStream;
using tervan::testing::OpenAutomatedControl;
using tervan::testing::Window;

constexpr std::int64_t kMs = 10000;  // 100-ns units
constexpr std::uint32_t kFrames = 1024;

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

  std::array<std::atomic<int>, kMaxParams> begun{}, ended{};

 private:
  ParamManager& params_;
};

void StreamAudio(StreamProcessor& processor) {
  const auto signal = testing::SamplesOf<float>(testing::Programme(kFrames, 2, 200, 1));
  std::vector<float> frames(signal.size());
  processor.SetFormat(FloatFormat(2, 48000));
  for (int run = 0; run < 20; ++run) {
    processor.StartStreaming();
    for (std::int64_t block = 0; block < 60; ++block) {
      frames = signal;
      processor.SetBlock({block * 20 * kMs, (block + 1) * 20 * kMs});
      SampleView sample{frames.data(), kFrames * 8, kFrames * 8, block % 9 == 0};
      EXPECT_EQ(processor.Transform(sample), S_OK);
      EXPECT_EQ(sample.length_bytes, kFrames * 8);
      EXPECT_TRUE(std::all_of(frames.begin(), frames.end(), [](float x) { return std::isfinite(x); }));
    }
    processor.StopStreaming();
  }
}

void EditOnPage(AutomatedControl& control, int edit) {
  const auto table = control.params().table();
  const auto row = static_cast<std::uint32_t>(edit) % static_cast<std::uint32_t>(table.size());
  control.BeginEdit(row);
  if (table[row].controlKind == ControlKind::kFloat) {
    control.Set(row, static_cast<float>(edit % 50));
  } else {
    control.Set(row, edit % 50);
  }
  control.IsAutomated(row);
  control.EndEdit(row);
}

void EditOnPage(DitherControl& control, int edit) {
  control.Set(dither::kFields[edit % 3], edit % 7);
  DitherSettings settings;
  control.GetSettings(&settings);
}

void AutomateAsHost(Effect& effect) {
  ParamManager* const params = effect.params();
  for (std::uint32_t i = 0; i < 1500; ++i) {
    effect.control().Notify(0);
    effect.control().IsChanged();
    if (!params) continue;
    const auto row = i % static_cast<std::uint32_t>(params->table().size());
    const std::int64_t start = (i % 50) * 20 * kMs;
    const SegmentData segments[] = {{start, start + 15 * kMs, 1, 3, kCurveSquare, 0},
                                    {start + 15 * kMs, start + 200 * kMs, 3, -9, kCurveJump, 0}};
    params->AddEnvelope(i % 3 == 0 ? kAllParams : row, 2, segments);
    effect.SetParam(row, 1);
    if (i % 7 == 0) params->FlushEnvelope(kAllParams, start, start + 400 * kMs);
  }
}

void SaveAndLoadAsHost(Effect& effect) {
  const auto presets = static_cast<std::int32_t>(effect.traits().presets.count);
  for (std::int32_t i = 0; i < 500; ++i) {
    ApplyPreset(effect, i % presets);
    FakeStream stream;
    EXPECT_EQ(SaveState(effect, stream, i % 2 == 0), S_OK);
    EXPECT_EQ(LoadState(effect, stream), S_OK);
  }
}

template <typename EffectType>
class EffectThreads : public ::testing::Test {};
using AllEffects = ::testing::Types<CompressorEffect, EqEffect, GateEffect, DitherEffect>;
TYPED_TEST_SUITE(EffectThreads, AllEffects);

TYPED_TEST(EffectThreads, HostPageAndStreamWorkTogether) {
  FakePoster poster;
  TypeParam effect(poster);
  StreamProcessor processor(effect);
  ParamManager* const params = effect.params();
  const auto recorder = params ? std::make_shared<CountingRecorder>(*params) : nullptr;
  if (params) params->SetRecorder(recorder);

  {
    const std::jthread stream([&] { StreamAudio(processor); });
    const std::jthread page([&] {
      for (int i = 0; i < 5000; ++i) {
        effect.settings_control().SetNotifyWindow(Window(1), i % 2);
        EditOnPage(effect.settings_control(), i);
        StreamFormat format;
        effect.settings_control().GetFormat(&format);
      }
    });
    const std::jthread automating_host([&] { AutomateAsHost(effect); });
    const std::jthread saving_host([&] { SaveAndLoadAsHost(effect); });
  }

  for (std::uint32_t row = 0; params && row < params->table().size(); ++row) {
    EXPECT_TRUE(params->BeginEdit(row)) << "an edit of row " << row << " stayed open";
    EXPECT_TRUE(params->EndEdit(row));
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
