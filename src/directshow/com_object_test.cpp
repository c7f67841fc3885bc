#include "directshow/com_object.h"

#include "directshow/test_filters.h"

namespace tervan::directshow::test {
namespace {

using ComObjectTest = DirectShowTest;

// An outer object that counts what reaches it and answers one interface of its own.
struct Outer final : IUnknown {
  STDMETHODIMP QueryInterface(REFIID iid, void** out) override {
    if (IsEqualGUID(iid, IID_IUnknown)) return HandOut(this, out);
    return inner->QueryInterface(iid, out);
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ++references; }
  STDMETHODIMP_(ULONG) Release() override { return --references; }
  ULONG references = 1;
  IUnknown* inner = nullptr;
};

TEST_F(ComObjectTest, AnAggregatedFilterGivesOutOnlyItsOwnersIdentityAndReferences) {
  Outer outer;
  Object<Inverter> filter(&outer);
  outer.inner = filter.Inner();
  {
    const ComPtr<IBaseFilter> face = Query<IBaseFilter>(&outer);
    ASSERT_TRUE(face);
    EXPECT_EQ(outer.references, 2u);
    EXPECT_EQ(Query<IUnknown>(face.Get()).Get(), &outer);
    ComPtr<IPin> pin;
    ASSERT_EQ(face->FindPin(L"Input", pin.Put()), S_OK);
    EXPECT_EQ(outer.references, 3u) << "pins share the filter's count";
    EXPECT_NE(Query<IUnknown>(pin.Get()).Get(), &outer) << "a pin is an object of its own";
    ComPtr<IEnumPins> pins;
    ASSERT_EQ(face->EnumPins(pins.Put()), S_OK);
    EXPECT_EQ(outer.references, 4u) << "an enumerator keeps the filter alive";
  }
  EXPECT_EQ(outer.references, 1u);
  filter.Inner()->AddRef();
  EXPECT_EQ(outer.references, 1u) << "the inner unknown counts for itself";
  EXPECT_EQ(filter.Inner()->Release(), 1u);
}

}  // namespace
}  // namespace tervan::directshow::test
