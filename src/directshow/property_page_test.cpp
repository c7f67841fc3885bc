#include "directshow/property_page.h"

#include "directshow/test_filters.h"

namespace tervan::directshow::test {
namespace {

class TestPage final : public PropertyPage {
 public:
  explicit TestPage(int dialog_id = 100) : PropertyPage(nullptr, GetModuleHandleW(nullptr), dialog_id, 101) {}
  HRESULT OnConnect(IUnknown* object) override { return connected = object, S_OK; }
  HRESULT OnDisconnect() override { return connected = nullptr, S_OK; }
  HRESULT OnActivate() override { return activate_result; }
  INT_PTR OnReceiveMessage(HWND dialog, UINT message, WPARAM, LPARAM) override {
    if (message == WM_DESTROY) ++destroyed, knew_dialog_at_end = Dialog() == dialog;
    return message == WM_INITDIALOG;
  }
  using PropertyPage::Dialog;

  IUnknown* connected = nullptr;
  HRESULT activate_result = S_OK;
  int destroyed = 0;
  bool knew_dialog_at_end = false;
};

struct Site final : IPropertyPageSite {
  STDMETHODIMP QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
  STDMETHODIMP_(ULONG) AddRef() override { return ++references; }
  STDMETHODIMP_(ULONG) Release() override { return --references; }
  STDMETHODIMP OnStatusChange(DWORD) override { return S_OK; }
  STDMETHODIMP GetLocaleID(LCID*) override { return E_NOTIMPL; }
  STDMETHODIMP GetPageContainer(IUnknown**) override { return E_NOTIMPL; }
  STDMETHODIMP TranslateAccelerator(MSG*) override { return S_FALSE; }
  ULONG references = 1;
};

class PropertyPageTest : public DirectShowTest {
 protected:
  PropertyPageTest()
      : frame_(CreateWindowW(L"STATIC", L"frame", WS_OVERLAPPEDWINDOW, 0, 0, 400, 300, nullptr, nullptr, nullptr,
                             nullptr)) {}
  ~PropertyPageTest() override { DestroyWindow(frame_); }

  const HWND frame_;
  const RECT area_ = {10, 20, 210, 120};
};

TEST_F(PropertyPageTest, RefusesWhatComesWithoutDialogObjectOrSite) {
  const Object<TestPage> page;
  IUnknown* objects[2] = {page.Inner(), nullptr};
  EXPECT_EQ(page->Activate(frame_, nullptr, FALSE), E_POINTER);
  EXPECT_EQ(page->Deactivate(), E_UNEXPECTED);
  EXPECT_EQ(page->Show(SW_SHOW), E_UNEXPECTED);
  EXPECT_EQ(page->Move(nullptr), E_POINTER);
  EXPECT_EQ(page->Move(&area_), E_UNEXPECTED);
  EXPECT_EQ(page->Apply(), E_UNEXPECTED);
  EXPECT_EQ(page->SetObjects(1, nullptr), E_POINTER);
  EXPECT_EQ(page->SetObjects(1, objects + 1), E_POINTER);
  EXPECT_EQ(page->SetObjects(2, objects), E_UNEXPECTED);
  EXPECT_EQ(page->SetPageSite(nullptr), E_UNEXPECTED);
  EXPECT_EQ(page->Help(nullptr), E_NOTIMPL);
  const Object<TestPage> page_without_dialog(9999);
  EXPECT_EQ(page_without_dialog->Activate(frame_, &area_, FALSE), E_OUTOFMEMORY);
}

TEST_F(PropertyPageTest, ItsDialogIsWhereAndHowTheFrameWantsIt) {
  Site site;
  const Object<TestPage> page;
  IUnknown* object = page.Inner();
  for (int i = 0; i < 2; ++i) {
    ASSERT_EQ(page->Activate(frame_, &area_, FALSE), S_OK) << "a page may be shown again";
    EXPECT_EQ(page->Activate(frame_, &area_, FALSE), E_UNEXPECTED);
    RECT bounds;
    GetWindowRect(page->Dialog(), &bounds);
    MapWindowPoints(nullptr, frame_, reinterpret_cast<POINT*>(&bounds), 2);
    EXPECT_TRUE(EqualRect(&bounds, &area_));
    const auto is_shown = [&] { return (GetWindowLongW(page->Dialog(), GWL_STYLE) & WS_VISIBLE) != 0; };
    EXPECT_TRUE(is_shown());
    EXPECT_EQ(page->Show(SW_HIDE), S_OK);
    EXPECT_FALSE(is_shown());
    EXPECT_EQ(page->Show(SW_MAXIMIZE), E_INVALIDARG);
    EXPECT_EQ(page->Deactivate(), S_OK);
    EXPECT_EQ(page->destroyed, i + 1);
    EXPECT_TRUE(page->knew_dialog_at_end);
  }
  EXPECT_EQ(page->SetPageSite(&site), S_OK);
  EXPECT_EQ(page->SetPageSite(&site), E_UNEXPECTED);
  EXPECT_EQ(page->Apply(), E_UNEXPECTED) << "no object";
  EXPECT_EQ(page->SetObjects(1, &object), S_OK);
  EXPECT_EQ(page->connected, object);
  EXPECT_EQ(page->Apply(), S_OK);
  EXPECT_EQ(page->SetObjects(0, nullptr), S_OK);
  EXPECT_EQ(page->connected, nullptr);
  EXPECT_EQ(page->SetPageSite(nullptr), S_OK);
  EXPECT_EQ(site.references, 1u);
}

TEST_F(PropertyPageTest, AWindowThatFailsOrDiesWithItsFrameIsForgotten) {
  const HWND other_frame =
      CreateWindowW(L"STATIC", L"", WS_OVERLAPPEDWINDOW, 0, 0, 9, 9, nullptr, nullptr, nullptr, nullptr);
  const Object<TestPage> page;
  page->activate_result = E_ACCESSDENIED;
  EXPECT_EQ(page->Activate(frame_, &area_, FALSE), E_ACCESSDENIED);
  EXPECT_EQ(page->Dialog(), nullptr);
  page->activate_result = S_OK;
  ASSERT_EQ(page->Activate(other_frame, &area_, FALSE), S_OK);
  DestroyWindow(other_frame);
  EXPECT_EQ(page->Deactivate(), E_UNEXPECTED);
}

}  // namespace
}  // namespace tervan::directshow::test
