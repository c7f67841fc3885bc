// The sliders of an automated effect's page, each with the field that shows its value: a table, and what every page
// does with it.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <string>

#include "params/param_descriptor.h"
#include "support/saturate.h"
#include "ui/control_window.h"
#include "ui/pages/page_params.h"

namespace tervan::ui {

// A parameter, the slider that moves it and the field that shows it.
template <class Control, class Value>
struct SliderRow {
  const ParamDescriptor& param;
  int slider_id;
  int field_id;
  int positions_per_unit;  // of the value
  int default_position;    // of a double click
  decltype(&ScrollTrackbar) scroll;
  int page_step;
  std::wstring (*text)(Value value);
  const wchar_t* unit;        // what the text leaves out, for screen readers
  double (*read)(HWND edit);  // null: the field cannot be edited
  ParamSlots<Control, Value> slots;
  bool is_always_moved = false;  // the slider, even by what it has itself brought about
};

// The nearest position, of two the one farther from 0.
inline INT32 PositionOf(double value, int positions_per_unit) {
  return SaturatingTruncate<INT32>(value * positions_per_unit + std::copysign(0.5, value));
}

// What a field brings about that the focus leaves as the page has written it.
enum class IfUntouched {
  kSet,      // the value that is read there
  kNothing,  // what is shown may be less exact than the value
};

template <class Control, class Value, std::size_t kCount>
class SliderPageFor : public AutomatedPageFor<Control> {
 protected:
  using Row = SliderRow<Control, Value>;

  SliderPageFor(IUnknown* outer, const PageDescription& description, const Row (&rows)[kCount]) noexcept
      : AutomatedPageFor<Control>(outer, description), rows_(rows) {}

  void SetUpSliders() const {
    for (const Row& row : rows_) {
      this->Send(row.slider_id, kSliderSetMinimum, 0, Minimum(row));
      this->Send(row.slider_id, kSliderSetMaximum, 0, Maximum(row));
      this->Send(row.slider_id, kSliderSetDefault, 0, row.default_position);
    }
  }

  void RefreshRows(Control& filter, int id, Refresh refresh) {
    for (std::size_t i = 0; i < kCount; ++i) {
      const Row& row = rows_[i];
      const bool is_edit = row.read && id == row.field_id;
      if (id != kAllControls && id != row.slider_id && !is_edit) continue;
      const Value value = row.slots.Get(filter);
      shown_[i] = row.text(value);
      this->ShowText(row.slider_id, shown_[i] + row.unit);
      this->ShowText(row.field_id, shown_[i]);
      if (id == row.slider_id && refresh != Refresh::kForced && !row.is_always_moved) continue;
      this->Send(row.slider_id, kSliderSetPosition, TRUE,
                 std::clamp(PositionOf(value, row.positions_per_unit), Minimum(row), Maximum(row)));
    }
  }

  void Scroll(Control& filter, UINT message, ScrollCode code, HWND slider) {
    for (const Row& row : rows_) {
      if (!slider || slider != this->ControlOf(row.slider_id)) continue;
      const double position = row.scroll(message, code, slider, kLineStep, row.page_step);
      (filter.*row.slots.begin_edit)();  // goes on when it is in work already
      (filter.*row.slots.set)(static_cast<Value>(position / row.positions_per_unit));
      // A page that has gone meanwhile will not hear of the action's end.
      if (code == ScrollCode::kEnd || !this->IsShowing(filter)) (filter.*row.slots.end_edit)();
      this->ShowValues(row.slider_id, Refresh::kOthers);
      return;
    }
  }

  // Takes over what was typed, when the command says that the focus has left an edit box.
  void TakeTyped(Control& filter, int id, int code, IfUntouched if_untouched) {
    for (std::size_t i = 0; i < kCount; ++i) {
      const Row& row = rows_[i];
      if (!row.read || id != row.field_id || code != EN_KILLFOCUS) continue;
      const HWND field = this->ControlOf(id);
      if (!field || (if_untouched == IfUntouched::kNothing && WindowText(field) == shown_[i])) return;
      const double value = std::clamp<double>(row.read(field), row.param.controlMin, row.param.controlMax);
      (filter.*row.slots.set)(static_cast<Value>(value));
      this->ShowValues(id, Refresh::kOthers);
      return;
    }
  }

  // For the page's timer: shows what automation does, and once more where it has left the value. Nobody types
  // meanwhile.
  void FollowAutomation(Control& filter, std::size_t index) {
    const Row& row = rows_[index];
    const bool is_automated = row.slots.IsAutomated(filter);
    if (is_automated || was_automated_[index]) this->ShowValues(row.slider_id, Refresh::kForced);
    was_automated_[index] = is_automated;
    if (row.read) this->Enable(row.field_id, !is_automated);
  }

 private:
  static constexpr int kLineStep = 1;

  // Of the slider. Records may hold values beyond, and a fader takes any position.
  static INT32 Minimum(const Row& row) { return row.param.controlMin * row.positions_per_unit; }
  static INT32 Maximum(const Row& row) { return row.param.controlMax * row.positions_per_unit; }

  const Row (&rows_)[kCount];
  std::array<std::wstring, kCount> shown_;       // in the fields
  std::array<bool, kCount> was_automated_ = {};  // at the last tick of the timer
};

}  // namespace tervan::ui
