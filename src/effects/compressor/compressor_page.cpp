#include "effects/compressor/compressor_page.h"

#include <algorithm>
#include <initializer_list>
#include <iterator>

#include "effects/compressor/compressor_control.h"
#include "effects/compressor/compressor_filter.h"
#include "resources/ids.h"
#include "ui/controls/meter_messages.h"
#include "ui/pages/number_fields.h"
#include "ui/ui_library.h"

namespace tervan {
namespace {

using ui::kAllControls;
using ui::PositionOf;
using ui::Refresh;
using ui::ScrollCode;

constexpr wchar_t kInfinity[] = L"Inf.";
constexpr int kTenths = 10;

constexpr const ParamDescriptor& DescriptorOf(CompressorParam param) {
  return compressor::kParams[static_cast<size_t>(param)];
}

std::wstring ThresholdText(float threshold_db) { return ui::TenthsText(PositionOf(threshold_db, kTenths)); }

std::wstring AmountText(float amount) {
  return amount >= kAmountInfinite ? kInfinity : ui::TenthsText(PositionOf(amount, kTenths));
}

std::wstring TimeText(float time_ms) { return std::to_wstring(PositionOf(time_ms, 1)); }

std::wstring GainText(float gain_db) {
  const INT32 whole_db = PositionOf(gain_db, 1);
  const bool is_silent = whole_db <= DescriptorOf(CompressorParam::kInputGain).controlMin;
  return is_silent ? ui::kMinusInfinity : ui::IntegerText(whole_db) + ui::kDecibelUnit;
}

double ReadDecimal(HWND edit) {
  constexpr int kMaxLength = 15;
  return ui::ReadNumber(edit, kMaxLength);
}

double ReadAmount(HWND edit) {
  const bool is_infinite = CompareStringOrdinal(ui::WindowText(edit).c_str(), -1, kInfinity, -1, TRUE) == CSTR_EQUAL;
  return is_infinite ? kAmountInfinite : ReadDecimal(edit);
}

// clang-format off
constexpr ui::SliderRow<ICompressorSettings, float> kRows[] = {
    {DescriptorOf(CompressorParam::kThreshold), IDC_COMPRESSOR_THRESHOLD, IDC_COMPRESSOR_THRESHOLD_EDIT, kTenths, -400,
     ui::ScrollTrackbar, 10, ThresholdText, L" dB", ReadDecimal, TERVAN_SLOTS_OF(ICompressorSettings, Threshold)},
    {DescriptorOf(CompressorParam::kAmount), IDC_COMPRESSOR_AMOUNT, IDC_COMPRESSOR_AMOUNT_EDIT, kTenths, 20,
     ui::ScrollTrackbar, 10, AmountText, L":1", ReadAmount, TERVAN_SLOTS_OF(ICompressorSettings, Amount), true},
    {DescriptorOf(CompressorParam::kAttackTime), IDC_COMPRESSOR_ATTACK, IDC_COMPRESSOR_ATTACK_EDIT, 1, 15,
     ui::ScrollTrackbar, 10, TimeText, L" ms", ReadDecimal, TERVAN_SLOTS_OF(ICompressorSettings, AttackTime)},
    {DescriptorOf(CompressorParam::kReleaseTime), IDC_COMPRESSOR_RELEASE, IDC_COMPRESSOR_RELEASE_EDIT, 1, 250,
     ui::ScrollTrackbar, 10, TimeText, L" ms", ReadDecimal, TERVAN_SLOTS_OF(ICompressorSettings, ReleaseTime)},
    {DescriptorOf(CompressorParam::kInputGain), IDC_COMPRESSOR_INPUT_GAIN, IDC_COMPRESSOR_INPUT_GAIN_TEXT, 1, 0,
     ui::ScrollFader, 1, GainText, L"", nullptr, TERVAN_SLOTS_OF(ICompressorSettings, InputGain)},
    {DescriptorOf(CompressorParam::kOutputGain), IDC_COMPRESSOR_OUTPUT_GAIN, IDC_COMPRESSOR_OUTPUT_GAIN_TEXT, 1, 0,
     ui::ScrollFader, 1, GainText, L"", nullptr, TERVAN_SLOTS_OF(ICompressorSettings, OutputGain)},
};
// clang-format on
// The timer's order: the gains first.
constexpr size_t kTimerOrder[] = {4, 5, 0, 1, 2, 3};

struct Switch {
  int check_box_id;
  ui::ParamSlots<ICompressorSettings, INT32> slots;
};
constexpr Switch kSwitches[] = {
    {IDC_COMPRESSOR_AUTO_GAIN, TERVAN_SLOTS_OF(ICompressorSettings, AutoGainCompensation)},
    {IDC_COMPRESSOR_SMOOTH_SATURATION, TERVAN_SLOTS_OF(ICompressorSettings, SmoothSaturation)},
};

struct Meter {
  int id;
  int channels;
  int steps;
  int display_range;
};
constexpr Meter kMeters[] = {
    {IDC_COMPRESSOR_INPUT_METER, 2, 32767, 128},
    {IDC_COMPRESSOR_OUTPUT_METER, 2, 32767, 128},
    {IDC_COMPRESSOR_REDUCTION_METER, 1, 400, 16},
};

// clang-format off
constexpr ui::HelpTopic kHelpTopics[] = {
    {IDC_COMPRESSOR_INPUT_GAIN_LABEL, 30}, {IDC_COMPRESSOR_INPUT_GAIN, 30}, {IDC_COMPRESSOR_INPUT_GAIN_TEXT, 30},
    {IDC_COMPRESSOR_INPUT_METER, 31},
    {IDC_COMPRESSOR_OUTPUT_GAIN_LABEL, 32}, {IDC_COMPRESSOR_OUTPUT_GAIN, 32}, {IDC_COMPRESSOR_OUTPUT_GAIN_TEXT, 32},
    {IDC_COMPRESSOR_OUTPUT_METER, 33},
    {IDC_COMPRESSOR_REDUCTION_LABEL, 34}, {IDC_COMPRESSOR_REDUCTION_METER, 34},
    {IDC_COMPRESSOR_THRESHOLD_LABEL, 35}, {IDC_COMPRESSOR_THRESHOLD, 35}, {IDC_COMPRESSOR_THRESHOLD_EDIT, 35},
    {IDC_COMPRESSOR_AMOUNT_LABEL, 36}, {IDC_COMPRESSOR_AMOUNT, 36}, {IDC_COMPRESSOR_AMOUNT_EDIT, 36},
    {IDC_COMPRESSOR_ATTACK_LABEL, 37}, {IDC_COMPRESSOR_ATTACK, 37}, {IDC_COMPRESSOR_ATTACK_EDIT, 37},
    {IDC_COMPRESSOR_RELEASE_LABEL, 38}, {IDC_COMPRESSOR_RELEASE, 38}, {IDC_COMPRESSOR_RELEASE_EDIT, 38},
    {IDC_COMPRESSOR_AUTO_GAIN, 39},
    {IDC_COMPRESSOR_SMOOTH_SATURATION, 40},
};
// clang-format on

constexpr UINT_PTR kTimers[] = {1, 2};

constexpr ui::PageDescription kDescription{
    .dialog_id = IDD_COMPRESSOR,
    .title_id = IDS_COMPRESSOR_TITLE,
    .help_context = 5,
    .filter_name = kCompressorFilterName,
    .bypass_id = ID_BYPASS,
    .help_topics = kHelpTopics,
    .timers = kTimers,
};

}  // namespace

CompressorPage::CompressorPage(IUnknown* outer) noexcept : SliderPageFor(outer, kDescription, kRows) {}

bool CompressorPage::OnInitPage() {
  SetUpSliders();
  for (const Meter& meter : kMeters) {
    Send(meter.id, ui::kMeterSetChannelCount, 0, meter.channels);
    Send(meter.id, ui::kMeterSetRange, MAKEWPARAM(0, 1), meter.steps);
    Send(meter.id, ui::kMeterSetDisplayRange, 0, meter.display_range);
  }
  ShowLevels(kIdleMeters);
  for (const int id : {IDC_COMPRESSOR_INPUT_GAIN_TEXT, IDC_COMPRESSOR_OUTPUT_GAIN_TEXT}) {
    Send(id, WM_SETFONT, reinterpret_cast<WPARAM>(ui::SmallFont()));
  }
  return true;
}

void CompressorPage::RefreshControls(int id, Refresh refresh) {
  const auto filter = Held();
  RefreshRows(*filter, id, refresh);
  for (const Switch& row : kSwitches) {
    if (id != kAllControls && id != row.check_box_id) continue;
    if (id == kAllControls || refresh == Refresh::kForced) {
      Send(row.check_box_id, BM_SETCHECK, row.slots.Get(*filter) != 0 ? BST_CHECKED : BST_UNCHECKED);
    }
    Enable(row.check_box_id, !row.slots.IsAutomated(*filter));
  }
}

void CompressorPage::OnFilterNotification(int code) {
  constexpr WPARAM kRedraw = TRUE;
  switch (code) {
    case compressor::kStreamingStarted:
      for (const Meter& meter : kMeters) Send(meter.id, ui::kMeterResetClip, kRedraw);
      ShowValues(kAllControls, Refresh::kOthers);
      break;
    case compressor::kSettingsReplaced: ShowValues(kAllControls, Refresh::kOthers); break;
    case compressor::kMetersReset: Send(IDC_COMPRESSOR_REDUCTION_METER, ui::kMeterResetHolds, kRedraw); break;
  }
}

void CompressorPage::OnScroll(UINT message, ScrollCode code, HWND slider) {
  if (message == WM_HSCROLL) Scroll(*Held(), message, code, slider);
}

void CompressorPage::OnCommand(int id, int code) {
  const auto filter = Held();
  if (id == ID_BYPASS) return ToggleBypass(*filter);
  for (const Switch& row : kSwitches) {
    if (id != row.check_box_id) continue;
    (*filter.*row.slots.set)(Send(id, BM_GETCHECK) == BST_CHECKED);
    ShowValues(id, Refresh::kOthers);
  }
  TakeTyped(*filter, id, code, ui::IfUntouched::kNothing);
}

void CompressorPage::OnTimer() {
  const auto filter = Held();
  FollowBypass(*filter);
  for (const size_t row : kTimerOrder) FollowAutomation(*filter, row);
  for (size_t i = 0; i < std::size(kSwitches); ++i) {
    const auto& [id, slots] = kSwitches[i];
    const bool is_automated = slots.IsAutomated(*filter);
    if (is_automated || was_switch_automated_[i]) ShowValues(id, Refresh::kForced);
    was_switch_automated_[i] = is_automated;
    Enable(id, !is_automated);
  }
  CompressorMeters meters = kIdleMeters;
  filter->GetMeters(&meters);
  ShowLevels(meters);
}

// To be painted in their turn: two timers feed the meters twice in each period.
void CompressorPage::ShowLevels(const CompressorMeters& meters) const {
  const auto show = [this](int id, std::initializer_list<double> levels) {
    float values[2] = {};
    std::ranges::transform(levels, values, [](double level) { return static_cast<float>(level); });
    Send(id, ui::kMeterSetLevels, MAKEWPARAM(FALSE, levels.size()), reinterpret_cast<LPARAM>(values));
  };
  show(IDC_COMPRESSOR_INPUT_METER, {meters.input_left, meters.input_right});
  show(IDC_COMPRESSOR_OUTPUT_METER, {meters.output_left, meters.output_right});
  show(IDC_COMPRESSOR_REDUCTION_METER, {meters.reduction});
}

}  // namespace tervan
