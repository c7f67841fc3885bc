#include "module/page_rig.h"

#include <cmath>
#include <map>

#include "ui/controls/slider_messages.h"

namespace tervan::test {
namespace {

constexpr UINT kAct = WM_APP;  // lParam: the function to call

LRESULT CALLBACK FrameProc(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  if (message == kAct) return (*reinterpret_cast<const std::function<void()>*>(lparam))(), 0;
  return DefWindowProcW(window, message, wparam, lparam);
}

HWND MakeFrame() {
  WNDCLASSW frame_class = {};
  frame_class.lpfnWndProc = FrameProc;
  frame_class.lpszClassName = L"PageFrame";
  RegisterClassW(&frame_class);  // fails from the second time on
  return CreateWindowW(frame_class.lpszClassName, L"frame", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 100, 100, 600, 400,
                       nullptr, nullptr, nullptr, nullptr);
}

MenuItems ItemsOf(HMENU menu) {
  MenuItems items;
  for (int i = 0; i < GetMenuItemCount(menu); ++i) {
    wchar_t text[600] = L"";
    GetMenuStringW(menu, i, text, 600, MF_BYPOSITION);
    items.emplace_back(GetMenuItemID(menu, i), text);
  }
  return items;
}

}  // namespace

const PageRow& PageOf(EffectIndex effect) {
  static const std::map<EffectIndex, PageRow> rows = {
      {kDither,
       {.title = L"Dither",
        .size = {185, 70},
        .help_context = 4,
        .topics = {{20010, {6002, 6003}}, {20011, {6004, 6005}}, {20012, {6006, 6007}}},
        .value_controls = {6003, 6005, 6007},
        .fresh = {L"16 bit", L"Half Rectangular", L"Off"},
        .preset = 3,
        .of_preset = {L"8 bit", L"Highpass Triangular", L"High-pass contour"},
        .wrong = kGate}},
      {kCompressor,
       {.title = L"Compressor",
        .size = {245, 198},
        .help_context = 5,
        .topics = {{20030, {2020, 2004, 2005}},
                   {20031, {2014}},
                   {20032, {2021, 2025, 2024}},
                   {20033, {2023}},
                   {20034, {2022, 2015}},
                   {20035, {2016, 2008, 2006}},
                   {20036, {2017, 2009, 2007}},
                   {20037, {2018, 2010, 2011}},
                   {20038, {2019, 2012, 2013}},
                   {20039, {2026}},
                   {20040, {2028}}},
        .value_controls = {2005, 2006, 2007, 2011, 2013, 2024},
        .fresh = {L"0 dB", L"0.0", L"1.0", L"15", L"250", L"0 dB"},
        .preset = 8,
        .of_preset = {L"0 dB", L"-6.0", L"Inf.", L"0", L"250", L"0 dB"},
        .wrong = kDither}},
      {kEq,
       {.title = L"EQ",
        .size = {255, 167},
        .help_context = 3,
        .topics = {{20023, {4010}},
                   {20026, {4042}},
                   {20024, {4030}},
                   {20025, {4035}},
                   {20022, {4036, 4003, 4009}},
                   {20021, {4038, 4002, 4007}},
                   {20027, {4037, 4001, 4008}}},
        .value_controls = {4035, 4007, 4008, 4009, 4037},
        .fresh = {L"Low Shelf", L"0.0", L"12", L"100", L"&Rolloff (dB/oct):"},
        .preset = 3,
        .of_preset = {L"Band", L"-Inf.", L"0.3", L"60", L"&Bandwidth (oct):"},
        .wrong = kGate}},
      {kGate,
       {.title = L"Track Noise Gate",
        .size = {240, 139},
        .help_context = 6,
        .topics = {{20060, {7008, 7005, 7011}}, {20061, {7002, 7010, 7012}}, {20062, {7003, 7009, 7013}}},
        .value_controls = {7005, 7010, 7009},
        .fresh = {L"-Inf.", L"3", L"100"},
        .preset = 3,
        .of_preset = {L"-38.0 dB", L"10", L"1,000"},
        .wrong = kDither}},
  };
  return rows.at(effect);
}

Page::Page(EffectIndex effect) : row(PageOf(effect)), frame(MakeFrame()) {
  EXPECT_EQ(Create(Effects()[effect].page_clsid, nullptr, IID_IPropertyPage, page.PutVoid()), S_OK);
}

Page::~Page() {
  if (page) page->Deactivate(), page->SetObjects(0, nullptr);
  page = nullptr;
  DestroyWindow(frame);
  HandlePostedMessages();
}

HRESULT Page::Open() const {
  RECT area;
  GetClientRect(frame, &area);
  return page->Activate(frame, &area, FALSE);
}

HWND Page::Control(int id) const {
  const HWND control = GetDlgItem(Dialog(), id);
  EXPECT_NE(control, nullptr) << id;
  return control;
}

Texts Page::Shown() const {
  HandlePostedMessages();
  Texts texts;
  for (const int id : row.value_controls) texts.push_back(TextOf(id));
  return texts;
}

void Page::Meanwhile(UINT message, WPARAM wparam, LPARAM lparam, const std::function<void()>& act) const {
  PostMessageW(frame, kAct, 0, reinterpret_cast<LPARAM>(&act));
  Send(message, wparam, lparam);
  MSG left;
  EXPECT_FALSE(PeekMessageW(&left, nullptr, kAct, kAct, PM_REMOVE)) << "nothing was open";
}

Page::Menu Page::PopUpMenu(LPARAM at, const std::vector<WORD>& keys) const {
  Menu result = {};
  Meanwhile(WM_CONTEXTMENU, reinterpret_cast<WPARAM>(Dialog()), at, [&] {
    const HWND window = FindWindowW(L"#32768", nullptr);
    RECT bounds = {};
    GetWindowRect(window, &bounds);
    result.place = {bounds.left, bounds.top};
    const auto menu = reinterpret_cast<HMENU>(SendMessageW(window, MN_GETHMENU, 0, 0));
    result.items = ItemsOf(menu);
    result.presets = ItemsOf(GetSubMenu(menu, 0));
    for (const WORD key : keys) PostMessageW(Dialog(), WM_KEYDOWN, key, 0);
  });
  return result;
}

RecordedPage::RecordedPage(EffectIndex effect) : filter(effect), page(effect) {
  Query<IParamRecorderSite>(filter.control.Get())->SetRecorder(&recorder);
  page.OpenFor(filter);
}

LRESULT RecordedPage::Position(const SliderRow& row) const { return page.SendTo(row.slider, ui::kSliderGetPosition); }

void RecordedPage::ExpectOneEditAKey(std::initializer_list<KeyRow> rows, const std::function<void()>& restart) {
  for (const auto& [row, key, heard, text] : rows) {
    SCOPED_TRACE(heard);
    restart();
    for (int times = 0; times < 2; ++times) page.SendTo(row.slider, WM_KEYDOWN, key);
    EXPECT_EQ(recorder.Take(), heard);
    EXPECT_EQ(page.TextOf(row.text), text);
    EXPECT_EQ(Position(row), std::lround(Value(row) * row.scale));
    page.SendTo(row.slider, WM_KEYUP, key);
    EXPECT_EQ(recorder.Take(), " E" + std::to_string(row.param));
  }
}

void HandlePostedMessages() {
  MSG message;
  while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
}

std::wstring TextOf(HWND window) {
  wchar_t text[600] = L"";
  GetWindowTextW(window, text, 600);
  return text;
}

}  // namespace tervan::test
