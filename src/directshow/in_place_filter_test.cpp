#include "directshow/in_place_filter.h"

#include "directshow/test_filters.h"

namespace tervan::directshow::test {
namespace {

// Source, inverter and sink, connected pin by pin without a graph.
struct Chain {
  explicit Chain(const SourceOptions& source_options = {}, const SinkOptions& sink_options = {},
                 bool output_first = false)
      : source(source_options), sink(sink_options) {
    if (output_first) ConnectOutput();
    EXPECT_EQ(source->pin.Connect(&filter->Input(), nullptr), S_OK);
    if (!output_first) ConnectOutput();
  }
  ~Chain() {
    sink->pin.release.Set();
    Stop();
    for (IPin* const pin :
         std::initializer_list<IPin*>{&source->pin, &filter->Input(), &filter->Output(), &sink->pin}) {
      pin->Disconnect();
    }
  }
  void ConnectOutput() { EXPECT_EQ(filter->Output().Connect(&sink->pin, nullptr), S_OK); }
  void Pause() {
    EXPECT_EQ(sink->Pause(), S_OK);
    EXPECT_EQ(filter->Pause(), S_OK);
    EXPECT_EQ(source->Pause(), S_OK);
  }
  void Stop() {
    EXPECT_EQ(sink->Stop(), S_OK);
    EXPECT_EQ(filter->Stop(), S_OK);
    EXPECT_EQ(source->Stop(), S_OK);
  }
  void StreamToTheEnd() {
    Pause();
    EXPECT_TRUE(source->pin.done.Wait());
  }

