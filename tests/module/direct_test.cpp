// Processing plain float buffers without a graph, and what every call leaves as it was.
#include <cfenv>
#include <cmath>
#include <limits>
#include <vector>

#include <xmmintrin.h>

#include "module/module.h"

namespace tervan::test {
namespace {

constexpr LONG kHardLimiter = 8;  // threshold -6 dB, no make-up
constexpr float kLimit = 0.50118723f;

class DirectTest : public ModuleTest {
 protected:
  void SetUp() override {
    ModuleTest::SetUp();
    direct = NewCompressor<IDirectBufferProcess>();
    control = Query<ICompressorSettings>(direct.Get());
    presets = Query<IPluginPresets>(direct.Get());
  }
  void TearDown() override {
    direct.Reset();
    control.Reset();
    presets.Reset();
    ModuleTest::TearDown();
  }
  // Processes a square wave at full scale and returns it.
  std::vector<float> Process(DWORD channels, DWORD frames) {
    std::vector<float> buffer(channels * frames);
    for (std::size_t i = 0; i < buffer.size(); ++i) buffer[i] = (i / channels / 50) % 2 == 0 ? 1.0f : -1.0f;
    EXPECT_EQ(direct->ProcessBuffer(buffer.data(), frames, 0), S_OK);
    return buffer;
  }

