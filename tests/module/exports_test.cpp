// Exports, class objects, identity.
#include <control.h>
#include <ocidl.h>

#include <iterator>

#include "module/module.h"

namespace tervan::test {
namespace {

void* const kPoison = reinterpret_cast<void*>(0x5a5a5a5a);

using ExportsTest = ModuleTest;
using ClassObjectTest = ModuleTest;
using IdentityTest = ModuleTest;

TEST_F(ExportsTest, CarryPlainNames) {
  for (const char* name : {"DllMain", "DllGetClassObject", "DllCanUnloadNow", "DllRegisterServer",
                           "DllUnregisterServer", "BuildPositionStringEx"}) {
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

TEST_F(ClassObjectTest, ServesItsClassesThroughTwoInterfacesOnly) {
  const struct {
    CLSID clsid;
    IID iid;
    HRESULT result;
  } rows[] = {
      {kCompressorClsid, IID_IUnknown, S_OK},
      {kCompressorClsid, IID_IClassFactory, S_OK},
      {kCompressorClsid, IID_IBaseFilter, E_NOINTERFACE},
      {CLSID_NULL, IID_IClassFactory, CLASS_E_CLASSNOTAVAILABLE},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(&row - rows);
    void* out = kPoison;
    EXPECT_EQ(GetClassObject(row.clsid, row.iid, &out), row.result);
    EXPECT_EQ(out != nullptr, row.result == S_OK);
    if (row.result == S_OK) {
      EXPECT_EQ(static_cast<IUnknown*>(out)->Release(), 0u);
    }
  }
  EXPECT_EQ(GetClassObject(kCompressorClsid, IID_IClassFactory, nullptr), E_POINTER);
}

TEST_F(ClassObjectTest, CreatesWhatIsAskedForOrNothing) {
  CountedFake<IUnknown> outer;
  void* out = kPoison;
  EXPECT_EQ(Create(kCompressorClsid, nullptr, IID_IDispatch, &out), E_NOINTERFACE);
  EXPECT_EQ(out, nullptr);
  EXPECT_EQ(Create(kCompressorClsid, &outer, IID_IBaseFilter, &(out = kPoison)), E_NOINTERFACE);
  EXPECT_EQ(out, nullptr);
  EXPECT_EQ(Create(kCompressorClsid, nullptr, IID_IBaseFilter, nullptr), E_POINTER);
}

TEST_F(ClassObjectTest, LocksFactoriesAndObjectsKeepTheModuleLoaded) {
  ComPtr<IClassFactory> factory;
  ASSERT_EQ(GetClassObject(kCompressorClsid, IID_IClassFactory, factory.PutVoid()), S_OK);
  EXPECT_EQ(CanUnloadNow(), S_FALSE);
  EXPECT_EQ(factory->LockServer(TRUE), S_OK);
  factory.Reset();
  EXPECT_EQ(CanUnloadNow(), S_FALSE);
  ASSERT_EQ(GetClassObject(kCompressorClsid, IID_IClassFactory, factory.PutVoid()), S_OK);
  EXPECT_EQ(factory->LockServer(FALSE), S_OK);
  factory.Reset();
  EXPECT_EQ(CanUnloadNow(), S_OK);
  const auto filter = NewCompressor<IBaseFilter>();
  EXPECT_EQ(CanUnloadNow(), S_FALSE);
}

const IID kAnswered[] = {
    IID_IUnknown,
    {0xc400f99b, 0x0c6e, 0x444c, {0x8f, 0x20, 0x98, 0xdb, 0x21, 0x6b, 0xe5, 0x6e}},  // the control interface
    {0x6d6cbb61, 0xa223, 0x44aa, {0x84, 0x2f, 0xa2, 0xf0, 0x67, 0x50, 0xbe, 0x6e}},  // IMediaParams
    {0x6d6cbb60, 0xa223, 0x44aa, {0x84, 0x2f, 0xa2, 0xf0, 0x67, 0x50, 0xbe, 0x6d}},  // IMediaParamInfo
    {0xf5011136, 0xc416, 0x48b9, {0x8c, 0x35, 0xe7, 0xc5, 0xf9, 0xaa, 0x6f, 0xdf}},  // the recorder's site
    IID_ISpecifyPropertyPages,
    IID_IPersistStream,
    {0x36a22460, 0x0cc9, 0x11d0, {0x85, 0x74, 0x00, 0xa0, 0xc9, 0x05, 0x39, 0x12}},  // presets
    {0x8568d2a1, 0x2a86, 0x11d3, {0x9e, 0x94, 0x00, 0xc0, 0x4f, 0x68, 0xbe, 0x44}},  // direct processing
    IID_IBaseFilter,
    IID_IMediaFilter,
    IID_IPersist,
    IID_IAMovieSetup,
};

TEST_F(IdentityTest, EveryInterfaceLeadsToEveryOtherAndNoOtherIsAnswered) {
  const auto identity = NewCompressor<IUnknown>();
  for (const IID& from : kAnswered) {
    SCOPED_TRACE(&from - kAnswered);
    ComPtr<IUnknown> first;
    ASSERT_EQ(identity->QueryInterface(from, first.PutVoid()), S_OK);
    EXPECT_EQ(Query<IUnknown>(first.Get()).Get(), identity.Get());
    for (const IID& to : kAnswered) {
      ComPtr<IUnknown> second;
      EXPECT_EQ(first->QueryInterface(to, second.PutVoid()), S_OK) << &to - kAnswered;
    }
    EXPECT_EQ(first->QueryInterface(from, nullptr), E_POINTER);
  }
  for (const IID& iid : {IID_IDispatch, IID_IPropertyPage, IID_IMediaSeeking, IID_IPin, IID_IMemInputPin}) {
    void* out = kPoison;
    EXPECT_EQ(identity->QueryInterface(iid, &out), E_NOINTERFACE) << std::hex << iid.Data1;
    EXPECT_EQ(out, nullptr) << std::hex << iid.Data1;
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

TEST_F(IdentityTest, InsideAnOuterObjectAllInterfacesButOneAreTheOuters) {
  Owner owner;
  ASSERT_EQ(Create(kCompressorClsid, &owner, IID_IUnknown, reinterpret_cast<void**>(&owner.inner)), S_OK);
  EXPECT_NE(owner.inner, static_cast<IUnknown*>(&owner));
  EXPECT_EQ(owner.references, 0) << "an inner object holds no reference on its owner";
  for (const IID& iid : kAnswered) {
    if (iid == IID_IUnknown) continue;
    SCOPED_TRACE(&iid - kAnswered);
    ComPtr<IUnknown> answered;
    ASSERT_EQ(owner.QueryInterface(iid, answered.PutVoid()), S_OK);
    EXPECT_EQ(owner.references, 1);
    EXPECT_EQ(Query<IUnknown>(answered.Get()).Get(), static_cast<IUnknown*>(&owner));
    EXPECT_TRUE(Query<IServiceProvider>(answered.Get()));
  }
  EXPECT_EQ(owner.references, 0);
  EXPECT_EQ(owner.inner->Release(), 0u);
}

TEST_F(IdentityTest, NamesItsClassAndItsPage) {
  const auto persist = NewCompressor<IPersistStream>();
  CLSID clsid{};
  EXPECT_EQ(persist->GetClassID(&clsid), S_OK);
  EXPECT_EQ(clsid, kCompressorClsid);
  EXPECT_EQ(persist->GetClassID(nullptr), E_POINTER);
  const auto specify = Query<ISpecifyPropertyPages>(persist.Get());
  CAUUID pages{77, nullptr};
  ASSERT_EQ(specify->GetPages(&pages), S_OK);
  ASSERT_EQ(pages.cElems, 1u);
  EXPECT_EQ(pages.pElems[0], kCompressorPageClsid);
  CoTaskMemFree(pages.pElems);
  EXPECT_EQ(specify->GetPages(nullptr), E_POINTER);
}

}  // namespace
}  // namespace tervan::test