  Object<Source> source;
  Object<Inverter> filter;
  Object<Sink> sink;
};

void ExpectInvertedStream(const std::vector<Received>& received, const SourceOptions& options) {
  ASSERT_EQ(received.size(), static_cast<size_t>(options.samples));
  for (int n = 0; n < options.samples; ++n) {
    SCOPED_TRACE(n);
    const Received& sample = received[n];
    ASSERT_EQ(sample.bytes.size(), static_cast<size_t>(options.bytes));
    for (long i = 0; i < options.bytes; ++i) ASSERT_EQ(sample.bytes[i], SourceByte(n, i) ^ 0xFF) << i;
    EXPECT_EQ(sample.start, n * 100);
    EXPECT_EQ(sample.stop, n * 100 + 100);
    EXPECT_EQ(sample.media_start, n * 16);
    EXPECT_EQ(sample.media_stop, n * 16 + 16);
    EXPECT_EQ(sample.is_discontinuity, n == 0);
    EXPECT_EQ(sample.is_sync_point, n % 2 == 0);
    EXPECT_EQ(sample.is_preroll, n == 1);
  }
}

using InPlaceFilterTest = DirectShowTest;

TEST_F(InPlaceFilterTest, SamplesArriveWholeWhateverTheAllocatorsAndTheOrderOfConnecting) {
  for (const bool output_first : {false, true}) {
    for (const bool own_allocator : {false, true}) {
      for (const bool read_only : {false, true}) {
        for (const bool only_own_at_sink : {false, true}) {
          if (read_only && !own_allocator && only_own_at_sink && output_first) continue;  // no second allocator
          SCOPED_TRACE(testing::Message()
                       << "output first " << output_first << ", upstream's allocator " << own_allocator
                       << ", read-only " << read_only << ", picky sink " << only_own_at_sink);
          const SourceOptions options{.own_allocator = own_allocator, .read_only = read_only};
          Chain chain(options, {.only_own_allocator = only_own_at_sink}, output_first);
          const bool can_share = !read_only && (!only_own_at_sink || (output_first && !own_allocator));
          EXPECT_EQ(chain.source->pin.Allocator() == chain.filter->Output().Allocator(), can_share);
          ALLOCATOR_PROPERTIES properties{};
          chain.filter->Output().Allocator()->GetProperties(&properties);
          EXPECT_EQ(properties.cBuffers, 3);
          EXPECT_EQ(properties.cbBuffer, options.bytes);
          for (int pass = 0; pass < 2; ++pass) {  // the second start finds everything as the first did
            chain.sink->pin.received.clear();
            chain.source->pin.done.Reset();
            chain.StreamToTheEnd();
            chain.Stop();
            ExpectInvertedStream(chain.sink->pin.received, options);
            EXPECT_EQ(chain.sink->pin.ends_of_stream, pass + 1);
            EXPECT_EQ(chain.filter->starts, pass + 1);
            EXPECT_EQ(chain.filter->stops, pass + 1);
          }
          EXPECT_FALSE(chain.source->pin.was_overwritten);
        }
      }
    }
  }
}

TEST_F(InPlaceFilterTest, TypesAreThoseOfTheFilterAcross) {
  const Object<Source> source(SourceOptions{.rates_hz = {44100}});
  const Object<Inverter> filter;
  const Object<Sink> sink;
  ASSERT_EQ(source->pin.Connect(&filter->Input(), nullptr), S_OK);
  ComPtr<IEnumMediaTypes> types;
  ASSERT_EQ(filter->Output().EnumMediaTypes(types.Put()), S_OK);
  AM_MEDIA_TYPE* offered[2] = {};
  ULONG fetched = 0;
  EXPECT_EQ(types->Next(2, offered, &fetched), S_FALSE);
  ASSERT_EQ(fetched, 1u);
  MediaType type;
  type.Adopt(offered[0]);
  EXPECT_EQ(RateOf(type), 44100u);
  EXPECT_EQ(filter->Output().QueryAccept(&AudioType(48000).Get()), S_FALSE) << "upstream cannot deliver it";
  EXPECT_EQ(filter->Output().Connect(&sink->pin, &AudioType(48000).Get()), VFW_E_TYPE_NOT_ACCEPTED);
  EXPECT_EQ(source->pin.Disconnect(), S_OK);
  EXPECT_EQ(filter->Input().Disconnect(), S_OK);
}

TEST_F(InPlaceFilterTest, AFormatChangeInTheStreamIsFollowedOrEndsIt) {
  struct Case {
    const char* what;
    bool own_allocator;
    DWORD new_rate_hz;
    std::vector<DWORD> sink_rates_hz;
    bool is_followed;
  };
  const Case cases[] = {{"accepted by all", false, 48000, {44100, 48000}, true},
                        {"accepted by all, copied", true, 48000, {44100, 48000}, true},
                        {"refused by the filter", false, 8000, {44100, 8000}, false},
                        {"refused by the sink", false, 48000, {44100}, false}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Chain chain({.own_allocator = c.own_allocator,
                 .read_only = c.own_allocator,
                 .change_type_at = 2,
                 .new_rate_hz = c.new_rate_hz},
                {.rates_hz = c.sink_rates_hz});
    chain.filter->types_set.clear();
    chain.StreamToTheEnd();
    MediaType input_type;
    MediaType output_type;
    ASSERT_EQ(chain.filter->Input().GetConnectionType(&input_type), S_OK);
    ASSERT_EQ(chain.filter->Output().GetConnectionType(&output_type), S_OK);
    const DWORD expected_hz = c.is_followed ? c.new_rate_hz : 44100;
    EXPECT_EQ(RateOf(input_type), expected_hz);
    EXPECT_EQ(RateOf(output_type), expected_hz);
    using Set = std::pair<PIN_DIRECTION, DWORD>;
    if (c.is_followed) {
      EXPECT_EQ(chain.filter->types_set, (std::vector<Set>{{PINDIR_INPUT, 48000}, {PINDIR_OUTPUT, 48000}}));
      ASSERT_EQ(chain.sink->pin.received.size(), 5u);
      EXPECT_EQ(chain.sink->pin.received[1].attached_rate_hz, 0u);
      EXPECT_EQ(chain.sink->pin.received[2].attached_rate_hz, 48000u);
      EXPECT_EQ(chain.sink->pin.received[3].attached_rate_hz, 0u);
    } else {
      EXPECT_TRUE(chain.filter->types_set.empty());
      EXPECT_EQ(chain.source->pin.last_delivery, VFW_E_INVALIDMEDIATYPE);
      EXPECT_EQ(chain.sink->pin.received.size(), 2u);
      EXPECT_EQ(chain.filter->Input().EndOfStream(), VFW_E_RUNTIME_ERROR);
      chain.filter->Input().BeginFlush();
      EXPECT_EQ(chain.filter->Input().EndOfStream(), S_FALSE);
      chain.filter->Input().EndFlush();
      EXPECT_EQ(chain.filter->Input().EndOfStream(), S_OK) << "a flush ends the error";
    }
  }
}

TEST_F(InPlaceFilterTest, UpstreamHearsHowEachSampleFared) {
  struct Case {
    const char* what;
    HRESULT transform, sink, upstream;
  };
  const Case cases[] = {{"dropped", S_FALSE, S_OK, S_OK},
                        {"failed", E_POINTER, S_OK, E_POINTER},
                        {"refused downstream", S_OK, VFW_E_RUNTIME_ERROR, VFW_E_RUNTIME_ERROR},
                        {"downstream wants no more", S_OK, S_FALSE, S_FALSE}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Chain chain({}, {.answer = c.sink});
    chain.filter->transform_result = c.transform;
    chain.StreamToTheEnd();
    EXPECT_EQ(chain.source->pin.last_delivery, c.upstream);
    EXPECT_TRUE(chain.sink->pin.received.empty());
  }
}

TEST_F(InPlaceFilterTest, AStoppedOrFlushingInputTakesNothing) {
  Chain chain;
  ComPtr<IMemAllocator> allocator;
  ComPtr<IMediaSample> sample;
  ASSERT_EQ(CreateMemoryAllocator(&allocator), S_OK);
  ASSERT_EQ(SetAllocatorProperties(*allocator, {}), S_OK);
  ASSERT_EQ(allocator->Commit(), S_OK);
  ASSERT_EQ(allocator->GetBuffer(sample.Put(), nullptr, nullptr, 0), S_OK);
  IMemInputPin& input = chain.filter->Input();
  EXPECT_EQ(input.Receive(sample.Get()), VFW_E_WRONG_STATE);
  EXPECT_EQ(chain.filter->Input().EndOfStream(), VFW_E_WRONG_STATE);
  EXPECT_EQ(input.ReceiveCanBlock(), S_OK);
  ASSERT_EQ(chain.sink->Pause(), S_OK);
  ASSERT_EQ(chain.filter->Pause(), S_OK);
  EXPECT_EQ(input.NotifyAllocator(allocator.Get(), FALSE), VFW_E_NOT_STOPPED);
  EXPECT_EQ(chain.filter->Input().BeginFlush(), S_OK);
  long processed = 9;
  IMediaSample* samples[] = {sample.Get(), sample.Get()};
  EXPECT_EQ(input.Receive(sample.Get()), S_FALSE);
  EXPECT_EQ(input.ReceiveMultiple(samples, 2, &processed), S_FALSE);
  EXPECT_EQ(processed, 0);
  EXPECT_EQ(chain.filter->Input().EndFlush(), S_OK);
  EXPECT_EQ(input.ReceiveMultiple(samples, 2, &processed), S_OK);
  EXPECT_EQ(processed, 2);
  EXPECT_EQ(chain.sink->pin.begin_flushes, 1);
  EXPECT_EQ(chain.sink->pin.end_flushes, 1);
  sample.Reset();
  allocator->Decommit();
}

TEST_F(InPlaceFilterTest, AFailedStartLeavesTheFilterStopped) {
  Chain chain;
  chain.filter->start_result = E_OUTOFMEMORY;
  EXPECT_EQ(chain.filter->Run(0), E_OUTOFMEMORY);
  EXPECT_TRUE(chain.filter->IsStopped());
  EXPECT_EQ(chain.filter->Stop(), S_OK);
  EXPECT_EQ(chain.filter->stops, 0) << "what did not start is not stopped";

  chain.filter->start_result = S_OK;
  EXPECT_EQ(chain.filter->Pause(), S_OK);
  EXPECT_EQ(chain.filter->Stop(), S_OK);
  chain.filter->Output().Disconnect();
  EXPECT_EQ(chain.filter->Pause(), S_OK);
  EXPECT_EQ(chain.filter->Stop(), S_OK);
  EXPECT_EQ(chain.filter->stops, 1) << "without an output nothing started the second time";
}

TEST_F(InPlaceFilterTest, WithNothingUpstreamDownstreamGetsOneEndOfStreamPerStart) {
  const Object<Inverter> filter;
  const Object<Sink> sink;
  ASSERT_EQ(filter->Output().Connect(&sink->pin, nullptr), S_OK);
  for (int pass = 1; pass <= 2; ++pass) {
    ASSERT_EQ(sink->Pause(), S_OK);
    ASSERT_EQ(filter->Run(0), S_OK);
    ASSERT_EQ(filter->Pause(), S_OK);
    EXPECT_EQ(sink->pin.ends_of_stream, pass);
    ASSERT_EQ(sink->Stop(), S_OK);
    ASSERT_EQ(filter->Stop(), S_OK);
  }
  EXPECT_EQ(filter->starts, 0);
  EXPECT_EQ(filter->Output().Disconnect(), S_OK);
  EXPECT_EQ(sink->pin.Disconnect(), S_OK);
}

TEST_F(InPlaceFilterTest, ABlockedSinkHoldsUpNeitherQueriesNorFlushesNorStop) {
  for (const bool copies : {false, true}) {
    SCOPED_TRACE(copies);
    Chain chain({.own_allocator = copies, .read_only = copies}, {.blocks = true});
    chain.Pause();
    ASSERT_TRUE(chain.sink->pin.entered.Wait());
    {
      // Stop waits for the blocked sample; meanwhile a peer may ask anything.
      const Background stop([&] { EXPECT_EQ(chain.filter->Stop(), S_OK); });
      {
        const Background queries([&] {
          ComPtr<IPin> peer;
          PIN_INFO info{};
          FILTER_STATE state;
          EXPECT_EQ(chain.filter->Output().QueryAccept(&AudioType(44100).Get()), S_OK);
          EXPECT_EQ(chain.filter->Output().ConnectedTo(peer.Put()), S_OK);
          EXPECT_EQ(chain.filter->Input().QueryPinInfo(&info), S_OK);
          info.pFilter->Release();
          EXPECT_EQ(chain.filter->GetState(0, &state), S_OK);
          EXPECT_EQ(chain.filter->Output().Notify(chain.sink.Get(), {}), S_OK);
          EXPECT_TRUE(Query<IMediaSeeking>(static_cast<IPin*>(&chain.filter->Output())));
        });
      }
      chain.sink->pin.release.Set();
    }
    EXPECT_TRUE(chain.filter->IsStopped());
  }
}

TEST_F(InPlaceFilterTest, StopFreesAThreadThatWaitsForABufferInTheFilterOrUpstream) {
  for (const bool copies : {false, true}) {
    SCOPED_TRACE(copies);
    Chain chain({.own_allocator = copies, .read_only = copies}, {.keeps_samples = 3});
    chain.Pause();
    ASSERT_TRUE(chain.sink->pin.entered.Wait());
    {
      const Background stop([&] { EXPECT_EQ(chain.filter->Stop(), S_OK); });
    }
    EXPECT_TRUE(chain.source->pin.done.Wait()) << "before source and sink are stopped";
    EXPECT_NE(chain.source->pin.last_delivery, S_OK);
  }
}

TEST_F(InPlaceFilterTest, AFlushReachesABlockedSinkAndTheStreamGoesOnAfterIt) {
  Chain chain({}, {.blocks = true});
  chain.Pause();
  ASSERT_TRUE(chain.sink->pin.entered.Wait());
  {
    const Background seek([&] { chain.source->pin.Seek(5000); });
  }
  EXPECT_EQ(chain.sink->pin.begin_flushes, 1);
  ASSERT_TRUE(chain.sink->pin.ended.Wait());
  EXPECT_EQ(chain.sink->pin.segments, (std::vector<REFERENCE_TIME>{0, 5000}));
  ExpectInvertedStream(chain.sink->pin.received, {});
}

TEST_F(InPlaceFilterTest, SeekingIsPartOfTheOutputAndKeepsNothingAlive) {
  Chain chain;
  const auto references = [&] { return chain.filter->AddRef(), chain.filter->Release(); };
  const ULONG before = references();
  {
    IPin* const output = &chain.filter->Output();
    const ComPtr<IMediaSeeking> seeking = Query<IMediaSeeking>(output);
    ComPtr<IMediaPosition> position;
    ASSERT_TRUE(seeking);
    ASSERT_EQ(output->QueryInterface(IID_IMediaPosition, position.PutVoid()), S_OK);
    EXPECT_EQ(Query<IPin>(seeking.Get()).Get(), output) << "aggregated: the pin's identity";
    EXPECT_EQ(Query<IPin>(position.Get()).Get(), output);
  }
  EXPECT_EQ(references(), before);
  EXPECT_FALSE(Query<IMediaSeeking>(static_cast<IPin*>(&chain.filter->Input())));
}

TEST_F(InPlaceFilterTest, QualityMessagesGoToTheSinkOrUpstream) {
  Chain chain;
  const Object<Source> manager;
  const Quality quality = {.Type = Flood, .Proportion = 777, .Late = 0, .TimeStamp = 0};
  IQualityControl& output = chain.filter->Output();
  EXPECT_EQ(output.Notify(nullptr, quality), E_POINTER);
  EXPECT_EQ(output.Notify(chain.sink.Get(), quality), S_OK);
  EXPECT_EQ(chain.source->pin.quality_proportion, 777);
  EXPECT_EQ(chain.source->pin.quality_sender, static_cast<IBaseFilter*>(chain.filter.Get()));
  EXPECT_EQ(output.SetSink(&manager->pin), S_OK);
  EXPECT_EQ(output.Notify(chain.sink.Get(), {Flood, 555, 0, 0}), S_OK);
  EXPECT_EQ(manager->pin.quality_proportion, 555);
  EXPECT_EQ(chain.source->pin.quality_proportion, 777);
  output.SetSink(nullptr);
  const Object<Inverter> alone;
  EXPECT_EQ(alone->Output().Notify(chain.sink.Get(), quality), VFW_E_NOT_FOUND);
}

}  // namespace
}  // namespace tervan::directshow::test
