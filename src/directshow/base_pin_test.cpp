#include "directshow/base_pin.h"

#include <cstring>

#include "directshow/test_filters.h"

namespace tervan::directshow::test {
namespace {

using BasePinTest = DirectShowTest;

TEST_F(BasePinTest, NullPointersAreRefused) {
  const Object<Inverter> filter;
  IPin* const pins[] = {&filter->Input(), &filter->Output()};
  for (IPin* const pin : pins) {
    EXPECT_EQ(pin->Connect(nullptr, nullptr), E_POINTER);
    EXPECT_EQ(pin->ReceiveConnection(nullptr, nullptr), E_POINTER);
    EXPECT_EQ(pin->ReceiveConnection(pin, nullptr), E_POINTER);
    EXPECT_EQ(pin->ConnectedTo(nullptr), E_POINTER);
    EXPECT_EQ(pin->ConnectionMediaType(nullptr), E_POINTER);
    EXPECT_EQ(pin->QueryPinInfo(nullptr), E_POINTER);
    EXPECT_EQ(pin->QueryDirection(nullptr), E_POINTER);
    EXPECT_EQ(pin->QueryId(nullptr), E_POINTER);
    EXPECT_EQ(pin->QueryAccept(nullptr), E_POINTER);
    EXPECT_EQ(pin->EnumMediaTypes(nullptr), E_POINTER);
    EXPECT_EQ(pin->QueryInterface(IID_IPin, nullptr), E_POINTER);
  }
  long processed = 0;
  IMediaSample* sample = nullptr;
  EXPECT_EQ(filter->Input().Receive(nullptr), E_POINTER);
  EXPECT_EQ(filter->Input().ReceiveMultiple(nullptr, 1, &processed), E_POINTER);
  EXPECT_EQ(filter->Input().ReceiveMultiple(&sample, 1, nullptr), E_POINTER);
  EXPECT_EQ(filter->Input().GetAllocator(nullptr), E_POINTER);
  EXPECT_EQ(filter->Input().NotifyAllocator(nullptr, FALSE), E_POINTER);
  EXPECT_EQ(filter->Input().GetAllocatorRequirements(nullptr), E_POINTER);
  EXPECT_EQ(filter->GetClassID(nullptr), E_POINTER);
  EXPECT_EQ(filter->GetState(0, nullptr), E_POINTER);
  EXPECT_EQ(filter->GetSyncSource(nullptr), E_POINTER);
  EXPECT_EQ(filter->QueryFilterInfo(nullptr), E_POINTER);
  EXPECT_EQ(filter->FindPin(L"Input", nullptr), E_POINTER);
  EXPECT_EQ(filter->QueryVendorInfo(nullptr), E_POINTER);
}

TEST_F(BasePinTest, DescribesItself) {
  struct Row {
    const wchar_t* name;
    const wchar_t* id;
    PIN_DIRECTION direction;
  };
  const Object<Inverter> filter;
  for (const Row& row : {Row{L"Input", L"In", PINDIR_INPUT}, Row{L"Output", L"Out", PINDIR_OUTPUT}}) {
    ComPtr<IPin> pin;
    ComPtr<IPin> by_name;
    ASSERT_EQ(filter->FindPin(row.id, pin.Put()), S_OK);
    ASSERT_EQ(filter->FindPin(row.name, by_name.Put()), S_OK);
    EXPECT_EQ(pin.Get(), by_name.Get());
    PIN_INFO info{};
    ASSERT_EQ(pin->QueryPinInfo(&info), S_OK);
    const ComPtr<IBaseFilter> owner = ComPtr<IBaseFilter>::Adopt(info.pFilter);
    EXPECT_EQ(owner.Get(), static_cast<IBaseFilter*>(filter.Get()));
    EXPECT_STREQ(info.achName, row.name);
    EXPECT_EQ(info.dir, row.direction);
    LPWSTR id = nullptr;
    ASSERT_EQ(pin->QueryId(&id), S_OK);
    const CoTaskMemPtr<wchar_t> id_owner(id);
    EXPECT_STREQ(id, row.id);
  }
  IPin* poisoned = &filter->Input();
  EXPECT_EQ(filter->FindPin(L"Inputs", &poisoned), VFW_E_NOT_FOUND);
  EXPECT_EQ(poisoned, nullptr);
}

TEST_F(BasePinTest, AnswersForAMissingConnection) {
  const Object<Inverter> filter;
  IPin* const pins[] = {&filter->Input(), &filter->Output()};
  for (IPin* const pin : pins) {
    IPin* peer = pin;
    IEnumMediaTypes* types = reinterpret_cast<IEnumMediaTypes*>(pin);
    AM_MEDIA_TYPE type;
    std::memset(&type, 0xCC, sizeof type);
    EXPECT_EQ(pin->ConnectedTo(&peer), VFW_E_NOT_CONNECTED);
    EXPECT_EQ(peer, nullptr);
    EXPECT_EQ(pin->ConnectionMediaType(&type), VFW_E_NOT_CONNECTED);
    const AM_MEDIA_TYPE zero{};
    EXPECT_EQ(std::memcmp(&type, &zero, sizeof type), 0);
    EXPECT_EQ(pin->Disconnect(), S_FALSE);
    EXPECT_EQ(pin->EnumMediaTypes(&types), VFW_E_NOT_CONNECTED);
    EXPECT_EQ(types, nullptr);
    EXPECT_EQ(pin->QueryAccept(&AudioType(44100).Get()), S_OK);
    EXPECT_EQ(pin->QueryAccept(&AudioType(8000).Get()), S_FALSE);
  }
  EXPECT_EQ(filter->Input().BeginFlush(), VFW_E_NOT_CONNECTED);
  EXPECT_EQ(filter->Input().EndFlush(), VFW_E_NOT_CONNECTED);
  EXPECT_EQ(filter->Input().NewSegment(0, 1, 1.0), VFW_E_NOT_CONNECTED);
  EXPECT_EQ(filter->Input().EndOfStream(), VFW_E_NOT_CONNECTED);
  EXPECT_EQ(filter->Output().EndOfStream(), E_UNEXPECTED);
  EXPECT_EQ(filter->Output().BeginFlush(), E_UNEXPECTED);
  EXPECT_EQ(filter->Output().Deliver(nullptr), VFW_E_NOT_CONNECTED);
  IMediaSample* sample = nullptr;
  EXPECT_EQ(filter->Output().GetDeliveryBuffer(&sample, nullptr, nullptr, 0), VFW_E_NOT_CONNECTED);
}

TEST_F(BasePinTest, ConnectionsFollowTheRules) {
  const Object<Source> source(SourceOptions{.rates_hz = {8000, 44100}});
  const Object<Inverter> filter;
  const Object<Inverter> other;
  IPin& out = source->pin;
  IPin& in = filter->Input();
  const MediaType refused = AudioType(8000);
  const MediaType unknown = AudioType(22050);
  EXPECT_EQ(out.Connect(&filter->Output(), nullptr), VFW_E_INVALID_DIRECTION);
  EXPECT_EQ(in.ReceiveConnection(&other->Input(), &AudioType(44100).Get()), VFW_E_INVALID_DIRECTION);
  EXPECT_EQ(out.Connect(&in, &refused.Get()), VFW_E_TYPE_NOT_ACCEPTED) << "the input's E_INVALIDARG";
  EXPECT_EQ(out.Connect(&in, &unknown.Get()), VFW_E_TYPE_NOT_ACCEPTED) << "the source's own refusal";
  AM_MEDIA_TYPE partial{};
  partial.majortype = MEDIATYPE_Video;
  EXPECT_EQ(out.Connect(&in, &partial), VFW_E_NO_ACCEPTABLE_TYPES);
  EXPECT_FALSE(source->pin.IsConnected());
  EXPECT_FALSE(filter->Input().IsConnected());

  partial.majortype = MEDIATYPE_Audio;
  ASSERT_EQ(out.Connect(&in, &partial), S_OK);
  MediaType agreed;
  ASSERT_EQ(filter->Input().GetConnectionType(&agreed), S_OK);
  EXPECT_EQ(RateOf(agreed), 44100u) << "the first type that both accept";
  EXPECT_EQ(out.Connect(&other->Input(), nullptr), VFW_E_ALREADY_CONNECTED);
  EXPECT_EQ(in.ReceiveConnection(&other->Output(), &agreed.Get()), VFW_E_ALREADY_CONNECTED);

  ASSERT_EQ(filter->Pause(), S_OK);
  EXPECT_EQ(in.Disconnect(), VFW_E_NOT_STOPPED);
  EXPECT_EQ(filter->Output().Connect(&other->Input(), nullptr), VFW_E_NOT_STOPPED);
  EXPECT_EQ(filter->Output().ReceiveConnection(&other->Input(), &agreed.Get()), VFW_E_NOT_STOPPED);
  ASSERT_EQ(filter->Stop(), S_OK);
  EXPECT_EQ(in.Disconnect(), S_OK);
  EXPECT_EQ(in.Disconnect(), S_FALSE);
  EXPECT_EQ(out.Disconnect(), S_OK);
}

TEST_F(BasePinTest, AConnectionThatFailsLateIsUndoneOnBothSides) {
  const Object<Source> source(SourceOptions{.decide_result = VFW_E_BUFFER_NOTSET});
  const Object<Inverter> filter;
  EXPECT_EQ(source->pin.Connect(&filter->Input(), &AudioType(44100).Get()), VFW_E_BUFFER_NOTSET);
  EXPECT_FALSE(source->pin.IsConnected());
  EXPECT_FALSE(filter->Input().IsConnected());
}

TEST_F(BasePinTest, TheFilterGoesThroughItsStates) {
  const Object<Inverter> filter;
  FILTER_STATE state;
  const auto expect_state = [&](FILTER_STATE expected) {
    EXPECT_EQ(filter->GetState(INFINITE, &state), S_OK);
    EXPECT_EQ(state, expected);
  };
  expect_state(State_Stopped);
  EXPECT_EQ(filter->Run(1000), S_OK);
  expect_state(State_Running);
  EXPECT_EQ(filter->Pause(), S_OK);
  expect_state(State_Paused);
  EXPECT_EQ(filter->Stop(), S_OK);
  EXPECT_EQ(filter->Stop(), S_OK);
  expect_state(State_Stopped);
  EXPECT_EQ(filter->starts, 0) << "nothing streams without both connections";
}

TEST_F(BasePinTest, HoldsItsClockButNotItsGraph) {
  const Object<Inverter> filter;
  ComPtr<IReferenceClock> clock, got;
  ComPtr<IFilterGraph> graph;
  ASSERT_EQ(CoCreateInstance(CLSID_SystemClock, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(clock.Put())), S_OK);
  ASSERT_EQ(CoCreateInstance(CLSID_FilterGraph, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(graph.Put())), S_OK);
  const auto references = [](IUnknown* object) { return object->AddRef(), object->Release(); };
  const ULONG of_clock = references(clock.Get()), of_graph = references(graph.Get());
  EXPECT_EQ(filter->SetSyncSource(clock.Get()), S_OK);
  EXPECT_EQ(references(clock.Get()), of_clock + 1);
  EXPECT_EQ(filter->GetSyncSource(got.Put()), S_OK);
  EXPECT_EQ(got.Get(), clock.Get());
  EXPECT_EQ(filter->SetSyncSource(nullptr), S_OK);
  got.Reset();
  EXPECT_EQ(references(clock.Get()), of_clock);
  EXPECT_EQ(filter->JoinFilterGraph(graph.Get(), L"name"), S_OK);
  FILTER_INFO info{};
  EXPECT_EQ(filter->QueryFilterInfo(&info), S_OK);
  EXPECT_STREQ(info.achName, L"name");
  EXPECT_EQ(info.pGraph, graph.Get());
  EXPECT_EQ(references(graph.Get()), of_graph + 1) << "of the one who asked";
  info.pGraph->Release();
  EXPECT_EQ(filter->JoinFilterGraph(nullptr, nullptr), S_OK);
  EXPECT_EQ(filter->NotifyGraph(EC_USER, 0, 0), E_NOTIMPL);
}

}  // namespace
}  // namespace tervan::directshow::test
