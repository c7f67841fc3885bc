// Exports, class objects, identity.
#include <control.h>
#include <ocidl.h>

#include <iterator>

#include "module/effects.h"

namespace tervan::test {
namespace {

void* const kPoison = reinterpret_cast<void*>(0x5a5a5a5a);

using ExportsTest = ModuleTest;
using ClassObjectTest = ModuleTest;
using IdentityTest = EffectTest;
TERVAN_FOR_ALL_EFFECTS(IdentityTest);

TEST_F(ExportsTest, CarryPlainNames) {
  for (const char* name :
       {"DllMain", "DllGetClassObject", "DllCanUnloadNow", "DllRegisterServer", "DllUnregisterServer",
        "BuildPositionStringEx", "GetWingdingsFont", "_ZN6tervan9CLmDitheraSERKS0_"}) {
    EXPECT_NE(GetProcAddress(TheModule(), name), nullptr) << name;
  }
}

TEST_F(ExportsTest, BuildPositionStringExTouchesNoArgument) {
  auto* const build = Export<void(char*, const void*, INT64, char*, UINT32)>("BuildPositionStringEx");
  char buffer[] = "buffer";
  char text[] = "text";
  build(buffer, nullptr, -1, text, 0xFFFFFFFF);
  build(nullptr, nullptr, 0, nullptr, 0);
  EXPECT_STREQ(buffer, "buffer");
  EXPECT_STREQ(text, "text");
}

TEST_F(ClassObjectTest, ServesEachClassThroughTwoInterfacesOnly) {
  void* out = kPoison;
  for (const ClassRow& row : Classes()) {
    SCOPED_TRACE(row.name);
    for (const IID& iid : {IID_IUnknown, IID_IClassFactory}) {
      ComPtr<IUnknown> factory;
      ASSERT_EQ(GetClassObject(row.clsid, iid, factory.PutVoid()), S_OK);
      EXPECT_EQ(factory.Detach()->Release(), 0u);
    }
    EXPECT_EQ(GetClassObject(row.clsid, IID_IBaseFilter, &(out = kPoison)), E_NOINTERFACE);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(GetClassObject(row.clsid, IID_IClassFactory, nullptr), E_POINTER);
  }
  EXPECT_EQ(GetClassObject(CLSID_NULL, IID_IClassFactory, &(out = kPoison)), CLASS_E_CLASSNOTAVAILABLE);
  EXPECT_EQ(out, nullptr);
}

TEST_F(ClassObjectTest, CreatesWhatIsAskedForOrNothing) {
  for (const ClassRow& row : Classes()) {
    SCOPED_TRACE(row.name);
    const IID& own = row.is_page ? IID_IPropertyPage : IID_IBaseFilter;
    CountedFake<IUnknown> outer;
    void* out = kPoison;
    for (const IID& other : {IID_IDispatch, row.is_page ? IID_IBaseFilter : IID_IPropertyPage}) {
      EXPECT_EQ(Create(row.clsid, nullptr, other, &(out = kPoison)), E_NOINTERFACE);
      EXPECT_EQ(out, nullptr);
    }
    EXPECT_EQ(Create(row.clsid, &outer, own, &(out = kPoison)), E_NOINTERFACE);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(Create(row.clsid, nullptr, own, nullptr), E_POINTER);
    ComPtr<IUnknown> created;
    EXPECT_EQ(Create(row.clsid, nullptr, own, created.PutVoid()), S_OK);
    EXPECT_EQ(CanUnloadNow(), S_FALSE);
  }
}

TEST_F(ClassObjectTest, LocksAndFactoriesKeepTheModuleLoaded) {
  for (const ClassRow& row : Classes()) {
    SCOPED_TRACE(row.name);
    ComPtr<IClassFactory> factory;
    ASSERT_EQ(GetClassObject(row.clsid, IID_IClassFactory, factory.PutVoid()), S_OK);
    EXPECT_EQ(CanUnloadNow(), S_FALSE);
    EXPECT_EQ(factory->LockServer(TRUE), S_OK);
    factory.Reset();
    EXPECT_EQ(CanUnloadNow(), S_FALSE);
    ASSERT_EQ(GetClassObject(row.clsid, IID_IClassFactory, factory.PutVoid()), S_OK);
    EXPECT_EQ(factory->LockServer(FALSE), S_OK);
    factory.Reset();
    EXPECT_EQ(CanUnloadNow(), S_OK);
  }
}

// Every interface that some filter of the module has, and some that none has. true: this effect's has it.
std::vector<std::pair<IID, bool>> InterfacesOf(const EffectRow& effect) {
  std::vector<std::pair<IID, bool>> interfaces = {
      {IID_IUnknown, true},
      {Id(L"{6d6cbb61-a223-44aa-842f-a2f06750be6e}"), effect.has_automation},  // IMediaParams
      {Id(L"{6d6cbb60-a223-44aa-842f-a2f06750be6d}"), effect.has_automation},  // IMediaParamInfo
      {Id(L"{f5011136-c416-48b9-8c35-e7c5f9aa6fdf}"), effect.has_automation},  // the recorder's site
      {IID_ISpecifyPropertyPages, true},
      {IID_IPersistStream, true},
      {Id(L"{36a22460-0cc9-11d0-8574-00a0c9053912}"), true},  // IPluginPresets
      {Id(L"{8568d2a1-2a86-11d3-9e94-00c04f68be44}"), true},  // IDirectBufferProcess
      {IID_IBaseFilter, true},
      {IID_IMediaFilter, true},
      {IID_IPersist, true},
      {IID_IAMovieSetup, true},
      {IID_IDispatch, false},
      {IID_IPropertyPage, false},
      {IID_IMediaSeeking, false},
      {IID_IPin, false},
      {IID_IMemInputPin, false},
  };
  for (const EffectRow& any : Effects()) {
    interfaces.emplace_back(any.control_iid, any.control_iid == effect.control_iid);
  }
  return interfaces;
}

TEST_P(IdentityTest, EveryInterfaceLeadsToEveryOtherAndNoOtherIsAnswered) {
  ComPtr<IUnknown> identity;
  ASSERT_EQ(Create(effect.clsid, nullptr, IID_IUnknown, identity.PutVoid()), S_OK);
  for (const auto& [from, has_from] : InterfacesOf(effect)) {
    if (!has_from) continue;
    SCOPED_TRACE(from.Data1);
    ComPtr<IUnknown> first;
    ASSERT_EQ(identity->QueryInterface(from, first.PutVoid()), S_OK);
    EXPECT_EQ(Query<IUnknown>(first.Get()).Get(), identity.Get());
    for (const auto& [to, has_to] : InterfacesOf(effect)) {
      void* second = kPoison;
      EXPECT_EQ(first->QueryInterface(to, &second), has_to ? S_OK : E_NOINTERFACE) << to.Data1;
      EXPECT_EQ(second != nullptr, has_to) << to.Data1;
      if (second) static_cast<IUnknown*>(second)->Release();
    }
    EXPECT_EQ(first->QueryInterface(from, nullptr), E_POINTER);
  }
}

// An owner that answers one interface of its own and leaves everything else to the inner object.
class Owner final : public CountedFake<IServiceProvider> {
 public:
  STDMETHODIMP QueryInterface(REFIID iid, void** out) override {
    const HRESULT own = CountedFake::QueryInterface(iid, out);
    return own == S_OK || !inner ? own : inner->QueryInterface(iid, out);
  }
  STDMETHODIMP QueryService(REFGUID, REFIID, void**) override { return E_NOTIMPL; }

