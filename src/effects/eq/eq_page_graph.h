// The graph on the EQ page: four bands as nodes over the response that they make.
#pragma once

#include <windows.h>

#include <array>
#include <cstdint>
#include <vector>

#include "effects/eq/eq_frequency_axis.h"
#include "effects/eq/eq_nodes.h"
#include "effects/eq/eq_response.h"
#include "effects/eq/eq_settings.h"
#include "ui/back_buffer.h"
#include "ui/controls/eq_curve.h"

namespace tervan {

using EqBands = std::array<EqBand, kEqBands>;

class EqPageGraph {
 public:
  // Takes the placeholder's place in the dialog. False when the graph cannot be made.
  bool Create(HWND dialog, int placeholder_id);

  void Show(const EqBands& bands);

  // What the nodes stood for when they were shown last, and what they stand for now that the user has moved them. Both
  // in whole steps of the settings, so that what differs is what the user has changed.
  const EqBands& Shown() const { return shown_; }
  EqBands Edited() const;

  // -1: none.
  int SelectedBand() const;
  // The graph answers with a notification.
  void Select(int band) const;
  bool IsBeingDragged() const { return GetCapture() == window_; }

 private:
  static void CALLBACK PaintBackground(HDC dc, void* context, ui::EqCurve* curve, const RECT* plot);
  void Paint(HDC dc, ui::Rect plot);
  void UpdateShades(HDC dc, ui::Size size);

  HWND window_ = nullptr;
  ui::EqCurve curve_{};
  EqFrequencyAxis axis_{0};
  EqBands shown_{};
  EqResponse response_;
  ui::BackBuffer background_;
  ui::Size shades_size_{};
  std::vector<std::uint32_t> shades_;  // for that size
};

}  // namespace tervan
