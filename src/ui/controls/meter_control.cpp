#include "ui/controls/meter_control.h"

#include <oleacc.h>

#include <algorithm>
#include <cmath>

#include "ui/code_page.h"
#include "ui/controls/meter_menu.h"
#include "ui/controls/meter_ranges.h"
#include "ui/number_labels.h"
#include "ui/ui_library.h"

namespace tervan::ui {
namespace {

constexpr std::size_t kMaxLabelFormat = 15;
constexpr std::string_view kOneDecimal = "$.1f";
constexpr int kKeyboardMenuOffsetPx = 16;

bool Covers(const Rect& outer, const Rect& inner) {
  return outer.left <= inner.left && outer.top <= inner.top && outer.right >= inner.right &&
         outer.bottom >= inner.bottom;
}

}  // namespace

const ControlClass kMeterClass = {
    .name = kMeterClassName,
    .background = COLOR_BTNFACE,
    .procedure = WindowProcOf<MeterControl>,
};

MeterControl::MeterControl(HWND window, const CREATESTRUCTW& creation)
    : ControlWindow(window, creation.hwndParent),
      levels_((static_cast<DWORD>(creation.style) & kMeterInverted) != 0),
      label_format_(kOneDecimal) {}

LRESULT MeterControl::OnMessage(UINT message, WPARAM wparam, LPARAM lparam) {
  if (message >= kMeterGetLevels && message <= kMeterChangeOptions) return OnMeterMessage(message, wparam, lparam);
  switch (message) {
    case WM_PAINT: return OnPaint();
    case WM_PRINTCLIENT: return OnPrint(reinterpret_cast<HDC>(wparam));
    case WM_ERASEBKGND: return TRUE;  // every pixel is painted
    case WM_SIZE:
    case WM_SYSCOLORCHANGE:
    case WM_SETTINGCHANGE:
    case WM_ENABLE:
    case WM_SETFOCUS:
    case WM_KILLFOCUS: LookChanged(false); return 0;
    case WM_STYLECHANGED:
      levels_.SetInverted(HasStyle(kMeterInverted));
      LookChanged(false);
      return 0;
    case WM_SETFONT:
      font_ = reinterpret_cast<HFONT>(wparam);
      if (LOWORD(lparam) != 0) Redraw();
      return 0;
    case WM_GETFONT: return reinterpret_cast<LRESULT>(font_);
    case WM_GETDLGCODE: return DLGC_STATIC;
    case WM_NCHITTEST: return OnHitTest(PointFrom(lparam));
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK: OnPress(PointFrom(lparam)); break;
    case WM_KEYDOWN: return OnKey(wparam, lparam);
    case WM_CONTEXTMENU: return OnContextMenu(wparam, lparam);
    case WM_MENUSELECT: return OnMenuSelect(wparam, lparam);
    case WM_ENTERIDLE: return SendMessageW(Parent(), message, wparam, lparam);
    case WM_DESTROY: OnDestroy(); return 0;
  }
  return Default(message, wparam, lparam);
}

LRESULT MeterControl::OnMeterMessage(UINT message, WPARAM wparam, LPARAM lparam) {
  const auto number = static_cast<DWORD>(lparam);
  const bool is_on = number != 0;
  const bool at_once = LOWORD(wparam) != 0;
  const WORD high = HIWORD(wparam);
  switch (message) {
    case kMeterGetLevels: return GetValues(wparam, lparam, [](const MeterChannel& channel) { return channel.level; });
    case kMeterSetLevels: return SetValues(wparam, lparam, at_once, &MeterLevels::SetLevel);
    case kMeterGetExtremes:
      return GetValues(wparam, lparam, [](const MeterChannel& channel) { return channel.extreme; });
    case kMeterSetExtremes: return SetValues(wparam, lparam, false, &MeterLevels::SetExtreme);
    case kMeterGetRange: return GetRange(PointerIn<INT32>(static_cast<LPARAM>(wparam)), PointerIn<void>(lparam));
    case kMeterSetRange: return SetRange(static_cast<INT32>(lparam), high != 0);
    case kMeterGetDisplayRange: return display_range_;
    case kMeterSetDisplayRange: return SetDisplayRange(number, at_once);
    case kMeterGetStyle: return Style();
    case kMeterChangeStyle: return ChangeStyle(LOWORD(wparam), is_on);
    case kMeterGetChannelCount: return levels_.ChannelCount();
    case kMeterSetChannelCount: return SetChannelCount(number, at_once);
    case kMeterGetLabelFormat: return GetLabelFormat(wparam, PointerIn<char>(lparam));
    case kMeterSetLabelFormat: return SetLabelFormat(PointerIn<const char>(lparam), (high & 1) != 0);
    case kMeterResetClip: return ResetClip(at_once);
    case kMeterResetHolds: return ResetHolds(at_once);
    case kMeterGetPreferredSize: return PreferredThickness();
    case kMeterGetBarBounds: return GetBarBounds(LOWORD(wparam), high, PointerIn<RECT>(lparam));
    case kMeterSwitchPlainBars: return Switch(has_plain_bars_, is_on, at_once);
    case kMeterSwitchNoTicks: return Switch(has_no_ticks_, is_on, at_once);
    case kMeterGetOptions: return options_ & static_cast<DWORD>(wparam);
    case kMeterChangeOptions: return ChangeOptions(static_cast<DWORD>(wparam), is_on);
    default: return 0;
  }
}

// Without a count the first channel's value is the answer.
LRESULT MeterControl::GetValues(WPARAM wparam, LPARAM lparam, LevelOf value) const {
  if (HIWORD(wparam) == 0) return value(levels_.Channel(0));
  auto* const values = PointerIn<INT32>(lparam);
  if (!values) return 0;
  const int count = std::min<int>(HIWORD(wparam), levels_.ChannelCount());
  for (int channel = 0; channel < count; ++channel) values[channel] = value(levels_.Channel(channel));
  return count;
}

LRESULT MeterControl::SetValues(WPARAM wparam, LPARAM lparam, bool at_once, SetLevelOf set) {
  const auto* const values = PointerIn<const INT32>(lparam);
  if (HIWORD(wparam) == 0) {
    (levels_.*set)(0, static_cast<INT32>(lparam));
  } else if (values) {
    const int count = std::min<int>(HIWORD(wparam), levels_.ChannelCount());
    for (int channel = 0; channel < count; ++channel) (levels_.*set)(channel, values[channel]);
  }
  LevelsChanged(at_once, !at_once && IsOnScreen());
  return 0;
}

LRESULT MeterControl::GetRange(INT32* is_float, void* range) const {
  if (range && levels_.IsFloat()) {
    *static_cast<float*>(range) = static_cast<float>(1.0 / levels_.Steps());
  } else if (range) {
    *static_cast<INT32*>(range) = levels_.Steps();
  }
  if (range && is_float) *is_float = levels_.IsFloat() ? -1 : 0;
  return levels_.Steps();
}

LRESULT MeterControl::SetRange(INT32 steps, bool is_float) {
  levels_.SetRange(steps, is_float);
  LookChanged(false);
  return levels_.Steps();
}

LRESULT MeterControl::SetDisplayRange(DWORD ratio, bool at_once) {
  display_range_ = ratio;
  LookChanged(at_once);
  return ratio;
}

// The window's own style is the only copy; WM_STYLECHANGED does the rest.
LRESULT MeterControl::ChangeStyle(DWORD bits, bool set) {
  const auto style = static_cast<DWORD>(GetWindowLongW(window(), GWL_STYLE));
  SetWindowLongW(window(), GWL_STYLE, static_cast<LONG>(set ? style | bits : style & ~bits));
  return Style();
}

LRESULT MeterControl::SetChannelCount(DWORD count, bool at_once) {
  const int channels = levels_.SetChannelCount(count);
  LookChanged(at_once);
  return channels;
}

LRESULT MeterControl::GetLabelFormat(std::size_t size, char* buffer) const {
  if (!buffer || size == 0) return 0;
  buffer[label_format_.copy(buffer, size - 1)] = '\0';
  return lstrlenA(buffer);
}

LRESULT MeterControl::SetLabelFormat(const char* format, bool has_unit) {
  has_unit_ = has_unit;
  if (format) label_format_.assign(format, strnlen(format, kMaxLabelFormat));
  LookChanged(false);
  return 0;
}

LRESULT MeterControl::ResetClip(bool at_once) {
  levels_.ResetClip();
  LevelsChanged(at_once);
  return 0;
}

LRESULT MeterControl::ResetHolds(bool at_once) {
  levels_.ResetHolds();
  LevelsChanged(at_once);
  return 0;
}

LRESULT MeterControl::PreferredThickness() const {
  const int strip_px = HasStyle(kMeterMeasureLabels) ? LabelStrip(IsVertical()) : 0;
  return PreferredMeterThickness(levels_.ChannelCount(), strip_px, ScreenDpi());
}

LRESULT MeterControl::GetBarBounds(WORD what, int channel, RECT* bounds) const {
  if (what != kMeterBarArea || channel >= levels_.ChannelCount() || !bounds) return FALSE;
  *bounds = ToRECT(Look().layout.bars[static_cast<std::size_t>(channel)]);
  return TRUE;
}

LRESULT MeterControl::Switch(bool& value, bool on, bool at_once) {
  value = on;
  LookChanged(at_once);
  return on;
}

LRESULT MeterControl::ChangeOptions(DWORD mask, bool set) {
  options_ = set ? options_ | mask : options_ & ~mask;
  LookChanged(false);
  return options_;
}

bool MeterControl::IsVertical() const {
  if ((options_ & kMeterAutoOrientation) == 0) return HasStyle(kMeterVertical);
  const Rect client = PartBounds(CHILDID_SELF);
  return client.Height() > client.Width();
}

std::uint32_t MeterControl::ShownRatio() const {
  return display_range_ > 0 ? display_range_ : static_cast<std::uint32_t>(levels_.Steps());
}

int MeterControl::LabelStrip(bool is_vertical) const {
  return LabelStripThickness(window(), is_vertical, has_unit_, FromSystemCodePage(label_format_.c_str()), ShownRatio());
}

const MeterLook& MeterControl::Look() const {
  if (look_) return *look_;
  const Rect client = PartBounds(CHILDID_SELF);
  const bool is_vertical = IsVertical();
  const MeterShape shape{.client = {client.Width(), client.Height()},
                         .dpi = ScreenDpi(),
                         .is_vertical = is_vertical,
                         .channel_count = levels_.ChannelCount(),
                         .has_clip_indicators = HasStyle(kMeterClip),
                         .label_strip_px = HasStyle(kMeterShowLabels) ? LabelStrip(is_vertical) : 0};
  look_ = {.layout = ArrangeMeter(shape),
           .scale = MeterScale(levels_.Steps(), levels_.IsFloat(), display_range_),
           .dpi = shape.dpi,
           .is_inverted = levels_.IsInverted(),
           .is_enabled = IsWindowEnabled(window()) != FALSE,
           .is_focused = GetFocus() == window(),
           .has_plain_bars = has_plain_bars_,
           .has_ticks = !has_no_ticks_,
           .has_unit = has_unit_,
           .label_format = FromSystemCodePage(label_format_.c_str())};
  return *look_;
}

// A bar reaches from the quiet end to its level. What glows is the bar itself, or, for a gain reduction, what it lacks
// to full scale: a compressor at rest is dark, and its reduction grows from the 0 dB end down.
BarReadings MeterControl::ReadingsOf(const MeterLevels& levels) const {
  const MeterLook& look = Look();
  const int length = look.layout.BarLength();
  const auto place_of = [&](std::int32_t level) { return look.scale.LitLength(level, length); };
  // No reduction is nothing to be marked.
  const auto marker_at = [&](const HeldLevel& held) {
    const int place = place_of(held.level);
    return levels.IsInverted() && place == length ? 0 : place;
  };
  BarReadings readings{};
  for (int channel = 0; channel < levels.ChannelCount(); ++channel) {
    const MeterChannel& state = levels.Channel(channel);
    BarReading& reading = readings[static_cast<std::size_t>(channel)];
    const int place = place_of(state.level);
    if (!levels.IsInverted()) {
      reading.lit_to_px = place;
    } else if (state.has_signal) {
      reading.lit_from_px = place;
      reading.lit_to_px = length;
    }
    if (HasStyle(kMeterHoldPeaks)) reading.peak_px = marker_at(state.peak);
    if (HasStyle(kMeterHoldValleys)) reading.valley_px = marker_at(state.valley);
    reading.is_clipped = levels.IsClipped(channel);
  }
  return readings;
}

void MeterControl::LevelsChanged(bool at_once, bool is_on_screen) {
  if (!is_on_screen) {
    const RECT well = ToRECT(Look().layout.well);
    InvalidateRect(window(), &well, FALSE);
  }
  if (at_once) UpdateWindow(window());
  AnnounceClips();
}

void MeterControl::LookChanged(bool at_once) {
  look_.reset();
  on_screen_.reset();
  picture_.Discard();
  Invalidate();
  if (at_once) UpdateWindow(window());
  AnnounceClips();
}

// Levels change too often to be told of each time.
void MeterControl::AnnounceClips() {
  if (is_shown_clipped_ == levels_.IsAnyClipped()) return;
  is_shown_clipped_ = !is_shown_clipped_;
  Announce(EVENT_OBJECT_VALUECHANGE);
}

LRESULT MeterControl::OnPaint() {
  const WindowPainting painting(window());
  if (!painting.Get()) return 0;
  on_screen_.reset();
  levels_.Hold(GetTickCount());
  const BarReadings readings = ReadingsOf(levels_);
  const bool is_whole = Covers(painting.Dirty(), Look().layout.well);
  if (Paint(painting.Get(), painting.Dirty(), readings) && is_whole) on_screen_ = readings;
  return 0;
}

LRESULT MeterControl::OnPrint(HDC dc) {
  levels_.Hold(GetTickCount());
  Paint(dc, PartBounds(CHILDID_SELF), ReadingsOf(levels_));
  return 0;
}

bool MeterControl::Paint(HDC dc, const Rect& dirty, const BarReadings& readings) {
  const MeterLook& look = Look();
  if (!picture_.Prepare(dc, look)) return false;
  picture_.Show(dc, look, readings, dirty);
  return true;
}

// A painting that would change no pixel is left out; the holding that goes with it is done. Pages tell a meter its
// levels many times a second, and in silence they are always the same.
bool MeterControl::IsOnScreen() {
  MeterLevels held = levels_;
  held.Hold(GetTickCount());
  if (!on_screen_ || ReadingsOf(held) != *on_screen_) return false;
  levels_ = held;
  return true;
}

// Clicks where there is nothing to click on belong to the page.
LRESULT MeterControl::OnHitTest(Point screen) const {
  if (HasStyle(kMeterMenu)) return HTCLIENT;
  POINT place = {screen.x, screen.y};
  ScreenToClient(window(), &place);
  return HasStyle(kMeterClip) && Look().layout.ClipAt(FromPOINT(place)) ? HTCLIENT : HTTRANSPARENT;
}

void MeterControl::OnPress(Point client) {
  const std::optional<int> channel = HasStyle(kMeterClip) ? Look().layout.ClipAt(client) : std::nullopt;
  if (!channel) return;
  levels_.ResetClip(*channel);
  LevelsChanged(true);
}

LRESULT MeterControl::OnKey(WPARAM wparam, LPARAM lparam) {
  if ((wparam != VK_SPACE && wparam != VK_RETURN) || !HasStyle(kMeterClip)) return Default(WM_KEYDOWN, wparam, lparam);
  return ResetClip(true);
}

LRESULT MeterControl::OnContextMenu(WPARAM wparam, LPARAM lparam) {
  if (reinterpret_cast<HWND>(wparam) != window() || !HasStyle(kMeterMenu)) {
    return SendMessageW(Parent(), WM_CONTEXTMENU, wparam, lparam);
  }
  if (has_menu_open_) return 0;
  Point place = PointFrom(lparam);
  if (static_cast<INT32>(lparam) == -1) {  // asked for by key
    RECT meter = {};
    GetWindowRect(window(), &meter);
    place = {static_cast<int>(meter.left) + kKeyboardMenuOffsetPx, static_cast<int>(meter.top) + kKeyboardMenuOffsetPx};
  }
  has_menu_open_ = true;
  const int item_id = TrackMeterMenu(window(), place, {levels_.Steps(), display_range_, Style()});
  has_menu_open_ = false;
  if (IsAlive()) OnMenuItem(item_id);
  return 0;
}

LRESULT MeterControl::OnMenuSelect(WPARAM wparam, LPARAM lparam) {
  const WORD flags = HIWORD(wparam);
  if (HasStyle(kMeterMenu) && lparam != 0 && (flags & (MF_POPUP | MF_SEPARATOR)) == 0) {
    const UINT item_id = LOWORD(wparam);
    const std::string help_text = InSystemCodePage(ResourceText(item_id));
    MenuHelpNotification help = {{}, item_id, flags, reinterpret_cast<HMENU>(lparam), help_text.c_str()};
    SendNotify(Listener(), kNotifyMenuHelp, help.header);
  }
  return 0;
}

void MeterControl::OnMenuItem(int item_id) {
  if (item_id == ID_METER_RESET_CLIP) {
    ResetClip(true);
    return;
  }
  for (const MeterToggle& toggle : kMeterToggles) {
    if (toggle.item_id == item_id) ChangeStyle(toggle.style, !HasStyle(toggle.style));
  }
  const auto* const range = std::ranges::find(kMeterRanges, item_id, &MeterRange::item_id);
  if (range == kMeterRanges.end()) return;
  display_range_ = DisplayRangeOf(*range, levels_.Steps());
  NMHDR notification = {};
  SendNotify(Parent(), kNotifyMeterRange, notification);
  if (IsAlive()) LookChanged(true);
}

// A menu does not outlive its meter.
void MeterControl::OnDestroy() {
  if (has_menu_open_) EndMenu();
}

LONG MeterControl::PartRole(int /*part*/) const { return ROLE_SYSTEM_INDICATOR; }

std::wstring MeterControl::PartValue(int /*part*/) const {
  std::wstring value;
  const std::wstring format(kOneDecimal.begin(), kOneDecimal.end());
  const MeterScale scale(levels_.Steps(), levels_.IsFloat(), 0);
  for (int channel = 0; channel < levels_.ChannelCount(); ++channel) {
    if (channel > 0) value += L", ";
    const double amplitude = scale.AmplitudeOf(levels_.Channel(channel).level);
    value += amplitude > 0.0 ? MeterNumber(format, 20.0 * std::log10(amplitude)) : kMinusInfinity;
    value += kDecibelUnit;
  }
  return levels_.IsAnyClipped() ? value + L", " + ResourceText(IDS_METER_CLIPPED) : value;
}

std::wstring MeterControl::PartAction(int /*part*/) const {
  return HasStyle(kMeterClip) ? ResourceText(IDS_METER_RESET_CLIP) : std::wstring();
}

void MeterControl::PressPart(int /*part*/) { ResetClip(true); }

}  // namespace tervan::ui