  IUnknown* inner = nullptr;
};

TEST_P(IdentityTest, InsideAnOuterObjectAllInterfacesButOneAreTheOuters) {
  Owner owner;
  ASSERT_EQ(Create(effect.clsid, &owner, IID_IUnknown, reinterpret_cast<void**>(&owner.inner)), S_OK);
  EXPECT_NE(owner.inner, static_cast<IUnknown*>(&owner));
  EXPECT_EQ(owner.references, 0) << "an inner object holds no reference on its owner";
  for (const auto& [iid, has] : InterfacesOf(effect)) {
    if (!has || iid == IID_IUnknown) continue;
    SCOPED_TRACE(iid.Data1);
    ComPtr<IUnknown> answered;
    ASSERT_EQ(owner.QueryInterface(iid, answered.PutVoid()), S_OK);
    EXPECT_EQ(owner.references, 1);
    EXPECT_EQ(Query<IUnknown>(answered.Get()).Get(), static_cast<IUnknown*>(&owner));
    EXPECT_TRUE(Query<IServiceProvider>(answered.Get()));
  }
  {
    const auto filter = Query<IBaseFilter>(&owner);
    ComPtr<IPin> pin;
    ComPtr<IEnumPins> pins;
    ASSERT_EQ(filter->FindPin(L"Input", pin.Put()), S_OK);
    EXPECT_EQ(owner.references, 2) << "pins share the filter's count";
    EXPECT_NE(Query<IUnknown>(pin.Get()).Get(), static_cast<IUnknown*>(&owner)) << "a pin is an object of its own";
    ASSERT_EQ(filter->EnumPins(pins.Put()), S_OK);
    EXPECT_EQ(owner.references, 3) << "an enumerator keeps the filter alive";
  }
  EXPECT_EQ(owner.references, 0);
  owner.inner->AddRef();
  EXPECT_EQ(owner.references, 0) << "the inner unknown counts for itself";
  EXPECT_EQ(owner.inner->Release(), 1u);
  EXPECT_EQ(owner.inner->Release(), 0u);
}

TEST_F(ClassObjectTest, APageInsideAnOuterObjectBelongsToIt) {
  for (const ClassRow& row : Classes()) {
    if (!row.is_page) continue;
    Owner owner;
    ASSERT_EQ(Create(row.clsid, &owner, IID_IUnknown, reinterpret_cast<void**>(&owner.inner)), S_OK);
    {
      const auto page = Query<IPropertyPage>(&owner);
      ASSERT_TRUE(page);
      EXPECT_EQ(Query<IUnknown>(page.Get()).Get(), static_cast<IUnknown*>(&owner));
    }
    EXPECT_EQ(owner.references, 0);
    EXPECT_EQ(owner.inner->Release(), 0u);
  }
}

TEST_P(IdentityTest, NamesItsClassAndItsPage) {
  const Filter filter(effect);
  for (const auto& persist : {Query<IPersist>(filter.control.Get()), ComPtr<IPersist>(filter.persist.Get())}) {
    CLSID clsid{};
    EXPECT_EQ(persist->GetClassID(&clsid), S_OK);
    EXPECT_EQ(clsid, effect.clsid);
    EXPECT_EQ(persist->GetClassID(nullptr), E_POINTER);
  }
  const auto specify = Query<ISpecifyPropertyPages>(filter.control.Get());
  CAUUID pages{77, nullptr};
  ASSERT_EQ(specify->GetPages(&pages), S_OK);
  ASSERT_EQ(pages.cElems, 1u);
  EXPECT_EQ(pages.pElems[0], effect.page_clsid);
  CoTaskMemFree(pages.pElems);
  EXPECT_EQ(specify->GetPages(nullptr), E_POINTER);
}

}  // namespace
}  // namespace tervan::test
