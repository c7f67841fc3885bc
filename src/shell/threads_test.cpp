// The control object and the parameter store between threads. Meant for ThreadSanitizer; what must hold in any
// interleaving is checked as well.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <thread>

#include "effects/compressor/compressor_settings.h"
#include "testing/fakes.h"

namespace tervan {
namespace {

using tervan::testing::FakePoster;
using tervan::testing::OpenAutomatedControl;

// Asks back, as a host may.
class AskingRecorder : public ParamRecorder {
 public:
  explicit AskingRecorder(ParamManager& params) : params_(params) {}
  void BeginEdit(std::uint32_t) override {}
  void EditValue(std::uint32_t index, float) override {
    float value = 0;
    params_.GetParam(index, &value);
  }
  void EndEdit(std::uint32_t) override {}

 private:
  ParamManager& params_;
};

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
  for (int i = 0; i < 500; ++i) params.SetRecorder(i % 2 == 0 ? std::make_shared<AskingRecorder>(params) : nullptr);
  page.join();
}

}  // namespace
}  // namespace tervan
