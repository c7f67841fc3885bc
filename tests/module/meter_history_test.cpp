// Meters against the graph's reference clock.
#include "module/graph_fakes.h"

namespace tervan::test {
namespace {

// Stands still at the time that the test sets.
class Clock final : public CountedFake<IReferenceClock> {
 public:
  STDMETHODIMP GetTime(REFERENCE_TIME* time) override { return *time = now, S_OK; }
  STDMETHODIMP AdviseTime(REFERENCE_TIME, REFERENCE_TIME, HEVENT, DWORD_PTR*) override { return E_NOTIMPL; }
  STDMETHODIMP AdvisePeriodic(REFERENCE_TIME, REFERENCE_TIME, HSEMAPHORE, DWORD_PTR*) override { return E_NOTIMPL; }
  STDMETHODIMP Unadvise(DWORD_PTR) override { return E_NOTIMPL; }
  std::atomic<REFERENCE_TIME> now = 0;
};

using MeterHistoryTest = ModuleTest;

constexpr REFERENCE_TIME kSample = 100000;  // 10 ms, as long as each sample lasts

Bytes Sound(INT16 level) {
  Bytes bytes(441 * 2);
  for (std::size_t i = 0; i < bytes.size(); i += 2) std::memcpy(&bytes[i], &level, 2);
  return bytes;
}

double InputLevel(ICompressorSettings& control) {
  CompressorMeters meters{};
  EXPECT_EQ(control.GetMeters(&meters), S_OK);
  return meters.input_left;
}

TEST_F(MeterHistoryTest, KeepsACountedReferenceToTheClock) {
  Clock first, second;
  const auto filter = NewCompressor<IBaseFilter>();
  EXPECT_EQ(filter->SetSyncSource(&first), S_OK);
  EXPECT_GT(first.references, 0);
  EXPECT_EQ(filter->SetSyncSource(&second), S_OK);
  EXPECT_EQ(first.references, 0);
  ComPtr<IReferenceClock> read;
  EXPECT_EQ(filter->GetSyncSource(read.Put()), S_OK);
  EXPECT_EQ(read.Get(), &second);
  read.Reset();
  EXPECT_EQ(filter->SetSyncSource(nullptr), S_OK);
  EXPECT_EQ(second.references, 0);
  EXPECT_EQ(filter->SetSyncSource(&first), S_OK);  // and is released with the filter
}

TEST_F(MeterHistoryTest, WithoutAClockTheLatestRecordIsRead) {
  CompressorGraph graph({WAVE_FORMAT_PCM, 1, 44100, 16});
  ASSERT_NO_FATAL_FAILURE(graph.Connect());
  ASSERT_EQ(graph.compressor->SetSyncSource(nullptr), S_OK);
  ASSERT_HRESULT_SUCCEEDED(graph.media->Pause());
  ASSERT_EQ(graph.compressor->SetSyncSource(nullptr), S_OK);
  graph.source->pin.Send({.bytes = Sound(8192)});
  graph.source->pin.Send({.bytes = Sound(16384)});
  EXPECT_DOUBLE_EQ(InputLevel(*graph.control), 0.5);
  graph.media->Stop();
  EXPECT_EQ(InputLevel(*graph.control), 0.0) << "stopping resets the meters";
}

// Each record carries the stream time at the end of its sample; between two the values are interpolated.
TEST_F(MeterHistoryTest, TheRecordOfTheClocksTimeIsRead) {
  Clock clock;
  {
    CompressorGraph graph({WAVE_FORMAT_PCM, 1, 44100, 16});
    ASSERT_NO_FATAL_FAILURE(graph.Connect());
    ASSERT_EQ(Query<IMediaFilter>(graph.builder.Get())->SetSyncSource(&clock), S_OK);
    ASSERT_HRESULT_SUCCEEDED(graph.media->Pause());
    for (const INT16 level : {4096, 8192, 16384}) ASSERT_EQ(graph.source->pin.Send({.bytes = Sound(level)}), S_OK);
    const struct {
      REFERENCE_TIME now;
      double level;
    } rows[] = {{0, 0},                // no time yet
                {kSample / 2, 0.125},  // before the first record
                {kSample, 0.125},
                {3 * kSample / 2, 0.1875},
                {2 * kSample, 0.25},
                {5 * kSample / 2, 0.375},
                {3 * kSample, 0.5},
                {10 * kSample, 0.5}};
    for (const auto& row : rows) {
      clock.now = row.now;
      EXPECT_DOUBLE_EQ(InputLevel(*graph.control), row.level) << row.now;
    }
    graph.media->Stop();
    EXPECT_EQ(InputLevel(*graph.control), 0.0);
  }
}

TEST_F(MeterHistoryTest, OnlyTheLastSixtyThreeRecordsAreKept) {
  Clock clock;
  CompressorGraph graph({WAVE_FORMAT_PCM, 1, 44100, 16});
  ASSERT_NO_FATAL_FAILURE(graph.Connect());
  ASSERT_EQ(Query<IMediaFilter>(graph.builder.Get())->SetSyncSource(&clock), S_OK);
  ASSERT_HRESULT_SUCCEEDED(graph.media->Pause());
  for (INT16 n = 1; n <= 100; ++n)
    ASSERT_EQ(graph.source->pin.Send({.bytes = Sound(static_cast<INT16>(n * 256))}), S_OK);
  clock.now = 1;
  EXPECT_DOUBLE_EQ(InputLevel(*graph.control), 38 * 256 / 32768.0);
  clock.now = 100 * kSample;
  EXPECT_DOUBLE_EQ(InputLevel(*graph.control), 100 * 256 / 32768.0);
}

}  // namespace
}  // namespace tervan::test
