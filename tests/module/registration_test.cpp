// Self-registration in the real registry and the real filter mapper.
#include <string>
#include <vector>

#include "module/module.h"

namespace tervan::test {
namespace {

constexpr wchar_t kClassKey[] = L"CLSID\\{23C9F225-40EC-11D2-9D36-00C04F8EDC1E}";

HRESULT Register() { return Export<HRESULT STDMETHODCALLTYPE()>("DllRegisterServer")(); }
HRESULT Unregister() { return Export<HRESULT STDMETHODCALLTYPE()>("DllUnregisterServer")(); }

bool KeyExists(const std::wstring& path) {
  HKEY key = nullptr;
  if (RegOpenKeyExW(HKEY_CLASSES_ROOT, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return false;
  RegCloseKey(key);
  return true;
}

std::wstring Text(const std::wstring& path, const wchar_t* value) {
  wchar_t text[MAX_PATH] = L"(none)";
  DWORD bytes = sizeof text;
  RegGetValueW(HKEY_CLASSES_ROOT, path.c_str(), value, RRF_RT_REG_SZ, nullptr, text, &bytes);
  return text;
}

// The names under which the filter mapper offers the class, in whatever category.
std::vector<std::wstring> EnumeratedNames() {
  std::vector<std::wstring> names;
  ComPtr<ICreateDevEnum> devices;
  ComPtr<IEnumMoniker> monikers;
  EXPECT_EQ(
      CoCreateInstance(CLSID_SystemDeviceEnum, nullptr, CLSCTX_INPROC_SERVER, IID_ICreateDevEnum, devices.PutVoid()),
      S_OK);
  if (devices->CreateClassEnumerator(CLSID_LegacyAmFilterCategory, monikers.Put(), 0) != S_OK) return names;
  ComPtr<IMoniker> moniker;
  while (monikers->Next(1, moniker.Put(), nullptr) == S_OK) {
    ComPtr<IPropertyBag> bag;
    if (FAILED(moniker->BindToStorage(nullptr, nullptr, IID_IPropertyBag, bag.PutVoid()))) continue;
    VARIANT clsid, name;
    VariantInit(&clsid);
    VariantInit(&name);
    if (SUCCEEDED(bag->Read(L"CLSID", &clsid, nullptr)) && clsid.vt == VT_BSTR &&
        lstrcmpiW(clsid.bstrVal, kClassKey + 6) == 0 && SUCCEEDED(bag->Read(L"FriendlyName", &name, nullptr))) {
      names.emplace_back(name.bstrVal);
    }
    VariantClear(&clsid);
    VariantClear(&name);
  }
  return names;
}

class RegistrationTest : public ModuleTest {
 protected:
  void SetUp() override {
    ModuleTest::SetUp();
    ASSERT_EQ(Unregister(), S_OK);
  }
  void TearDown() override {
    EXPECT_EQ(Unregister(), S_OK);
    CoFreeUnusedLibraries();
    ModuleTest::TearDown();
  }
};

TEST_F(RegistrationTest, UnregisteringWhatIsNotRegisteredSucceeds) {
  EXPECT_EQ(Unregister(), S_OK);
  EXPECT_FALSE(KeyExists(kClassKey));
  EXPECT_TRUE(EnumeratedNames().empty());
}

TEST_F(RegistrationTest, EntersServerAndFilterExactlyOnceHoweverOftenItIsDone) {
  for (int times = 1; times <= 2; ++times) {
    SCOPED_TRACE(times);
    ASSERT_EQ(Register(), S_OK);
    wchar_t path[MAX_PATH];
    GetModuleFileNameW(TheModule(), path, MAX_PATH);
    const std::wstring server = kClassKey + std::wstring(L"\\InprocServer32");
    EXPECT_EQ(Text(kClassKey, nullptr), kCompressorName);
    EXPECT_EQ(Text(server, nullptr), path);
    EXPECT_EQ(Text(server, L"ThreadingModel"), L"Both");
    EXPECT_THAT(EnumeratedNames(), testing::ElementsAre(kCompressorName));
  }
  ASSERT_EQ(Unregister(), S_OK);
  EXPECT_FALSE(KeyExists(kClassKey));
  EXPECT_TRUE(EnumeratedNames().empty());
}

TEST_F(RegistrationTest, RemovesSubkeysThatOthersAdded) {
  ASSERT_EQ(Register(), S_OK);
  HKEY key = nullptr;
  ASSERT_EQ(RegCreateKeyW(HKEY_CLASSES_ROOT, (kClassKey + std::wstring(L"\\More\\Deeper\\Deepest")).c_str(), &key),
            ERROR_SUCCESS);
  RegCloseKey(key);
  ASSERT_EQ(Unregister(), S_OK);
  EXPECT_FALSE(KeyExists(kClassKey));
}

TEST_F(RegistrationTest, LetsOthersCreateTheFilter) {
  ComPtr<IBaseFilter> filter;
  EXPECT_EQ(CoCreateInstance(kCompressorClsid, nullptr, CLSCTX_INPROC_SERVER, IID_IBaseFilter, filter.PutVoid()),
            REGDB_E_CLASSNOTREG);
  ASSERT_EQ(Register(), S_OK);
  ASSERT_EQ(CoCreateInstance(kCompressorClsid, nullptr, CLSCTX_INPROC_SERVER, IID_IBaseFilter, filter.PutVoid()), S_OK);
  EXPECT_TRUE(Query<ICompressorSettings>(filter.Get()));
}

// Merit "do not use": intelligent connection never picks an effect by itself, an exact search finds it.
TEST_F(RegistrationTest, IsFoundByItsMeritAndMediaType) {
  ASSERT_EQ(Register(), S_OK);
  ComPtr<IFilterMapper2> mapper;
  ASSERT_EQ(CoCreateInstance(CLSID_FilterMapper2, nullptr, CLSCTX_INPROC_SERVER, IID_IFilterMapper2, mapper.PutVoid()),
            S_OK);
  const struct {
    DWORD merit;
    GUID major_type;
    bool found;
  } rows[] = {{MERIT_DO_NOT_USE, MEDIATYPE_Audio, true},
              {MERIT_DO_NOT_USE + 1, MEDIATYPE_Audio, false},
              {MERIT_DO_NOT_USE, MEDIATYPE_Video, false}};
  for (const auto& row : rows) {
    SCOPED_TRACE(&row - rows);
    const GUID type[] = {row.major_type, MEDIASUBTYPE_PCM};
    ComPtr<IEnumMoniker> monikers;
    ASSERT_HRESULT_SUCCEEDED(mapper->EnumMatchingFilters(monikers.Put(), 0, FALSE, row.merit, TRUE, 1, type, nullptr,
                                                         nullptr, FALSE, TRUE, 0, nullptr, nullptr, nullptr));
    bool found = false;
    ComPtr<IMoniker> moniker;
    while (monikers && monikers->Next(1, moniker.Put(), nullptr) == S_OK) {
      LPOLESTR name = nullptr;
      if (SUCCEEDED(moniker->GetDisplayName(nullptr, nullptr, &name))) {
        found = found || std::wstring(name).find(kClassKey + 6) != std::wstring::npos;
        CoTaskMemFree(name);
      }
    }
    EXPECT_EQ(found, row.found);
  }
}

TEST_F(RegistrationTest, AFilterEntersAndRemovesItself) {
  const auto setup = NewCompressor<IAMovieSetup>();
  ASSERT_EQ(setup->Register(), S_OK);
  EXPECT_THAT(EnumeratedNames(), testing::ElementsAre(kCompressorName));
  ASSERT_EQ(setup->Unregister(), S_OK);
  EXPECT_TRUE(EnumeratedNames().empty());
}

}  // namespace
}  // namespace tervan::test
