#include "effects/eq/eq_page_graph.h"

#include <new>

#include "effects/eq/eq_backdrop.h"
#include "resources/ids.h"
#include "ui/controls/eq_graph_messages.h"
#include "ui/gdi.h"
#include "ui/theme.h"

namespace tervan {
namespace {

constexpr std::int32_t kCurveUnitsPerPixel = 16384;
constexpr float kLowestGain_db = -15.0f;
constexpr float kHighestGain_db = 15.0f;
constexpr float kNarrowest_octaves = 0.1f;
constexpr float kWidest_octaves = 4.0f;
constexpr COLORREF kNoMemoryColour = RGB(255, 0, 0);
constexpr COLORREF kFewColoursInstead = RGB(0, 0, 128);  // where the system's own colour would be white on white

void FillRectangle(HDC dc, const RECT& area, COLORREF colour) {
  const ui::GdiObject<HBRUSH> brush(CreateSolidBrush(colour));
  FillRect(dc, &area, brush.get());
}

COLORREF FewColoursShade(HDC dc) {
  const COLORREF caption = GetSysColor(COLOR_ACTIVECAPTION);
  return GetNearestColor(dc, caption == RGB(255, 255, 255) ? kFewColoursInstead : caption);
}

}  // namespace

bool EqPageGraph::Create(HWND dialog, int placeholder_id) {
  const HWND placeholder = GetDlgItem(dialog, placeholder_id);
  RECT bounds;
  if (!GetWindowRect(placeholder, &bounds)) return false;
  MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&bounds), 2);
  window_ =
      CreateWindowExW(WS_EX_CLIENTEDGE | WS_EX_NOPARENTNOTIFY, ui::kEqGraphClassName, L"",
                      WS_CHILD | WS_VISIBLE | WS_BORDER, bounds.left, bounds.top, bounds.right - bounds.left,
                      bounds.bottom - bounds.top, dialog, reinterpret_cast<HMENU>(static_cast<INT_PTR>(placeholder_id)),
                      reinterpret_cast<HINSTANCE>(GetWindowLongPtrW(dialog, GWLP_HINSTANCE)), nullptr);
  if (!window_) return false;
  SetWindowPos(window_, placeholder, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
  DestroyWindow(placeholder);

  RECT plot{};
  SendMessageW(window_, ui::kGraphGetPlot, 0, reinterpret_cast<LPARAM>(&plot));
  curve_.id = ID_EQ_GRAPH;
  curve_.x_maximum = static_cast<std::int32_t>(plot.right - plot.left) * kCurveUnitsPerPixel;
  curve_.y_minimum = kLowestGain_db;
  curve_.y_maximum = kHighestGain_db;
  curve_.width_minimum = kNarrowest_octaves;
  curve_.width_maximum = kWidest_octaves;
  curve_.node_count = curve_.node_capacity = kEqBands;
  curve_.selected_node = ui::kNoNode;
  axis_ = EqFrequencyAxis(curve_.x_maximum);
  SendMessageW(window_, ui::kGraphListCurve, TRUE, reinterpret_cast<LPARAM>(&curve_));
  SendMessageW(window_, ui::kGraphSetBackground, reinterpret_cast<WPARAM>(&PaintBackground),
               reinterpret_cast<LPARAM>(this));
  return true;
}

void EqPageGraph::Show(const EqBands& bands) {
  response_.Clear();
  for (std::size_t i = 0; i < bands.size(); ++i) {
    ShowBand(bands[i], axis_, curve_.nodes[i]);
    response_.Add(bands[i]);
  }
  shown_ = Edited();
  InvalidateRect(window_, nullptr, FALSE);
}

EqBands EqPageGraph::Edited() const {
  EqBands bands;
  for (std::size_t i = 0; i < bands.size(); ++i) bands[i] = BandOf(curve_.nodes[i], axis_);
  return bands;
}

int EqPageGraph::SelectedBand() const {
  const LRESULT node = SendMessageW(window_, ui::kGraphGetSelectedNode, 0, 0);
  return node >= 0 && node < static_cast<LRESULT>(kEqBands) ? static_cast<int>(node) : -1;
}

void EqPageGraph::Select(int band) const { SendMessageW(window_, ui::kGraphSelectNode, 0, band); }

void EqPageGraph::PaintBackground(HDC dc, void* context, ui::EqCurve* /*curve*/, const RECT* plot) {
  try {
    static_cast<EqPageGraph*>(context)->Paint(dc, ui::FromRECT(*plot));
  } catch (const std::bad_alloc&) {
    FillRectangle(dc, *plot, kNoMemoryColour);
  }
}

void EqPageGraph::Paint(HDC dc, ui::Rect plot) {
  const ui::Size size{plot.Width(), plot.Height()};
  if (plot.IsEmpty()) return;
  if (!background_.Prepare(dc, size)) throw std::bad_alloc();
  UpdateShades(dc, size);
  PaintEqResponse(background_.canvas(), response_, shades_.data());
  BitBlt(dc, plot.left, plot.top, size.width, size.height, background_.dc(), 0, 0, SRCCOPY);
}

void EqPageGraph::UpdateShades(HDC dc, ui::Size size) {
  const bool is_as_before = size.width == shades_size_.width && size.height == shades_size_.height;
  if (ui::HasFewColours(dc)) {
    shades_.resize(static_cast<std::size_t>(size.width) * size.height);
    ui::Canvas(shades_.data(), size).Fill({0, 0, size.width, size.height}, ui::FromCOLORREF(FewColoursShade(dc)));
  } else if (shades_.empty() || !is_as_before) {
    shades_ = MakeEqShades(size);
  }
  shades_size_ = size;
}

}  // namespace tervan
