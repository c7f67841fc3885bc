// Processing plain float buffers without a graph.
#include "module/effects.h"

namespace tervan::test {
namespace {

using DirectTest = EffectTest;
using EqDirectTest = ModuleTest;
TERVAN_FOR_ALL_EFFECTS(DirectTest);

// Processes a fifth of a second of the effect's level and returns its last sample.
float Process(const Filter& filter, DWORD channels) {
  std::vector<float> buffer(channels * 8820, static_cast<float>(filter.effect.level));
  EXPECT_EQ(filter.direct->ProcessBuffer(buffer.data(), 8820, 0), S_OK);
  return buffer.back();
}

TEST_P(DirectTest, AStreamHasItsFormatAndIsChangedOrLeft) {
  const Filter filter(effect);
  for (const DWORD channels : {1u, 2u}) {
    SCOPED_TRACE(channels);
    filter.Set(effect.audible);
    ASSERT_EQ(filter.direct->BeginStream(channels, 44100), S_OK);
    EXPECT_NEAR(Process(filter, channels), effect.audible_level, 1e-3);
    WAVEFORMATEX format{};
    ASSERT_EQ(filter.Slot(effect.format_slot, &format), S_OK);
    EXPECT_EQ(format.wFormatTag, WAVE_FORMAT_IEEE_FLOAT);
    EXPECT_EQ(format.nBlockAlign, 4 * channels);
    EXPECT_EQ(format.nAvgBytesPerSec, 44100 * 4 * channels);
    EXPECT_EQ(filter.direct->EndStream(), S_OK);
    filter.Set(effect.transparent);
    ASSERT_EQ(filter.direct->BeginStream(channels, 44100), S_OK);
    EXPECT_EQ(Process(filter, channels), static_cast<float>(effect.level));
    EXPECT_EQ(filter.direct->EndStream(), S_OK);
  }
}

TEST_P(DirectTest, ChangesOfSettingsWaitForRefreshButNotInTheDither) {
  const Filter filter(effect);
  IDirectBufferProcess& direct = *filter.direct;
  const bool waits = effect.has_automation;
  ASSERT_EQ(direct.BeginStream(2, 44100), S_OK);
  EXPECT_EQ(direct.Refresh(0, 1, 2), S_FALSE) << "nothing to push";
  EXPECT_EQ(direct.IsUnchanged(), S_FALSE);
  filter.Set(effect.audible);
  EXPECT_EQ(direct.IsUnchanged(), S_OK);
  EXPECT_NEAR(Process(filter, 2), waits ? effect.level : effect.audible_level, 1e-6);
  EXPECT_EQ(direct.IsUnchanged(), waits ? S_OK : S_FALSE);
  EXPECT_EQ(direct.Refresh(0, 0, 0), waits ? S_OK : S_FALSE);
  EXPECT_EQ(direct.IsUnchanged(), S_FALSE);
  EXPECT_NEAR(Process(filter, 2), effect.audible_level, 1e-3);
  EXPECT_EQ(direct.Refresh(1, 0, 0), S_OK) << "a reset";
}

TEST_P(DirectTest, FlushTailAndAbsurdArguments) {
  const Filter filter(effect);
  IDirectBufferProcess& direct = *filter.direct;
  const std::vector<float> before(100, static_cast<float>(effect.level));
  std::vector<float> buffer = before;
  // No stream has begun: only the dither makes its engine there.
  EXPECT_EQ(direct.ProcessBuffer(buffer.data(), 50, 0), effect.has_automation ? S_OK : E_OUTOFMEMORY);
  EXPECT_HRESULT_SUCCEEDED(direct.EndStream());
  for (const DWORD channels : {0u, 3u, 0x10001u}) {
    EXPECT_EQ(direct.BeginStream(channels, 44100), E_INVALIDARG) << channels;
  }
  filter.Set(effect.audible);
  ASSERT_EQ(direct.BeginStream(2, 0xFFFFFFFF), S_OK);
  EXPECT_EQ(direct.ProcessBuffer(nullptr, 50, 0), E_POINTER);
  EXPECT_EQ(direct.ProcessBuffer(buffer.data(), 50, 1), S_FALSE) << "a flush";
  DWORD frames = 50;
  EXPECT_EQ(direct.GetTail(buffer.data(), &frames), S_FALSE);
  EXPECT_EQ(frames, 0u);
  EXPECT_EQ(direct.GetTail(buffer.data(), nullptr), E_POINTER);
  EXPECT_EQ(buffer, before);
}

TEST_F(EqDirectTest, AFlushWaitsForTheTailToDieAway) {
  const Filter filter(kEq);
  filter.Set(filter.effect.audible);
  ASSERT_EQ(filter.direct->BeginStream(1, 44100), S_OK);
  Process(filter, 1);
  std::vector<float> silence(4000);
  EXPECT_EQ(filter.direct->ProcessBuffer(silence.data(), 4000, 1), S_OK);
  EXPECT_GT(silence.front(), 0.1f);
  EXPECT_EQ(filter.direct->ProcessBuffer(silence.data(), 4000, 1), S_FALSE);
}

}  // namespace
}  // namespace tervan::test
