#include "directshow/enumerators.h"

#include "directshow/test_filters.h"

namespace tervan::directshow::test {
namespace {

using EnumeratorTest = DirectShowTest;

TEST_F(EnumeratorTest, GoesThroughThePinsAndChecksItsArguments) {
  const Object<Inverter> filter;
  ComPtr<IEnumPins> pins;
  ComPtr<IEnumPins> clone;
  ComPtr<IPin> pin;
  ASSERT_EQ(filter->EnumPins(pins.Put()), S_OK);
  EXPECT_EQ(filter->EnumPins(nullptr), E_POINTER);
  IPin* got[3] = {};
  ULONG fetched = 99;
  EXPECT_EQ(pins->Next(1, nullptr, &fetched), E_POINTER);
  EXPECT_EQ(fetched, 0u);
  EXPECT_EQ(pins->Next(2, got, nullptr), E_INVALIDARG);
  EXPECT_EQ(pins->Next(1, got, nullptr), S_OK) << "one pin may be fetched without a count";
  EXPECT_EQ(got[0], static_cast<IPin*>(&filter->Input()));
  got[0]->Release();
  EXPECT_EQ(pins->Next(3, got, &fetched), S_FALSE);
  EXPECT_EQ(fetched, 1u);
  EXPECT_EQ(got[0], static_cast<IPin*>(&filter->Output()));
  got[0]->Release();
  EXPECT_EQ(pins->Next(1, got, &fetched), S_FALSE);
  EXPECT_EQ(pins->Next(0, got, &fetched), S_OK);

  ASSERT_EQ(pins->Reset(), S_OK);
  EXPECT_EQ(pins->Skip(3), S_FALSE) << "and stays where it was";
  EXPECT_EQ(pins->Skip(1), S_OK);
  EXPECT_EQ(pins->Clone(nullptr), E_POINTER);
  ASSERT_EQ(pins->Clone(clone.Put()), S_OK);
  ASSERT_EQ(clone->Next(1, pin.Put(), nullptr), S_OK);
  EXPECT_EQ(pin.Get(), static_cast<IPin*>(&filter->Output())) << "a clone continues at the same place";
  ASSERT_EQ(pins->Reset(), S_OK);
  ASSERT_EQ(pins->Next(1, pin.Put(), nullptr), S_OK);
  EXPECT_EQ(pin.Get(), static_cast<IPin*>(&filter->Input()));
}

TEST_F(EnumeratorTest, IsOutOfSyncAfterAChangeUntilReset) {
  const Object<Inverter> filter;
  ComPtr<IEnumPins> pins;
  ASSERT_EQ(filter->EnumPins(pins.Put()), S_OK);
  filter->PinsChanged();
  ComPtr<IPin> pin;
  IEnumPins* poisoned = pins.Get();
  EXPECT_EQ(pins->Next(1, pin.Put(), nullptr), VFW_E_ENUM_OUT_OF_SYNC);
  EXPECT_EQ(pins->Skip(1), VFW_E_ENUM_OUT_OF_SYNC);
  EXPECT_EQ(pins->Clone(&poisoned), VFW_E_ENUM_OUT_OF_SYNC);
  EXPECT_EQ(poisoned, nullptr);
  EXPECT_EQ(pins->Reset(), S_OK);
  EXPECT_EQ(pins->Next(1, pin.Put(), nullptr), S_OK);

  const Object<Source> source;
  ComPtr<IEnumMediaTypes> types;
  ASSERT_EQ(source->pin.EnumMediaTypes(types.Put()), S_OK);
  source->pin.MediaTypesChanged();
  AM_MEDIA_TYPE* type = nullptr;
  EXPECT_EQ(types->Next(1, &type, nullptr), VFW_E_ENUM_OUT_OF_SYNC);
}

TEST_F(EnumeratorTest, MediaTypesAreCopiesForTheCaller) {
  const Object<Source> source(SourceOptions{.rates_hz = {44100, 48000}});
  ComPtr<IEnumMediaTypes> types;
  ASSERT_EQ(source->pin.EnumMediaTypes(types.Put()), S_OK);
  AM_MEDIA_TYPE* got[3] = {};
  ULONG fetched = 0;
  EXPECT_EQ(types->Next(3, got, &fetched), S_FALSE);
  ASSERT_EQ(fetched, 2u);
  MediaType owned;
  for (const DWORD rate_hz : {44100u, 48000u}) {
    owned.Adopt(got[rate_hz == 48000]);
    EXPECT_EQ(RateOf(owned), rate_hz);
  }
}

}  // namespace
}  // namespace tervan::directshow::test
