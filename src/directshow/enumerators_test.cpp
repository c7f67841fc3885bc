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
  EXPECT_EQ(pins->Next(3, got, &fetched), S_FALSE);
  ASSERT_EQ(fetched, 2u);
  EXPECT_EQ(ComPtr<IPin>::Adopt(got[0]).Get(), static_cast<IPin*>(&filter->Input()));
  EXPECT_EQ(ComPtr<IPin>::Adopt(got[1]).Get(), static_cast<IPin*>(&filter->Output()));
}

}  // namespace
}  // namespace tervan::directshow::test
