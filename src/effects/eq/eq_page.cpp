#include "effects/eq/eq_page.h"

#include <algorithm>
#include <utility>

#include "effects/eq/eq_filter.h"
#include "resources/ids.h"
#include "support/saturate.h"
#include "ui/control_window.h"
#include "ui/controls/eq_graph_messages.h"
#include "ui/pages/number_fields.h"
#include "ui/pages/press_commands.h"
#include "ui/ui_library.h"

namespace tervan {
namespace {

using eq::BandRow;
using ui::kAllControls;
using ui::Refresh;
using ui::ScrollCode;

using BandSlots = ui::ParamSlots<IEqSettings, INT32>;

#define TERVAN_BAND_SLOTS_OF(Setting)                                                              \
  {                                                                                                \
    TERVAN_SLOTS_OF(IEqSettings, Band1##Setting), TERVAN_SLOTS_OF(IEqSettings, Band2##Setting),    \
        TERVAN_SLOTS_OF(IEqSettings, Band3##Setting), TERVAN_SLOTS_OF(IEqSettings, Band4##Setting) \
  }
// In the order of BandRow.
constexpr BandSlots kSlots[eq::kParamsPerBand][kEqBands] = {
    TERVAN_BAND_SLOTS_OF(Frequency), TERVAN_BAND_SLOTS_OF(Gain), TERVAN_BAND_SLOTS_OF(Bandwidth),
    TERVAN_BAND_SLOTS_OF(Rolloff),   TERVAN_BAND_SLOTS_OF(Mode), TERVAN_BAND_SLOTS_OF(Enable),
};
#undef TERVAN_BAND_SLOTS_OF

// What each number is in a band, and how the filter is asked for it.
struct BandField {
  std::int32_t EqBand::*field;
  HRESULT (STDMETHODCALLTYPE IEqSettings::*get)(int* value, int band);
};
constexpr BandField kBandFields[eq::kParamsPerBand] = {
    {&EqBand::frequency, &IEqSettings::GetBandFrequency}, {&EqBand::gain, &IEqSettings::GetBandGain},
    {&EqBand::bandwidth, &IEqSettings::GetBandBandwidth}, {&EqBand::rolloff, &IEqSettings::GetBandRolloff},
    {&EqBand::mode, &IEqSettings::GetBandMode},           {&EqBand::enable, &IEqSettings::GetBandEnable},
};

constexpr EqSliderRange kGainRange{-150, 150, 0};
constexpr EqSliderRange kFrequencyRange{20, 20000, 100};
constexpr EqSliderRange kBandwidthRange{1, 40, 10};
constexpr EqSliderRange kRolloffRange{1, 4, 2};
constexpr int kLineStep = 1;
constexpr int kPageSteps[eq::kParamsPerBand] = {100, 10, 10,
                                                1};  // in the order of BandRow: the first four have sliders
constexpr int kDefaultFrequency_hz[kEqBands] = {100, 300, 1000, 5000};

constexpr int kFullCut = -150;  // tenths of a dB: the lowest gain means none at all
constexpr int kModes = 3;
constexpr double kDecibelsPerRolloff = 6.0;
constexpr double kRolloffsPerDecibel = 0.16666666666666666;
constexpr int kMaxTextLength = 15;

// What the press of the check box comes as: the edit begins, then the band is switched; the release ends it.
constexpr ui::PressCommands kEnabledPress{.begin = 41004, .press = 41003, .end = 41005};

constexpr int kBandwidthTopic = 20;
constexpr int kRolloffTopic = 27;
constexpr int kRolloffHelpId = 4044;  // no control has it: the rolloff shares those of the bandwidth
constexpr ui::HelpTopic kHelpTopics[] = {
    {IDC_EQ_GRAPH, 23},
    {IDC_EQ_TABS, 26},
    {IDC_EQ_ENABLED, 24},
    {IDC_EQ_MODE, 25},
    {IDC_EQ_FREQUENCY_LABEL, 22},
    {IDC_EQ_FREQUENCY, 22},
    {IDC_EQ_FREQUENCY_EDIT, 22},
    {IDC_EQ_GAIN_LABEL, 21},
    {IDC_EQ_GAIN, 21},
    {IDC_EQ_GAIN_EDIT, 21},
    {IDC_EQ_WIDTH_LABEL, kBandwidthTopic},
    {IDC_EQ_WIDTH, kBandwidthTopic},
    {IDC_EQ_WIDTH_EDIT, kBandwidthTopic},
    {kRolloffHelpId, kRolloffTopic},
};

constexpr UINT_PTR kTimers[] = {0};

constexpr ui::PageDescription kDescription{
    .dialog_id = IDD_EQ,
    .title_id = IDS_EQ_TITLE,
    .help_context = 3,
    .filter_name = kEqFilterName,
    .bypass_id = ID_EQ_BYPASS,
    .help_topics = kHelpTopics,
    .timers = kTimers,
};

EqBand ReadBand(IEqSettings& filter, int band) {
  EqBand values{};
  for (const BandField& row : kBandFields) (filter.*row.get)(&(values.*row.field), band);
  return values;
}

EqBands ReadBands(IEqSettings& filter) {
  EqBands bands;
  for (std::size_t i = 0; i < bands.size(); ++i) bands[i] = ReadBand(filter, static_cast<int>(i));
  return bands;
}

int SelectedBand(IEqSettings& filter) {
  int band = 0;
  filter.GetSelectedBand(&band);
  return std::clamp(band, 0, static_cast<int>(kEqBands) - 1);
}

BandRow WidthRow(const EqBand& band) { return band.IsBand() ? BandRow::kBandwidth : BandRow::kRolloff; }

std::wstring GainText(const EqBand& band) {
  return band.gain <= kFullCut ? ui::kMinusInfinity : ui::TenthsText(band.gain);
}

std::wstring WidthText(const EqBand& band) {
  if (band.IsBand()) return ui::TenthsText(band.bandwidth);
  return ui::IntegerText(SaturatingTruncate<INT32>(band.rolloff * kDecibelsPerRolloff));
}

std::wstring FrequencyText(const EqBand& band) { return ui::IntegerText(band.frequency); }

// A slider, the field beside it and what they show of a band.
struct Display {
  int slider_id;
  int field_id;
  BandRow row;
  std::wstring (*text)(const EqBand& band);
  const wchar_t* unit;  // what the text leaves out, for screen readers

  INT32 PositionOf(const EqBand& band) const { return band.*kBandFields[row].field; }
  const BandSlots& SlotsOf(int band) const { return kSlots[row][band]; }
};
using Displays = std::array<Display, 3>;

// In the order in which they are refreshed.
Displays DisplaysOf(const EqBand& band) {
  return {{{IDC_EQ_GAIN, IDC_EQ_GAIN_EDIT, BandRow::kGain, GainText, ui::kDecibelUnit},
           {IDC_EQ_WIDTH, IDC_EQ_WIDTH_EDIT, WidthRow(band), WidthText, band.IsBand() ? L" oct" : L" dB/oct"},
           {IDC_EQ_FREQUENCY, IDC_EQ_FREQUENCY_EDIT, BandRow::kFrequency, FrequencyText, L" Hz"}}};
}

// A typed number as a value of this row.
INT32 ReadField(HWND edit, BandRow row) {
  const double number = ui::ReadNumber(edit, kMaxTextLength);
  switch (row) {
    case BandRow::kGain:
      if (ui::WindowText(edit) == ui::kMinusInfinity) return kFullCut;
      return SaturatingTruncate<INT32>(number * 10.0);
    case BandRow::kBandwidth: return SaturatingTruncate<INT32>(number * 10.0);
    case BandRow::kRolloff: return SaturatingTruncate<INT32>(number * kRolloffsPerDecibel);
    default: return SaturatingTruncate<INT32>(number + 0.5);
  }
}

}  // namespace

EqPage::EqPage(IUnknown* outer) noexcept : AutomatedPageFor(outer, kDescription) { edited_band_.fill(kNoBand); }

bool EqPage::OnInitPage() {
  if (!graph_.Create(Dialog(), IDC_EQ_GRAPH)) return false;
  if (!tabs_.Create(Dialog(), IDC_EQ_TABS, IDC_EQ_BAND_BOX, IDC_EQ_WIDTH_EDIT)) return false;
  SetUpScaleLabels();
  SetRange(IDC_EQ_GAIN, kGainRange);
  SetRange(IDC_EQ_WIDTH, kBandwidthRange);
  SetRange(IDC_EQ_FREQUENCY, kFrequencyRange);
  for (int mode = 0; mode < kModes; ++mode) {
    Send(IDC_EQ_MODE, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(ui::ResourceText(IDS_EQ_MODE_FIRST + mode).c_str()));
  }
  ui::SendPressCommands(ControlOf(IDC_EQ_ENABLED), kEnabledPress);
  return true;
}

void EqPage::SetUpScaleLabels() const {
  for (int id = IDC_EQ_FIRST_SCALE_LABEL; id <= IDC_EQ_LAST_SCALE_LABEL; ++id) {
    Send(id, WM_SETFONT, reinterpret_cast<WPARAM>(ui::ScaleFont()), TRUE);
  }
  // Some fonts' signs are wide: the gains take the room up to the edge.
  for (int id = IDC_EQ_FIRST_GAIN_LABEL; id <= IDC_EQ_LAST_SCALE_LABEL; ++id) {
    RECT bounds;
    if (!GetWindowRect(ControlOf(id), &bounds)) continue;
    MapWindowPoints(nullptr, Dialog(), reinterpret_cast<POINT*>(&bounds), 2);
    MoveWindow(ControlOf(id), 0, bounds.top, bounds.right, bounds.bottom - bounds.top, FALSE);
  }
}

void EqPage::SetRange(int slider_id, const EqSliderRange& range) const {
  Send(slider_id, ui::kSliderSetMinimum, 0, range.minimum);
  Send(slider_id, ui::kSliderSetMaximum, 0, range.maximum);
  Send(slider_id, ui::kSliderSetDefault, 0, range.default_position);
}

void EqPage::RefreshControls(int id, Refresh refresh) {
  const auto filter = Held();
  const bool all = id == kAllControls || id == ID_FILTER_CHANGED;
  const auto concerns = [=](int control_id) { return all || id == control_id; };
  const auto moves = [=](int control_id) { return id != control_id || refresh == Refresh::kForced; };
  if (all) RefreshGraph(*filter);
  const int selected = SelectedBand(*filter);
  const EqBand band = ReadBand(*filter, selected);
  if (concerns(IDC_EQ_MODE)) RefreshMode(band, moves(IDC_EQ_MODE));
  const Displays displays = DisplaysOf(band);
  for (std::size_t i = 0; i < displays.size(); ++i) {
    const Display& display = displays[i];
    if (!concerns(display.slider_id) && !concerns(display.field_id)) continue;
    shown_[i] = display.text(band);
    ShowText(display.slider_id, shown_[i] + display.unit);
    ShowText(display.field_id, shown_[i]);
    if (moves(display.slider_id)) Send(display.slider_id, ui::kSliderSetPosition, TRUE, display.PositionOf(band));
  }
  if (concerns(IDC_EQ_ENABLED)) RefreshEnable(*filter, selected, band, moves(IDC_EQ_ENABLED));
  if (concerns(IDC_EQ_TABS)) RefreshSelection(selected);
}

void EqPage::RefreshGraph(IEqSettings& filter) {
  const EqBands bands = ReadBands(filter);
  graph_.Show(bands);
  tabs_.Show(bands);
}

// The third slider belongs to the bandwidth or to the rolloff.
void EqPage::RefreshMode(const EqBand& band, bool moves_list) {
  const std::wstring label = ui::ResourceText(band.IsBand() ? IDS_EQ_BANDWIDTH_LABEL : IDS_EQ_ROLLOFF_LABEL);
  if (ui::WindowText(ControlOf(IDC_EQ_WIDTH_LABEL)) != label) {
    ShowText(IDC_EQ_WIDTH_LABEL, label);
    SetRange(IDC_EQ_WIDTH, band.IsBand() ? kBandwidthRange : kRolloffRange);
  }
  if (moves_list) Send(IDC_EQ_MODE, CB_SETCURSEL, std::clamp(band.mode, 1, kModes) - 1);
}

void EqPage::RefreshEnable(IEqSettings& filter, int selected, const EqBand& band, bool moves_mark) {
  const bool is_enabled = band.enable != 0;
  if (moves_mark) Send(IDC_EQ_ENABLED, BM_SETCHECK, is_enabled ? BST_CHECKED : BST_UNCHECKED);
  for (const int id : {IDC_EQ_GAIN, IDC_EQ_GAIN_LABEL, IDC_EQ_FREQUENCY, IDC_EQ_FREQUENCY_LABEL, IDC_EQ_MODE,
                       IDC_EQ_WIDTH, IDC_EQ_WIDTH_LABEL}) {
    Enable(id, is_enabled);
  }
  for (const Display& display : DisplaysOf(band)) {
    Enable(display.field_id, is_enabled && !display.SlotsOf(selected).IsAutomated(filter));
  }
}

// The graph's choice follows the filter's, too: somebody else may have made it.
void EqPage::RefreshSelection(int band) {
  if (tabs_.Selected() != band) tabs_.Select(band);
  if (graph_.SelectedBand() != band) graph_.Select(band);
}

void EqPage::OnFilterNotification(int code) {
  if (code == kEqTraits.settings_replaced_code) graph_.Select(0);
  ShowValues(kAllControls, Refresh::kOthers);
}

void EqPage::OnCommand(int id, int code) {
  const auto filter = Held();
  switch (id) {
    case ID_EQ_BYPASS:
      ToggleBypass(*filter);
      ShowValues(kAllControls, Refresh::kOthers);
      break;
    case ID_EQ_GRAPH: OnGraph(*filter, code); break;
    case IDC_EQ_TABS:
      if (tabs_.Selected() >= 0) graph_.Select(tabs_.Selected());
      break;
    case IDC_EQ_MODE: OnMode(*filter, code); break;
    case IDC_EQ_ENABLED: OnEnabled(*filter, code); break;
    default:
      if (code == EN_KILLFOCUS) OnField(*filter, id);
  }
}

void EqPage::OnGraph(IEqSettings& filter, int code) {
  switch (code) {
    case ui::kGraphChanged: OnGraphChanged(filter); break;
    case ui::kGraphSelected: OnGraphSelected(filter); break;
    case ui::kGraphEditEnded: EndEdits(filter); break;
  }
}

void EqPage::OnGraphSelected(IEqSettings& filter) {
  const int band = graph_.SelectedBand();
  if (band < 0) return;
  Send(IDC_EQ_FREQUENCY, ui::kSliderSetDefault, 0, kDefaultFrequency_hz[band]);
  const bool is_news = band != SelectedBand(filter);
  filter.SetSelectedBand(band);
  if (is_news) ShowValues(kAllControls, Refresh::kOthers);
}

void EqPage::OnGraphChanged(IEqSettings& filter) {
  const int band = SelectedBand(filter);
  for (const BandRow row : {BandRow::kGain, BandRow::kFrequency, BandRow::kBandwidth, BandRow::kEnable}) {
    BeginEdit(filter, row, band);
  }
  WriteGraph(filter);
  // A menu, a double click or a drag that was taken back is over with this.
  if (!graph_.IsBeingDragged()) EndEdits(filter);
  ShowValues(kAllControls, Refresh::kOthers);
}

// Writes what the user has changed. The rest may meanwhile be what somebody else has set, or beyond what a node shows.
void EqPage::WriteGraph(IEqSettings& filter) {
  const EqBands before = graph_.Shown();
  const EqBands now = graph_.Edited();
  for (std::size_t i = 0; i < now.size(); ++i) {
    for (const BandRow row :
         {BandRow::kFrequency, BandRow::kGain, BandRow::kEnable, BandRow::kMode, WidthRow(now[i])}) {
      const auto field = kBandFields[row].field;
      if (now[i].*field != before[i].*field) Set(filter, row, static_cast<int>(i), now[i].*field);
    }
  }
}

void EqPage::OnMode(IEqSettings& filter, int code) {
  const int band = SelectedBand(filter);
  switch (code) {
    case CBN_SELCHANGE: {
      const auto mode = static_cast<INT32>(Send(IDC_EQ_MODE, CB_GETCURSEL) + 1);
      if (mode > 0) Set(filter, BandRow::kMode, band, mode);
      ShowValues(kAllControls, Refresh::kOthers);
      break;
    }
    case CBN_DROPDOWN:
      is_mode_list_open_ = true;
      BeginEdit(filter, BandRow::kMode, band);
      break;
    case CBN_CLOSEUP:
      is_mode_list_open_ = false;
      EndEdit(filter, BandRow::kMode);
      break;
  }
}

void EqPage::OnEnabled(IEqSettings& filter, int code) {
  const int band = SelectedBand(filter);
  const BandSlots& slots = kSlots[BandRow::kEnable][band];
  switch (code) {
    case kEnabledPress.begin: BeginEdit(filter, BandRow::kEnable, band); break;
    case kEnabledPress.press:
      (filter.*slots.set)(slots.Get(filter) == 0);
      ShowValues(kAllControls, Refresh::kOthers);
      break;
    case kEnabledPress.end:
    case BN_CLICKED: EndEdit(filter, BandRow::kEnable); break;
  }
}

// A field that the user has left as it was says nothing new: what it shows may be rounded.
void EqPage::OnField(IEqSettings& filter, int id) {
  const int selected = SelectedBand(filter);
  const Displays displays = DisplaysOf(ReadBand(filter, selected));
  for (std::size_t i = 0; i < displays.size(); ++i) {
    if (id != displays[i].field_id) continue;
    const HWND edit = ControlOf(id);
    if (ui::WindowText(edit) == shown_[i]) return;
    Set(filter, displays[i].row, selected, ReadField(edit, displays[i].row));
    ShowValues(kAllControls, Refresh::kOthers);
    return;
  }
}

void EqPage::OnScroll(UINT message, ScrollCode code, HWND slider) {
  const auto filter = Held();
  const int id = GetDlgCtrlID(slider);
  const int selected = SelectedBand(*filter);
  for (const Display& display : DisplaysOf(ReadBand(*filter, selected))) {
    if (id != display.slider_id) continue;
    const INT32 position = ui::ScrollTrackbar(message, code, slider, kLineStep, kPageSteps[display.row]);
    if (code != ScrollCode::kEnd) BeginEdit(*filter, display.row, selected);
    Set(*filter, display.row, selected, position);
    if (code == ScrollCode::kEnd) EndEdit(*filter, display.row);
    if (IsShowing(*filter)) RefreshGraph(*filter);
    ShowValues(id, Refresh::kOthers);
  }
}

void EqPage::OnTimer() {
  const auto filter = Held();
  if (filter->PollChanged() == S_OK) ShowValues(kAllControls, Refresh::kForced);
  FollowAutomation(*filter);
  FollowBypass(*filter);
}

void EqPage::FollowAutomation(IEqSettings& filter) {
  const int selected = SelectedBand(filter);
  const EqBand band = ReadBand(filter, selected);
  const auto is_automated = [&](BandRow row) { return kSlots[row][selected].IsAutomated(filter); };
  for (const Display& display : DisplaysOf(band)) {
    if (is_automated(display.row)) ShowValues(display.slider_id, Refresh::kForced);
    if (band.enable != 0) Enable(display.field_id, !is_automated(display.row));
  }
  if (is_automated(BandRow::kMode) && !is_mode_list_open_) {
    ShowValues(IDC_EQ_MODE, Refresh::kForced);
    ShowValues(IDC_EQ_WIDTH, Refresh::kForced);
  }
  if (is_automated(BandRow::kEnable)) ShowValues(IDC_EQ_ENABLED, Refresh::kForced);

  bool any = false;
  for (const auto& row : kSlots) {
    any = std::ranges::any_of(row, [&](const BandSlots& slots) { return slots.IsAutomated(filter); }) || any;
  }
  if (any) RefreshGraph(filter);
  // Once more after the automation's end, for where it has left the values.
  if (was_automated_ && !any) ShowValues(kAllControls, Refresh::kForced);
  was_automated_ = any;
}

void EqPage::OnLeave() {
  const auto filter = Held();
  Send(IDC_EQ_MODE, CB_SHOWDROPDOWN, FALSE);  // nothing else closes it when it has no focus to lose
  is_mode_list_open_ = false;
  EndEdits(*filter);
}

void EqPage::Set(IEqSettings& filter, BandRow row, int band, INT32 value) {
  if (IsShowing(filter)) (filter.*kSlots[row][band].set)(value);
}

void EqPage::BeginEdit(IEqSettings& filter, BandRow row, int band) {
  if (edited_band_[row] != band) EndEdit(filter, row);
  if (!IsShowing(filter)) return;
  edited_band_[row] = band;  // first: whoever is told of the edit may close the page, which ends it
  (filter.*kSlots[row][band].begin_edit)();
}

void EqPage::EndEdit(IEqSettings& filter, BandRow row) {
  const int band = std::exchange(edited_band_[row], kNoBand);
  if (band != kNoBand) (filter.*kSlots[row][band].end_edit)();
}

void EqPage::EndEdits(IEqSettings& filter) {
  for (std::uint32_t row = 0; row < eq::kParamsPerBand; ++row) EndEdit(filter, static_cast<BandRow>(row));
}

// The width is a bandwidth or a rolloff.
int EqPage::TopicInstead(int topic) {
  const auto filter = Held();
  const bool is_shelf = filter && !ReadBand(*filter, SelectedBand(*filter)).IsBand();
  return topic == kBandwidthTopic && is_shelf ? kRolloffTopic : topic;
}

}  // namespace tervan
