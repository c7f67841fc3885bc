// Self-registration in the real registry and the real filter mapper.
#include <string>
#include <vector>

#include "module/module.h"

namespace tervan::test {
namespace {

constexpr wchar_t kClassKey[] = L"CLSID\\{23C9F225-40EC-11D2-9D36-00C04F8EDC1E}";

HRESULT Register() { return Export<HRESULT STDMETHODCALLTYPE()>("DllRegisterServer")(); }
HRESULT Unregister() { return Export<HRESULT STDMETHODCALLTYPE()>("DllUnregisterServer")(); }

std::wstring Text(const std::wstring& path, const wchar_t* value) {
  wchar_t text[MAX_PATH] = L"(none)";
  DWORD bytes = sizeof text;
  RegGetValueW(HKEY_CLASSES_ROOT, path.c_str(), value, RRF_RT_REG_SZ, nullptr, text, &bytes);
  return text;
}

// The names under which the filter mapper offers the class to those who look for a merit and a media type.
std::vector<std::wstring> MatchingNames(DWORD merit = MERIT_DO_NOT_USE, const GUID& major_type = MEDIATYPE_Audio) {
  std::vector<std::wstring> names;
  ComPtr<IFilterMapper2> mapper;
  EXPECT_EQ(CoCreateInstance(CLSID_FilterMapper2, nullptr, CLSCTX_INPROC_SERVER, IID_IFilterMapper2, mapper.PutVoid()),
            S_OK);
  const GUID type[] = {major_type, MEDIASUBTYPE_PCM};
  ComPtr<IEnumMoniker> monikers;
  EXPECT_HRESULT_SUCCEEDED(mapper->EnumMatchingFilters(monikers.Put(), 0, FALSE, merit, TRUE, 1, type, nullptr, nullptr,
                                                       FALSE, TRUE, 0, nullptr, nullptr, nullptr));
  ComPtr<IMoniker> moniker;
  while (monikers && monikers->Next(1, moniker.Put(), nullptr) == S_OK) {
    ComPtr<IPropertyBag> bag;
    if (FAILED(moniker->BindToStorage(nullptr, nullptr, IID_IPropertyBag, bag.PutVoid()))) continue;
    VARIANT clsid, name;
    VariantInit(&clsid);
    VariantInit(&name);
    if (SUCCEEDED(bag->Read(L"CLSID", &clsid, nullptr)) && lstrcmpiW(clsid.bstrVal, kClassKey + 6) == 0 &&
        SUCCEEDED(bag->Read(L"FriendlyName", &name, nullptr))) {
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
    EXPECT_EQ(Unregister(), S_OK) << "also of what is not registered";
    CoFreeUnusedLibraries();
    ModuleTest::TearDown();
  }
};

// Merit "do not use": intelligent connection never picks an effect by itself, an exact search finds it.
TEST_F(RegistrationTest, EntersServerAndFilterExactlyOnceHoweverOftenItIsDone) {
  wchar_t path[MAX_PATH];
  GetModuleFileNameW(TheModule(), path, MAX_PATH);
  const std::wstring server = kClassKey + std::wstring(L"\\InprocServer32");
  for (int times = 1; times <= 2; ++times) {
    SCOPED_TRACE(times);
    ASSERT_EQ(Register(), S_OK);
    EXPECT_EQ(Text(kClassKey, nullptr), kCompressorName);
    EXPECT_EQ(Text(server, nullptr), path);
    EXPECT_EQ(Text(server, L"ThreadingModel"), L"Both");
    EXPECT_THAT(MatchingNames(), testing::ElementsAre(kCompressorName));
    EXPECT_THAT(MatchingNames(MERIT_DO_NOT_USE + 1), testing::IsEmpty());
    EXPECT_THAT(MatchingNames(MERIT_DO_NOT_USE, MEDIATYPE_Video), testing::IsEmpty());
  }
}

TEST_F(RegistrationTest, IsTakenBackWithSubkeysThatOthersAdded) {
  ASSERT_EQ(Register(), S_OK);
  HKEY key = nullptr;
  ASSERT_EQ(RegCreateKeyW(HKEY_CLASSES_ROOT, (kClassKey + std::wstring(L"\\More\\Deeper\\Deepest")).c_str(), &key),
            ERROR_SUCCESS);
  RegCloseKey(key);
  ASSERT_EQ(Unregister(), S_OK);
  EXPECT_EQ(RegOpenKeyW(HKEY_CLASSES_ROOT, kClassKey, &key), ERROR_FILE_NOT_FOUND);
  EXPECT_THAT(MatchingNames(), testing::IsEmpty());
}

TEST_F(RegistrationTest, LetsOthersCreateTheFilter) {
  ComPtr<IBaseFilter> filter;
  EXPECT_EQ(CoCreateInstance(kCompressorClsid, nullptr, CLSCTX_INPROC_SERVER, IID_IBaseFilter, filter.PutVoid()),
            REGDB_E_CLASSNOTREG);
  ASSERT_EQ(Register(), S_OK);
  ASSERT_EQ(CoCreateInstance(kCompressorClsid, nullptr, CLSCTX_INPROC_SERVER, IID_IBaseFilter, filter.PutVoid()), S_OK);
  EXPECT_TRUE(Query<ICompressorSettings>(filter.Get()));
}

}  // namespace
}  // namespace tervan::test
