#include "effects/gate/gate_page.h"

#include "effects/gate/gate_filter.h"
#include "resources/ids.h"
#include "ui/pages/number_fields.h"

namespace tervan {
namespace {

using ui::kAllControls;
using ui::Refresh;
using ui::ScrollCode;

constexpr const ParamDescriptor& DescriptorOf(GateParam param) { return gate::kParams[static_cast<size_t>(param)]; }

std::wstring LevelText(INT32 tenth_db) {
  const bool is_gate_off = tenth_db <= DescriptorOf(GateParam::kThresholdLevel).controlMin;
  return is_gate_off ? ui::kMinusInfinity : ui::TenthsText(tenth_db) + ui::kDecibelUnit;
}

// The platform's own reader, which knows no grouping: for numbers too short to be grouped. It may give a typed minus
// back as a number beyond 31 bits, so such numbers count as below the range.
INT32 ReadShortInteger(HWND edit) {
  return static_cast<INT32>(GetDlgItemInt(GetParent(edit), GetDlgCtrlID(edit), nullptr, FALSE));
}

INT32 ReadGroupedInteger(HWND edit) {
  constexpr int kMaxLength = 40;
  return ui::ReadInteger(edit, kMaxLength);
}

// A parameter, the slider that moves it and the field that shows it. The slider's positions are control values.
struct Row {
  GateParam param;
  int slider_id;
  int field_id;
  int default_position;  // of a double click
  decltype(&ui::ScrollTrackbar) scroll;
  int page_step;
  std::wstring (*text)(INT32 value);
  const wchar_t* unit;       // what the text leaves out, for screen readers
  INT32 (*read)(HWND edit);  // null: the field cannot be edited
  ui::ParamSlots<IGateSettings, INT32> slots;
};

// clang-format off
constexpr Row kRows[] = {
    {GateParam::kThresholdLevel, IDC_GATE_THRESHOLD, IDC_GATE_THRESHOLD_TEXT, -400, ui::ScrollFader, 10,
     LevelText, L"", nullptr, TERVAN_SLOTS_OF(IGateSettings, ThresholdLevel)},
    {GateParam::kAttackTime, IDC_GATE_ATTACK, IDC_GATE_ATTACK_EDIT, 250, ui::ScrollTrackbar, 10,
     ui::IntegerText, L" ms", ReadShortInteger, TERVAN_SLOTS_OF(IGateSettings, AttackTime)},
    {GateParam::kReleaseTime, IDC_GATE_RELEASE, IDC_GATE_RELEASE_EDIT, 2500, ui::ScrollTrackbar, 100,
     ui::IntegerText, L" ms", ReadGroupedInteger, TERVAN_SLOTS_OF(IGateSettings, ReleaseTime)},
};
// clang-format on
constexpr int kLineStep = 1;

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

bool GatePage::OnInitPage() {
  for (const Row& row : kRows) {
    Send(row.slider_id, ui::kSliderSetMinimum, 0, DescriptorOf(row.param).controlMin);
    Send(row.slider_id, ui::kSliderSetMaximum, 0, DescriptorOf(row.param).controlMax);
    Send(row.slider_id, ui::kSliderSetDefault, 0, row.default_position);
  }
  return true;
}

void GatePage::RefreshControls(int id, Refresh refresh) {
  const auto filter = Held();
  for (const Row& row : kRows) {
    const bool is_edit = row.read && id == row.field_id;
    if (id != kAllControls && id != row.slider_id && !is_edit) continue;
    const INT32 value = row.slots.Get(*filter);
    const std::wstring text = row.text(value);
    ShowText(row.slider_id, text + row.unit);
    ShowText(row.field_id, text);
    if (id != row.slider_id || refresh == Refresh::kForced) Send(row.slider_id, ui::kSliderSetPosition, TRUE, value);
  }
}

void GatePage::OnFilterNotification(int) { ShowValues(kAllControls, Refresh::kOthers); }

void GatePage::OnScroll(UINT message, ScrollCode code, HWND slider) {
  const int id = GetDlgCtrlID(slider);
  const auto filter = Held();
  for (const Row& row : kRows) {
    if (id != row.slider_id) continue;
    const INT32 position = row.scroll(message, code, slider, kLineStep, row.page_step);
    row.slots.Edit(*filter, position, code == ScrollCode::kEnd);
    ShowValues(id, Refresh::kOthers);
  }
}

void GatePage::OnCommand(int id, int code) {
  const auto filter = Held();
  if (id == ID_BYPASS) {
    ToggleBypass(*filter);
    ShowValues(kAllControls, Refresh::kOthers);
    return;
  }
  for (const Row& row : kRows) {
    if (!row.read || id != row.field_id || code != EN_KILLFOCUS) continue;
    (*filter.*row.slots.set)(row.read(ControlOf(id)));
    ShowValues(id, Refresh::kOthers);
  }
}

void GatePage::OnTimer() {
  const auto filter = Held();
  FollowBypass(*filter);
  for (size_t i = std::size(kRows); i-- > 0;) {
    const Row& row = kRows[i];
    const bool is_automated = row.slots.IsAutomated(*filter);
    // Once more after the automation's end, for where it has left the value.
    if (is_automated || was_automated_[i]) ShowValues(row.slider_id, Refresh::kForced);
    was_automated_[i] = is_automated;
    if (row.read) Enable(row.field_id, !is_automated);
  }
}

}  // namespace tervan