  ComPtr<IDirectBufferProcess> direct;
  ComPtr<ICompressorSettings> control;
  ComPtr<IPluginPresets> presets;
};

TEST_F(DirectTest, TheDefaultSettingsTouchNoBit) {
  ASSERT_EQ(direct->BeginStream(2, 44100), S_OK);
  std::vector<float> buffer = {0.25f, -1.5f, 3e-40f, -0.0f, std::numeric_limits<float>::infinity(), 1e-9f};
  const std::vector<float> before = buffer;
  EXPECT_EQ(direct->ProcessBuffer(buffer.data(), 3, 0), S_OK);
  EXPECT_EQ(std::memcmp(buffer.data(), before.data(), buffer.size() * sizeof(float)), 0);
}

TEST_F(DirectTest, ALimiterHoldsAFullScaleSquareWaveAtItsThreshold) {
  for (const DWORD channels : {1u, 2u}) {
    SCOPED_TRACE(channels);
    ASSERT_EQ(presets->ApplyPreset(kHardLimiter), S_OK);
    ASSERT_EQ(direct->BeginStream(channels, 44100), S_OK);
    Process(channels, 4410);
    const std::vector<float> settled = Process(channels, 4410);
    for (std::size_t i = 0; i < settled.size(); ++i) ASSERT_NEAR(std::fabs(settled[i]), kLimit, 1e-3) << i;
    WAVEFORMATEX format{};
    ASSERT_EQ(control->GetFormat(&format), S_OK);
    EXPECT_EQ(format.wFormatTag, WAVE_FORMAT_IEEE_FLOAT);
    EXPECT_EQ(format.nChannels, channels);
    EXPECT_EQ(format.nSamplesPerSec, 44100u);
    EXPECT_EQ(format.nBlockAlign, 4 * channels);
    EXPECT_EQ(format.nAvgBytesPerSec, 44100 * 4 * channels);
    EXPECT_EQ(format.wBitsPerSample, 32);
    EXPECT_EQ(format.cbSize, 0);
    EXPECT_EQ(direct->EndStream(), S_OK);
  }
}

// One call or many: the result does not depend on the size of the buffers.
TEST_F(DirectTest, TheSizeOfTheBuffersDoesNotMatter) {
  ASSERT_EQ(presets->ApplyPreset(5), S_OK);
  std::vector<float> whole(2 * 5000);
  for (std::size_t i = 0; i < whole.size(); ++i)
    whole[i] = static_cast<float>(std::sin(0.01 * static_cast<double>(i * i % 6007)));
  std::vector<float> parts = whole;
  ASSERT_EQ(direct->BeginStream(2, 48000), S_OK);
  ASSERT_EQ(direct->ProcessBuffer(whole.data(), 5000, 0), S_OK);
  ASSERT_EQ(direct->EndStream(), S_OK);
  ASSERT_EQ(direct->BeginStream(2, 48000), S_OK);
  for (DWORD done = 0, frames = 1; done < 5000; done += frames, frames = std::min<DWORD>(frames * 2, 5000 - done)) {
    ASSERT_EQ(direct->ProcessBuffer(parts.data() + 2 * done, frames, 0), S_OK);
  }
  EXPECT_EQ(parts, whole);
}

TEST_F(DirectTest, ChangesOfSettingsWaitForRefresh) {
  ASSERT_EQ(direct->BeginStream(2, 44100), S_OK);
  EXPECT_EQ(direct->IsUnchanged(), S_FALSE);
  EXPECT_EQ(direct->Refresh(0, 1, 2), S_FALSE) << "nothing to push";
  ASSERT_EQ(presets->ApplyPreset(kHardLimiter), S_OK);
  EXPECT_EQ(direct->IsUnchanged(), S_OK);
  EXPECT_EQ(Process(2, 4410).back(), 1.0f) << "not pushed yet";
  EXPECT_EQ(direct->IsUnchanged(), S_OK);
  EXPECT_EQ(direct->Refresh(0, 0, 0), S_OK);
  EXPECT_EQ(direct->IsUnchanged(), S_FALSE);
  Process(2, 4410);
  EXPECT_NEAR(Process(2, 4410).back(), kLimit, 1e-3);
  EXPECT_EQ(direct->Refresh(0, 0, 0), S_FALSE);
  EXPECT_EQ(direct->Refresh(1, 0, 0), S_OK);
  EXPECT_EQ(direct->EndStream(), S_OK);
}

TEST_F(DirectTest, FlushEndsTheStreamWithoutTouchingTheBuffer) {
  ASSERT_EQ(presets->ApplyPreset(kHardLimiter), S_OK);
  ASSERT_EQ(direct->BeginStream(1, 44100), S_OK);
  std::vector<float> buffer(100, 1.0f);
  EXPECT_EQ(direct->ProcessBuffer(buffer.data(), 100, 1), S_FALSE);
  EXPECT_EQ(buffer, std::vector<float>(100, 1.0f));
}

TEST_F(DirectTest, ThereIsNeverATail) {
  std::vector<float> buffer(100, 1.0f);
  DWORD frames = 50;
  EXPECT_EQ(direct->GetTail(buffer.data(), &frames), S_FALSE) << "before any stream";
  EXPECT_EQ(frames, 0u);
  ASSERT_EQ(direct->BeginStream(2, 44100), S_OK);
  EXPECT_EQ(direct->GetTail(buffer.data(), &(frames = 50)), S_FALSE) << "before any data";
  EXPECT_EQ(frames, 0u);
  EXPECT_EQ(direct->ProcessBuffer(buffer.data(), 50, 0), S_OK);
  EXPECT_EQ(direct->GetTail(buffer.data(), &(frames = 50)), S_FALSE);
  EXPECT_EQ(frames, 0u);
  EXPECT_EQ(direct->GetTail(nullptr, nullptr), E_POINTER);
  EXPECT_EQ(buffer, std::vector<float>(100, 1.0f));
}

TEST_F(DirectTest, SurvivesAbsurdUse) {
  std::vector<float> buffer(100, 0.5f);
  EXPECT_HRESULT_SUCCEEDED(direct->ProcessBuffer(buffer.data(), 50, 0)) << "no stream has begun";
  EXPECT_EQ(buffer, std::vector<float>(100, 0.5f));
  EXPECT_HRESULT_SUCCEEDED(direct->Refresh(1, 0, 0));
  EXPECT_HRESULT_SUCCEEDED(direct->EndStream());
  EXPECT_EQ(direct->BeginStream(0, 44100), E_INVALIDARG);
  EXPECT_EQ(direct->BeginStream(3, 44100), E_INVALIDARG);
  EXPECT_EQ(direct->BeginStream(0x10001, 44100), E_INVALIDARG);
  MP_ENVELOPE_SEGMENT segment{0, 1000000, -10, -20, MP_CURVE_LINEAR, 0};
  for (const DWORD rate_hz : {0u, 1u, 0xFFFFFFFFu}) {
    SCOPED_TRACE(rate_hz);
    ASSERT_EQ(Query<tervan::IMediaParams>(direct.Get())->AddEnvelope(2, 1, &segment), S_OK);
    ASSERT_HRESULT_SUCCEEDED(direct->BeginStream(2, rate_hz));
    EXPECT_EQ(direct->ProcessBuffer(nullptr, 50, 0), E_POINTER);
    EXPECT_HRESULT_SUCCEEDED(direct->ProcessBuffer(buffer.data(), 0, 0));
    EXPECT_HRESULT_SUCCEEDED(direct->ProcessBuffer(buffer.data(), 50, 0));
    for (const float sample : buffer) EXPECT_TRUE(std::isfinite(sample));
    EXPECT_EQ(direct->EndStream(), S_OK);
  }
}

// The engine's state must not keep what is no number: soon after such input the output is right again.
TEST_F(DirectTest, RecoversFromInputThatIsNoNumber) {
  for (const float bad : {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(), 3e38f}) {
    for (const LONG preset : {2, 5, 8}) {
      SCOPED_TRACE(testing::Message() << bad << " preset " << preset);
      ASSERT_EQ(presets->ApplyPreset(preset), S_OK);
      ASSERT_EQ(direct->BeginStream(2, 44100), S_OK);
      Process(2, 44100);
      const std::vector<float> expected = Process(2, 4410);
      std::vector<float> hit(2, bad);
      EXPECT_EQ(direct->ProcessBuffer(hit.data(), 1, 0), S_OK);
      for (const float sample : Process(2, 500)) ASSERT_TRUE(std::isfinite(sample));
      for (int i = 0; i < 5; ++i) Process(2, 44100);
      EXPECT_NEAR(Process(2, 4410).back(), expected.back(), 1e-3);
    }
  }
}

// Rounding, exception masks and the treatment of denormal numbers belong to the caller.
TEST_F(DirectTest, LeavesTheFloatingPointEnvironmentAlone) {
  const unsigned before = _mm_getcsr();
  constexpr unsigned kControlBits = 0xFFC0;  // all but the exceptions that happened
  ASSERT_EQ(presets->ApplyPreset(5), S_OK);
  for (const int rounding : {FE_TONEAREST, FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
    for (const unsigned flush : {0x0000u, 0x8040u}) {
      SCOPED_TRACE(testing::Message() << rounding << ' ' << flush);
      std::fesetround(rounding);
      _mm_setcsr((_mm_getcsr() & ~0x8040u) | flush);
      const unsigned wanted = _mm_getcsr() & kControlBits;
      std::vector<float> buffer(2000, 1e-30f);
      WCHAR name[64];
      direct->BeginStream(2, 44100);
      direct->ProcessBuffer(buffer.data(), 1000, 0);
      direct->Refresh(1, 0, 0);
      control->SetThreshold(-20);
      presets->GetPresetName(1, name, 64);
      presets->ApplyPreset(3);
      direct->ProcessBuffer(buffer.data(), 1000, 1);
      direct->EndStream();
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
