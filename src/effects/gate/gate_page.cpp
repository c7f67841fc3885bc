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
double ReadShortInteger(HWND edit) {
  return static_cast<INT32>(GetDlgItemInt(GetParent(edit), GetDlgCtrlID(edit), nullptr, FALSE));
}

double ReadGroupedInteger(HWND edit) {
  constexpr int kMaxLength = 40;
  return ui::ReadInteger(edit, kMaxLength);
}

// The sliders' positions are control values.
// clang-format off
constexpr ui::SliderRow<IGateSettings, INT32> kRows[] = {
    {DescriptorOf(GateParam::kThresholdLevel), IDC_GATE_THRESHOLD, IDC_GATE_THRESHOLD_TEXT, 1, -400,
     ui::ScrollFader, 10, LevelText, L"", nullptr, TERVAN_SLOTS_OF(IGateSettings, ThresholdLevel)},
    {DescriptorOf(GateParam::kAttackTime), IDC_GATE_ATTACK, IDC_GATE_ATTACK_EDIT, 1, 250,
     ui::ScrollTrackbar, 10, ui::IntegerText, L" ms", ReadShortInteger, TERVAN_SLOTS_OF(IGateSettings, AttackTime)},
    {DescriptorOf(GateParam::kReleaseTime), IDC_GATE_RELEASE, IDC_GATE_RELEASE_EDIT, 1, 2500,
     ui::ScrollTrackbar, 100, ui::IntegerText, L" ms", ReadGroupedInteger,
     TERVAN_SLOTS_OF(IGateSettings, ReleaseTime)},
};
// clang-format on

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

GatePage::GatePage(IUnknown* outer) noexcept : SliderPageFor(outer, kDescription, kRows) {}

bool GatePage::OnInitPage() {
  SetUpSliders();
  return true;
}

void GatePage::RefreshControls(int id, Refresh refresh) { RefreshRows(*Held(), id, refresh); }

void GatePage::OnFilterNotification(int) { ShowValues(kAllControls, Refresh::kOthers); }

void GatePage::OnScroll(UINT message, ScrollCode code, HWND slider) { Scroll(*Held(), message, code, slider); }

void GatePage::OnCommand(int id, int code) {
  const auto filter = Held();
  if (id == ID_BYPASS) {
    ToggleBypass(*filter);
    ShowValues(kAllControls, Refresh::kOthers);
    return;
  }
  TakeTyped(*filter, id, code, ui::IfUntouched::kSet);
}

void GatePage::OnTimer() {
  const auto filter = Held();
  FollowBypass(*filter);
  for (size_t i = std::size(kRows); i-- > 0;) FollowAutomation(*filter, i);
}

}  // namespace tervan
