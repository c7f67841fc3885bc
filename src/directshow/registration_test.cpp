#include "directshow/registration.h"

#include "directshow/test_filters.h"

namespace tervan::directshow::test {
namespace {

constexpr PinTypeSetup kAudio[] = {{&MEDIATYPE_Audio, &GUID_NULL}};
constexpr PinSetup kPins[] = {{.name = L"Input",
                               .is_rendered = false,
                               .is_output = false,
                               .may_be_absent = false,
                               .may_be_many = false,
                               .connects_to_pin = L"Output",
                               .types = kAudio},
                              {.name = L"Output",
                               .is_rendered = false,
                               .is_output = true,
                               .may_be_absent = false,
                               .may_be_many = false,
                               .connects_to_pin = L"Input",
                               .types = kAudio}};
constexpr FilterSetup kSetup = {
    .clsid = &kInverterClsid, .name = L"Test Inverter", .merit = MERIT_DO_NOT_USE, .pins = kPins};

// How often the mapper finds the filter by its merit and its input type.
int CountMatches(const GUID& input_type, DWORD merit) {
  ComPtr<IFilterMapper2> mapper;
  ComPtr<IEnumMoniker> monikers;
  EXPECT_EQ(CoCreateInstance(CLSID_FilterMapper2, nullptr, CLSCTX_INPROC_SERVER, IID_IFilterMapper2, mapper.PutVoid()),
            S_OK);
  const GUID types[] = {input_type, GUID_NULL};
  if (mapper->EnumMatchingFilters(monikers.Put(), 0, TRUE, merit, TRUE, 1, types, nullptr, nullptr, FALSE, TRUE, 0,
                                  nullptr, nullptr, nullptr) != S_OK) {
    return 0;
  }
  int count = 0;
  ComPtr<IMoniker> moniker;
  while (monikers->Next(1, moniker.Put(), nullptr) == S_OK) {
    ComPtr<IPropertyBag> properties;
    if (FAILED(moniker->BindToStorage(nullptr, nullptr, IID_IPropertyBag, properties.PutVoid()))) continue;
    VARIANT name;
    VariantInit(&name);
    if (properties->Read(L"FriendlyName", &name, nullptr) == S_OK && lstrcmpW(name.bstrVal, kSetup.name) == 0) ++count;
    VariantClear(&name);
  }
  return count;
}

using RegistrationTest = DirectShowTest;

TEST_F(RegistrationTest, AFilterWithSetupDataEntersAndLeavesTheMapperOnceHoweverOftenItIsAsked) {
  EXPECT_EQ(FilterMapper().Register(kSetup), E_UNEXPECTED) << "not opened yet";
  const Object<Inverter> filter;
  EXPECT_EQ(filter->Register(), S_FALSE);
  EXPECT_EQ(filter->Unregister(), S_FALSE);
  filter->setup = &kSetup;
  for (int times = 0; times < 2; ++times) EXPECT_EQ(filter->Register(), S_OK);
  EXPECT_EQ(CountMatches(MEDIATYPE_Audio, MERIT_DO_NOT_USE), 1);
  EXPECT_EQ(CountMatches(MEDIATYPE_Video, MERIT_DO_NOT_USE), 0) << "the pins' types are in the entry";
  EXPECT_EQ(CountMatches(MEDIATYPE_Audio, MERIT_UNLIKELY), 0) << "and so is the merit";
  for (int times = 0; times < 2; ++times) EXPECT_EQ(filter->Unregister(), S_OK);
  EXPECT_EQ(CountMatches(MEDIATYPE_Audio, MERIT_DO_NOT_USE), 0);
}

}  // namespace
}  // namespace tervan::directshow::test
