#include "effects/gate/gate_page.h"

#include "effects/gate/gate_filter.h"
#include "resources/ids.h"
#include "ui/pages/number_fields.h"

namespace tervan {
namespace {

using ui::kAllControls;
using ui::Refresh;
using ui::ScrollCode;

constexpr INT32 kGateOff = -800;  // a threshold from here on down

std::wstring LevelText(INT32 tenth_db) {
  return tenth_db <= kGateOff ? ui::kMinusInfinity : ui::TenthsText(tenth_db) + L" dB";
}

// The platform's own reader: digits without grouping, as so short a time has them.
INT32 ReadPlainInteger(HWND edit) {
  return static_cast<INT32>(GetDlgItemInt(GetParent(edit), GetDlgCtrlID(edit), nullptr, FALSE));
}
INT32 ReadGroupedInteger(HWND edit) {
  constexpr int kMaxLength = 40;
  return ui::ReadInteger(edit, kMaxLength);
}

// A parameter, the slider that moves it and the field that shows it.
struct Row {
  int slider_id;
  int field_id;
  std::wstring (*text)(INT32 value);
  INT32 (*read)(HWND edit);  // null: the field cannot be edited
  const wchar_t* unit;       // that screen readers are told besides the text
  int minimum, maximum, neutral;
  decltype(&ui::ScrollTrackbar) scroll;
  int line_step, page_step;
  ui::ParamSlots<IGateSettings, INT32> slots;
};

constexpr Row kThreshold{IDC_GATE_THRESHOLD,
                         IDC_GATE_THRESHOLD_TEXT,
                         LevelText,
                         nullptr,
                         L"",
                         kGateOff,
                         0,
                         -400,
                         ui::ScrollFader,
                         1,
                         10,
                         TERVAN_SLOTS_OF(IGateSettings, ThresholdLevel)};
constexpr Row kAttack{IDC_GATE_ATTACK,
                      IDC_GATE_ATTACK_EDIT,
                      ui::IntegerText,
                      ReadPlainInteger,
                      L" ms",
                      0,
                      500,
                      250,
                      ui::ScrollTrackbar,
                      1,
                      10,
                      TERVAN_SLOTS_OF(IGateSettings, AttackTime)};
constexpr Row kRelease{IDC_GATE_RELEASE,
                       IDC_GATE_RELEASE_EDIT,
                       ui::IntegerText,
                       ReadGroupedInteger,
                       L" ms",
                       1,
                       5000,
                       2500,
                       ui::ScrollTrackbar,
                       1,
                       100,
                       TERVAN_SLOTS_OF(IGateSettings, ReleaseTime)};
constexpr const Row* kRows[] = {&kThreshold, &kAttack, &kRelease};

constexpr ui::HelpTopic kHelpTopics[] = {
    {IDC_GATE_THRESHOLD, 60}, {IDC_GATE_THRESHOLD_TEXT, 60}, {IDC_GATE_THRESHOLD_LABEL, 60},
    {IDC_GATE_ATTACK, 61},    {IDC_GATE_ATTACK_EDIT, 61},    {IDC_GATE_ATTACK_LABEL, 61},
    {IDC_GATE_RELEASE, 62},   {IDC_GATE_RELEASE_EDIT, 62},   {IDC_GATE_RELEASE_LABEL, 62},
};

constexpr UINT_PTR kTimers[] = {0};

constexpr ui::PageDescription kDescription{
    .dialog_id = IDD_GATE,
    .title_id = IDS_GATE_TITLE,
    .help_context = 6,
    .filter_name = kGateFilterName,
    .bypass_id = ID_BYPASS,
    .help_topics = kHelpTopics,
    .timers = kTimers,
};

}  // namespace

GatePage::GatePage(IUnknown* outer) noexcept : AutomatedPageFor(outer, kDescription) {}

void GatePage::OnInitPage() {
  for (const Row* row : kRows) {
    Send(row->slider_id, ui::kSliderSetMinimum, 0, row->minimum);
    Send(row->slider_id, ui::kSliderSetMaximum, 0, row->maximum);
    Send(row->slider_id, ui::kSliderSetDefault, 0, row->neutral);
  }
}

void GatePage::RefreshControls(int id, Refresh refresh) {
  for (const Row* row : kRows) {
    const bool is_edit = row->read && id == row->field_id;
    if (id != kAllControls && id != row->slider_id && !is_edit) continue;
    const INT32 value = row->slots.Get(control());
    const std::wstring text = row->text(value);
    if (id != row->slider_id || refresh == Refresh::kForced) {
      Send(row->slider_id, ui::kSliderSetPosition, TRUE, value);
    }
    ShowText(row->slider_id, text + row->unit);
    ShowText(row->field_id, text);
  }
}

void GatePage::OnFilterNotification(int) { RefreshControls(kAllControls, Refresh::kOthers); }

void GatePage::OnScroll(UINT message, ScrollCode code, HWND slider) {
  const int id = GetDlgCtrlID(slider);
  for (const Row* row : kRows) {
    if (id != row->slider_id) continue;
    const INT32 position = row->scroll(message, code, slider, row->line_step, row->page_step);
    row->slots.Edit(control(), position, code == ScrollCode::kEnd);
    RefreshControls(id, Refresh::kOthers);
  }
}

void GatePage::OnCommand(int id, int code) {
  if (id == ID_BYPASS) {
    ToggleBypass();
    RefreshControls(kAllControls, Refresh::kOthers);
    return;
  }
  for (const Row* row : kRows) {
    if (!row->read || id != row->field_id || code != EN_KILLFOCUS) continue;
    (control().*row->slots.set)(row->read(ControlOf(id)));
    RefreshControls(id, Refresh::kOthers);
  }
}

void GatePage::OnTimer() {
  FollowBypass();
  for (const Row* row : {&kRelease, &kAttack, &kThreshold}) {
    const bool is_automated = row->slots.IsAutomated(control());
    if (is_automated) RefreshControls(row->slider_id, Refresh::kForced);
    if (row->read) Enable(row->field_id, !is_automated);
  }
}

}  // namespace tervan
