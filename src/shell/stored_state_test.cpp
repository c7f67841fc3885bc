#include "shell/stored_state.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "effects/compressor/compressor_settings.h"
#include "testing/fakes.h"

namespace tervan {
namespace {

using tervan::testing::FakeStream;
using tervan::testing::RecordingEffect;
using tervan::testing::Window;
using Words = std::vector<std::uint32_t>;

constexpr std::size_t kHeader = 20, kRecordWords = 10;

EffectTraits Traits() {
  EffectTraits traits{};
  traits.stored = {compressor::kForms, 4 * kRecordWords, LoadNotifies::kAfterBodyRead};
  return traits;
}

// An effect that stores what the compressor does. It is not modified, and each word of its record is 7.
struct Rig {
  Rig() {
    effect.control().SetNotifyWindow(Window(1), 32700);
    effect.SetRecord(Words(kRecordWords, 7).data());
    SaveState(effect, stored, true);
  }
  Words Get() {
    Words words(kRecordWords);
    effect.GetRecord(words.data());
    return words;
  }

  RecordingEffect effect{Traits(), compressor::kParams};
  FakeStream stored;
};

TEST(StoredState, BrokenStreamsCountAsTheyReport) {
  constexpr std::size_t kHalfAHeader = 10, kOneWord = kHeader + 4;
  struct Case {
    std::size_t bytes;
    HRESULT short_read, result;
    std::uint32_t first_word;  // afterwards
    std::size_t notifications;
  };
  for (const Case& c : {Case{kOneWord, S_OK, S_OK, 1, 1},
                        {kOneWord, S_FALSE, S_FALSE, 1, 1},
                        {kOneWord, E_FAIL, E_FAIL, 7, 1},
                        {kHalfAHeader, S_FALSE, E_FAIL, 7, 0}}) {
    SCOPED_TRACE(::testing::Message() << c.bytes << " bytes, result " << c.result);
    Rig rig;
    rig.stored.bytes[kHeader] = 1;
    rig.stored.bytes.resize(c.bytes);
    rig.stored.short_read = c.short_read;
    EXPECT_EQ(LoadState(rig.effect, rig.stored), c.result);
    Words expected(kRecordWords, 7);
    expected[0] = c.first_word;
    EXPECT_EQ(rig.Get(), expected);
    EXPECT_EQ(rig.effect.poster.Take().size(), c.notifications);
    EXPECT_EQ(rig.effect.control().IsDirty(), c.first_word == 1);
  }
}

TEST(StoredState, OnlyACompleteSaveThatIsAskedToTakesTheModifiedFlagBack) {
  struct Case {
    int failing_call;
    bool clear, dirty_before, dirty_after;
    std::size_t written;
  };
  for (const Case& c : {Case{-1, true, true, false, 60},
                        {-1, false, true, true, 60},
                        {0, true, true, true, 0},
                        {1, true, true, true, kHeader},
                        {1, true, false, false, kHeader}}) {
    SCOPED_TRACE(::testing::Message() << "write " << c.failing_call << " fails, clear " << c.clear);
    Rig rig;
    if (c.dirty_before) rig.effect.automated().Set(0, 5.0f);
    FakeStream stream;
    stream.failing_call = c.failing_call;
    EXPECT_EQ(SaveState(rig.effect, stream, c.clear), c.failing_call < 0 ? S_OK : E_OUTOFMEMORY);
    EXPECT_EQ(rig.effect.control().IsDirty(), c.dirty_after);
    EXPECT_EQ(stream.bytes.size(), c.written);
  }
}

}  // namespace
}  // namespace tervan
