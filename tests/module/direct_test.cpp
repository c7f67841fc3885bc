// Processing plain float buffers without a graph, and what every call leaves as it was.
#include <cfenv>
#include <vector>

#include <xmmintrin.h>

#include "module/module.h"

namespace tervan::test {
namespace {

using DirectTest = ModuleTest;

// Processes a tenth of a second of full scale and returns its last sample.
float Process(const Compressor& compressor, DWORD channels) {
  std::vector<float> buffer(channels * 4410, 1.0f);
  EXPECT_EQ(compressor.direct->ProcessBuffer(buffer.data(), 4410, 0), S_OK);
  return buffer.back();
}

TEST_F(DirectTest, AStreamHasItsFormatAndIsLimited) {
  const Compressor compressor;
  ASSERT_EQ(compressor.presets->ApplyPreset(kHardLimiter), S_OK);
  for (const DWORD channels : {1u, 2u}) {
    SCOPED_TRACE(channels);
    ASSERT_EQ(compressor.direct->BeginStream(channels, 44100), S_OK);
    Process(compressor, channels);
    EXPECT_NEAR(Process(compressor, channels), kLimit, 1e-3);
    WAVEFORMATEX format{};
    ASSERT_EQ(compressor.control->GetFormat(&format), S_OK);
    EXPECT_EQ(format.wFormatTag, WAVE_FORMAT_IEEE_FLOAT);
    EXPECT_EQ(format.nBlockAlign, 4 * channels);
    EXPECT_EQ(format.nAvgBytesPerSec, 44100 * 4 * channels);
    EXPECT_EQ(compressor.direct->EndStream(), S_OK);
  }
}

TEST_F(DirectTest, ChangesOfSettingsWaitForRefresh) {
  const Compressor compressor;
  IDirectBufferProcess& direct = *compressor.direct;
  ASSERT_EQ(direct.BeginStream(2, 44100), S_OK);
  EXPECT_EQ(direct.Refresh(0, 1, 2), S_FALSE) << "nothing to push";
  ASSERT_EQ(compressor.presets->ApplyPreset(kHardLimiter), S_OK);
  EXPECT_EQ(direct.IsUnchanged(), S_OK);
  EXPECT_EQ(Process(compressor, 2), 1.0f) << "not pushed yet";
  EXPECT_EQ(direct.Refresh(0, 0, 0), S_OK);
  EXPECT_EQ(direct.IsUnchanged(), S_FALSE);
  Process(compressor, 2);
  EXPECT_NEAR(Process(compressor, 2), kLimit, 1e-3);
  EXPECT_EQ(direct.Refresh(1, 0, 0), S_OK) << "a reset";
}

TEST_F(DirectTest, FlushTailAndAbsurdArguments) {
  const Compressor compressor;
  IDirectBufferProcess& direct = *compressor.direct;
  const std::vector<float> before(100, 1.0f);
  std::vector<float> buffer = before;
  EXPECT_HRESULT_SUCCEEDED(direct.ProcessBuffer(buffer.data(), 50, 0)) << "no stream has begun";
  EXPECT_HRESULT_SUCCEEDED(direct.EndStream());
  for (const DWORD channels : {0u, 3u, 0x10001u}) {
    EXPECT_EQ(direct.BeginStream(channels, 44100), E_INVALIDARG) << channels;
  }
  ASSERT_EQ(compressor.presets->ApplyPreset(kHardLimiter), S_OK);
  ASSERT_EQ(direct.BeginStream(2, 0xFFFFFFFF), S_OK);
  EXPECT_EQ(direct.ProcessBuffer(nullptr, 50, 0), E_POINTER);
  EXPECT_EQ(direct.ProcessBuffer(buffer.data(), 50, 1), S_FALSE) << "a flush";
  DWORD frames = 50;
  EXPECT_EQ(direct.GetTail(buffer.data(), &frames), S_FALSE);
  EXPECT_EQ(frames, 0u);
  EXPECT_EQ(direct.GetTail(nullptr, nullptr), E_POINTER);
  EXPECT_EQ(buffer, before);
}

// Rounding, exception masks and the treatment of denormal numbers belong to the caller.
TEST_F(DirectTest, LeavesTheFloatingPointEnvironmentAlone) {
  constexpr unsigned kControlBits = 0xFFC0;  // all but the exceptions that happened
  constexpr unsigned kFlushBits = 0x8040;    // denormal numbers count as 0
  const unsigned before = _mm_getcsr();
  const Compressor compressor;
  ASSERT_EQ(compressor.presets->ApplyPreset(5), S_OK);
  for (const int rounding : {FE_TONEAREST, FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
    for (const unsigned flush : {0u, kFlushBits}) {
      SCOPED_TRACE(testing::Message() << rounding << ' ' << flush);
      std::fesetround(rounding);
      _mm_setcsr((_mm_getcsr() & ~kFlushBits) | flush);
      const unsigned wanted = _mm_getcsr() & kControlBits;
      std::vector<float> buffer(2000, 1e-30f);
      compressor.direct->BeginStream(2, 44100);
      compressor.direct->ProcessBuffer(buffer.data(), 1000, 0);
      compressor.direct->Refresh(1, 0, 0);
      compressor.control->SetThreshold(-20);
      compressor.presets->ApplyPreset(3);
      compressor.direct->ProcessBuffer(buffer.data(), 1000, 1);
      compressor.direct->EndStream();
      NewCompressor<IUnknown>();
      EXPECT_EQ(_mm_getcsr() & kControlBits, wanted);
      EXPECT_EQ(std::fegetround(), rounding);
      std::fesetround(FE_TONEAREST);
      _mm_setcsr(before);
    }
  }
}

}  // namespace
}  // namespace tervan::test
