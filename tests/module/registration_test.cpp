// Self-registration in the real registry and the real filter mapper.
#include "module/effects.h"

namespace tervan::test {
namespace {

HRESULT Register() { return Export<HRESULT STDMETHODCALLTYPE()>("DllRegisterServer")(); }
HRESULT Unregister() { return Export<HRESULT STDMETHODCALLTYPE()>("DllUnregisterServer")(); }

std::wstring TextOf(const CLSID& clsid) {
  wchar_t text[40];
  StringFromGUID2(clsid, text, 40);
  return text;
}

std::wstring KeyOf(const CLSID& clsid) { return L"CLSID\\" + TextOf(clsid); }

std::wstring Text(const std::wstring& path, const wchar_t* value) {
  wchar_t text[MAX_PATH] = L"(none)";
  DWORD bytes = sizeof text;
  RegGetValueW(HKEY_CLASSES_ROOT, path.c_str(), value, RRF_RT_REG_SZ, nullptr, text, &bytes);
  return text;
}

struct Search {
  DWORD merit = MERIT_DO_NOT_USE;
  GUID major_type = MEDIATYPE_Audio;
  BOOL is_rendered = FALSE;
};

// The names under which the filter mapper offers our classes to those who search so for a filter with input and output.
std::vector<std::wstring> MatchingNames(const Search& search = {}) {
  std::vector<std::wstring> names;
  ComPtr<IFilterMapper2> mapper;
  EXPECT_EQ(CoCreateInstance(CLSID_FilterMapper2, nullptr, CLSCTX_INPROC_SERVER, IID_IFilterMapper2, mapper.PutVoid()),
            S_OK);
  const GUID type[] = {search.major_type, MEDIASUBTYPE_PCM};
  ComPtr<IEnumMoniker> monikers;
  EXPECT_HRESULT_SUCCEEDED(mapper->EnumMatchingFilters(monikers.Put(), 0, FALSE, search.merit, TRUE, 1, type, nullptr,
                                                       nullptr, search.is_rendered, TRUE, 1, type, nullptr, nullptr));
  ComPtr<IMoniker> moniker;
  while (monikers && monikers->Next(1, moniker.Put(), nullptr) == S_OK) {
    ComPtr<IPropertyBag> bag;
    if (FAILED(moniker->BindToStorage(nullptr, nullptr, IID_IPropertyBag, bag.PutVoid()))) continue;
    VARIANT clsid, name;
    VariantInit(&clsid);
    VariantInit(&name);
    EXPECT_HRESULT_SUCCEEDED(bag->Read(L"CLSID", &clsid, nullptr));
    EXPECT_HRESULT_SUCCEEDED(bag->Read(L"FriendlyName", &name, nullptr));
    for (const EffectRow& effect : Effects()) {
      if (lstrcmpiW(clsid.bstrVal, TextOf(effect.clsid).c_str()) == 0) names.emplace_back(name.bstrVal);
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
    EXPECT_EQ(Unregister(), S_OK) << "also of what is not registered";
    CoFreeUnusedLibraries();
    ModuleTest::TearDown();
  }
};

// Merit "do not use": intelligent connection never picks an effect by itself, an exact search finds it.
TEST_F(RegistrationTest, EntersServersAndFiltersExactlyOnceHoweverOftenItIsDone) {
  wchar_t path[MAX_PATH];
  GetModuleFileNameW(TheModule(), path, MAX_PATH);
  std::vector<std::wstring> all_names;
  for (const EffectRow& effect : Effects()) all_names.push_back(effect.display_name);
  for (int times = 1; times <= 2; ++times) {
    SCOPED_TRACE(times);
    ASSERT_EQ(Register(), S_OK);
    for (const ClassRow& row : Classes()) {
      EXPECT_EQ(Text(KeyOf(row.clsid), nullptr), row.name);
      EXPECT_EQ(Text(KeyOf(row.clsid) + L"\\InprocServer32", nullptr), path);
      EXPECT_EQ(Text(KeyOf(row.clsid) + L"\\InprocServer32", L"ThreadingModel"), L"Both");
    }
    EXPECT_THAT(MatchingNames(), testing::UnorderedElementsAreArray(all_names));
    EXPECT_THAT(MatchingNames({.merit = MERIT_DO_NOT_USE + 1}), testing::IsEmpty());
    EXPECT_THAT(MatchingNames({.major_type = MEDIATYPE_Video}), testing::IsEmpty());
    EXPECT_THAT(MatchingNames({.is_rendered = TRUE}), testing::IsEmpty());
  }
}

TEST_F(RegistrationTest, IsTakenBackWithSubkeysThatOthersAdded) {
  ASSERT_EQ(Register(), S_OK);
  HKEY key = nullptr;
  ASSERT_EQ(RegCreateKeyW(HKEY_CLASSES_ROOT, (KeyOf(Effects()[kEq].clsid) + L"\\More\\Deeper\\Deepest").c_str(), &key),
            ERROR_SUCCESS);
  RegCloseKey(key);
  ASSERT_EQ(Unregister(), S_OK);
  for (const ClassRow& row : Classes()) {
    EXPECT_EQ(RegOpenKeyW(HKEY_CLASSES_ROOT, KeyOf(row.clsid).c_str(), &key), ERROR_FILE_NOT_FOUND) << row.name;
  }
  EXPECT_THAT(MatchingNames(), testing::IsEmpty());
}

TEST_F(RegistrationTest, LetsOthersCreateFiltersAndPages) {
  for (const bool registered : {false, true}) {
    if (registered) Register();
    for (const ClassRow& row : Classes()) {
      ComPtr<IUnknown> made;
      EXPECT_EQ(CoCreateInstance(row.clsid, nullptr, CLSCTX_INPROC_SERVER,
                                 row.is_page ? IID_IPropertyPage : IID_IBaseFilter, made.PutVoid()),
                registered ? S_OK : REGDB_E_CLASSNOTREG);
    }
  }
}

}  // namespace
}  // namespace tervan::test
