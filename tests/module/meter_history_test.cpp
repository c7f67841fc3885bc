// Meters against the graph's reference clock.
#include "effects/compressor/compressor_meters.h"
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

double InputLevel(const Filter& compressor) {
  CompressorMeters meters{};
  EXPECT_EQ(compressor.Slot(54, &meters), S_OK);
  return meters.input_left;
}

// Each record carries the stream time at the end of its sample; between two the values are interpolated.
TEST_F(MeterHistoryTest, TheRecordOfTheClocksTimeIsReadAndWithoutAClockTheLatest) {
  constexpr REFERENCE_TIME kSample = 100000;  // 10 ms, as long as each sample lasts
  Clock clock;
  EffectGraph graph(Effects()[kCompressor], {WAVE_FORMAT_PCM, 1, 44100, 16});
  ASSERT_NO_FATAL_FAILURE(graph.Connect());
  ASSERT_EQ(Query<IMediaFilter>(graph.builder.Get())->SetSyncSource(&clock), S_OK);
  ASSERT_HRESULT_SUCCEEDED(graph.media->Pause());
  for (const INT16 level : {4096, 8192, 16384}) {
    ASSERT_EQ(graph.source->pin.Send({.bytes = Repeat(level, 441)}), S_OK);
  }
  const struct {
    REFERENCE_TIME now;
    double level;
  } rows[] = {{0, 0},                // no time yet
              {kSample / 2, 0.125},  // before the first record
              {3 * kSample / 2, 0.1875},
              {2 * kSample, 0.25},
              {10 * kSample, 0.5}};
  for (const auto& row : rows) {
    clock.now = row.now;
    EXPECT_DOUBLE_EQ(InputLevel(graph.filter), row.level) << row.now;
  }
  clock.now = kSample;
  ASSERT_EQ(graph.base->SetSyncSource(nullptr), S_OK);
  EXPECT_DOUBLE_EQ(InputLevel(graph.filter), 0.5);
  graph.media->Stop();
  EXPECT_EQ(InputLevel(graph.filter), 0.0) << "stopping resets the meters";
}

// Automation cuts each sample into chunks, which publish a record each, all with the end of the sample as their time.
TEST_F(MeterHistoryTest, TheClocksRecordIsFoundAmidTheChunksOfAutomation) {
  constexpr REFERENCE_TIME kSample = 1000000;  // 100 ms, chunks of 20 ms
  Clock clock;
  EffectGraph graph(Effects()[kCompressor], {WAVE_FORMAT_PCM, 1, 44100, 16});
  const REFERENCE_TIME end = 100 * kSample;
  MP_ENVELOPE_SEGMENT release{0, end, 100, 200, MP_CURVE_LINEAR, 0};
  ASSERT_EQ(graph.filter.values->AddEnvelope(5, 1, &release), S_OK);
  ASSERT_NO_FATAL_FAILURE(graph.Connect());
  ASSERT_EQ(Query<IMediaFilter>(graph.builder.Get())->SetSyncSource(&clock), S_OK);
  ASSERT_HRESULT_SUCCEEDED(graph.media->Pause());
  for (const INT16 peak : {4096, 8192, 16384}) {
    std::vector<INT16> words(4410, 1024);
    words[2000] = peak;  // in the third chunk
    ASSERT_EQ(graph.source->pin.Send({.bytes = BytesOf(words)}), S_OK);
  }
  const struct {
    REFERENCE_TIME now;
    double level;
  } rows[] = {{kSample, 0.125}, {3 * kSample / 2, 0.1875}, {2 * kSample, 0.25}, {10 * kSample, 0.5}};
  for (const auto& row : rows) {
    clock.now = row.now;
    EXPECT_DOUBLE_EQ(InputLevel(graph.filter), row.level) << row.now;
  }
  ASSERT_EQ(graph.base->SetSyncSource(nullptr), S_OK);
  EXPECT_DOUBLE_EQ(InputLevel(graph.filter), 1024 / 32768.0) << "the latest chunk";
}

}  // namespace
}  // namespace tervan::test
