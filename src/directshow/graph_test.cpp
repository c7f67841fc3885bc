// The base classes in the platform's own filter graph manager.
#include "directshow/test_filters.h"

namespace tervan::directshow::test {
namespace {

struct Graph {
  explicit Graph(const SourceOptions& source_options = {}, const SinkOptions& sink_options = {})
      : source(source_options), sink(sink_options) {
    EXPECT_EQ(CoCreateInstance(CLSID_FilterGraph, nullptr, CLSCTX_INPROC_SERVER, IID_IGraphBuilder, builder.PutVoid()),
              S_OK);
    EXPECT_EQ(builder->QueryInterface(IID_IMediaControl, control.PutVoid()), S_OK);
    EXPECT_EQ(builder->AddFilter(source.Get(), L"source"), S_OK);
    EXPECT_EQ(builder->AddFilter(filter.Get(), L"filter"), S_OK);
    EXPECT_EQ(builder->AddFilter(sink.Get(), L"sink"), S_OK);
    EXPECT_EQ(builder->ConnectDirect(&filter->Output(), &sink->pin, nullptr), S_OK);
    EXPECT_EQ(builder->ConnectDirect(&source->pin, &filter->Input(), nullptr), S_OK);
  }

  ComPtr<IGraphBuilder> builder;
  ComPtr<IMediaControl> control;
  Object<Source> source;
  Object<Inverter> filter;
  Object<Sink> sink;
};

using GraphTest = DirectShowTest;

TEST_F(GraphTest, RunsPausesSeeksAndStopsAgainAndAgain) {
  Graph graph;
  constexpr int kRounds = 100;
  for (int round = 0; round < kRounds; ++round) {
    SCOPED_TRACE(round);
    ASSERT_HRESULT_SUCCEEDED(round % 3 == 0 ? graph.control->Pause() : graph.control->Run());
    graph.source->pin.Seek(round);
    ASSERT_HRESULT_SUCCEEDED(round % 2 == 0 ? graph.control->Run() : graph.control->Pause());
    EXPECT_TRUE(round % 5 != 0 || graph.sink->pin.ended.Wait());
    ASSERT_HRESULT_SUCCEEDED(graph.control->Stop());
    graph.sink->pin.ended.Reset();
  }
  EXPECT_EQ(graph.filter->starts, kRounds);
  EXPECT_EQ(graph.filter->stops, kRounds);
  EXPECT_EQ(graph.sink->pin.end_flushes, kRounds);
}

TEST_F(GraphTest, AnOutputConnectedFirstWithAnotherTypeIsConnectedAgain) {
  Graph graph({.rates_hz = {48000}}, {.rates_hz = {44100, 48000}});
  for (BasePin* const pin : std::initializer_list<BasePin*>{&graph.filter->Input(), &graph.filter->Output()}) {
    MediaType type;
    ASSERT_EQ(pin->GetConnectionType(&type), S_OK);
    EXPECT_EQ(RateOf(type), 48000u);
  }
  ASSERT_HRESULT_SUCCEEDED(graph.control->Run());
  ASSERT_TRUE(graph.sink->pin.ended.Wait());
  ASSERT_HRESULT_SUCCEEDED(graph.control->Stop());
  EXPECT_EQ(graph.sink->pin.received.size(), 5u);
}

TEST_F(GraphTest, WithoutAGraphDifferingTypesRefuseTheConnection) {
  const Object<Source> source(SourceOptions{.rates_hz = {48000}});
  const Object<Inverter> filter;
  const Object<Sink> sink;
  ASSERT_EQ(filter->Output().Connect(&sink->pin, nullptr), S_OK);
  EXPECT_EQ(source->pin.Connect(&filter->Input(), nullptr), VFW_E_NOT_IN_GRAPH);
  EXPECT_FALSE(source->pin.IsConnected());
  EXPECT_FALSE(filter->Input().IsConnected());
  EXPECT_EQ(filter->Output().Disconnect(), S_OK);
  EXPECT_EQ(sink->pin.Disconnect(), S_OK);
}

}  // namespace
}  // namespace tervan::directshow::test
