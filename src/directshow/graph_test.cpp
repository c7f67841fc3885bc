// The base classes in the platform's own filter graph manager.
#include <algorithm>
#include <array>

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
  }
  HRESULT ConnectInput() { return builder->ConnectDirect(&source->pin, &filter->Input(), nullptr); }
  HRESULT ConnectOutput() { return builder->ConnectDirect(&filter->Output(), &sink->pin, nullptr); }
  void Connect(bool output_first) {
    EXPECT_EQ(output_first ? ConnectOutput() : ConnectInput(), S_OK);
    EXPECT_EQ(output_first ? ConnectInput() : ConnectOutput(), S_OK);
  }
  void ReleaseGraph() {
    control.Reset();
    builder.Reset();
  }

  ComPtr<IGraphBuilder> builder;
  ComPtr<IMediaControl> control;
  Object<Source> source;
  Object<Inverter> filter;
  Object<Sink> sink;
};

using GraphTest = DirectShowTest;

// Every order of connecting, last state and order of tearing down, many times over.
TEST_F(GraphTest, LeavesNothingBehindWhateverTheOrderOfTearingDown) {
  int rounds = 0;
  for (const bool output_first : {false, true}) {
    for (const bool read_only : {false, true}) {
      for (const FILTER_STATE state : {State_Stopped, State_Paused, State_Running}) {
        std::array<std::size_t, 4> steps = {0, 1, 2, 3};  // filters to remove; the last one is the graph itself
        do {
          SCOPED_TRACE(testing::Message() << "round " << rounds++);
          Graph graph({.own_allocator = read_only, .read_only = read_only}, {.blocks = rounds % 2 == 0});
          graph.Connect(output_first);
          EXPECT_HRESULT_SUCCEEDED(state == State_Running ? graph.control->Run() : S_OK);
          EXPECT_HRESULT_SUCCEEDED(state == State_Paused ? graph.control->Pause() : S_OK);
          IBaseFilter* const filters[] = {graph.source.Get(), graph.filter.Get(), graph.sink.Get()};
          // A graph that goes first has to stop its filters itself.
          EXPECT_HRESULT_SUCCEEDED(steps[0] == 3 ? S_OK : graph.control->Stop());
          for (std::size_t i = 0; steps[i] != 3; ++i) EXPECT_EQ(graph.builder->RemoveFilter(filters[steps[i]]), S_OK);
          graph.ReleaseGraph();
          EXPECT_FALSE(graph.filter->Input().IsConnected());
          EXPECT_FALSE(graph.filter->Output().IsConnected());
          EXPECT_TRUE(graph.filter->IsStopped());
        } while (std::next_permutation(steps.begin(), steps.end()));
      }
    }
  }
}

TEST_F(GraphTest, RunsPausesSeeksAndStopsAgainAndAgain) {
  Graph graph;
  graph.Connect(true);
  const ComPtr<IMediaSeeking> seeking = Query<IMediaSeeking>(static_cast<IPin*>(&graph.filter->Output()));
  ASSERT_TRUE(seeking);
  constexpr int kRounds = 100;
  for (int round = 0; round < kRounds; ++round) {
    SCOPED_TRACE(round);
    ASSERT_HRESULT_SUCCEEDED(round % 3 == 0 ? graph.control->Pause() : graph.control->Run());
    LONGLONG position = round;
    ASSERT_EQ(seeking->SetPositions(&position, AM_SEEKING_AbsolutePositioning, nullptr, 0), S_OK);
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
  graph.Connect(true);
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
