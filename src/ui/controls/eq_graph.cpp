#include "ui/controls/eq_graph.h"

#include <oleacc.h>

#include <algorithm>
#include <utility>

#include "ui/controls/eq_graph_menu.h"
#include "ui/ui_library.h"

namespace tervan::ui {
namespace {

constexpr std::size_t kMaxCurves = 4096;
constexpr int kPressMarginPx = 5;  // left and right of the plot

bool IsKeyDown(int key) { return GetKeyState(key) < 0; }

// Programs that make up mouse messages may say it in either way.
HeldKeys KeysHeld(WPARAM buttons) {
  return {.ctrl = (buttons & MK_CONTROL) != 0 || IsKeyDown(VK_CONTROL),
          .shift = (buttons & MK_SHIFT) != 0 || IsKeyDown(VK_SHIFT),
          .alt = IsKeyDown(VK_MENU)};
}

bool IsWithin(const Rect& plot, int x, int margin_px) {
  return x >= plot.left - margin_px && x <= plot.right + margin_px;
}

// Where there is no memory for a graph, its window is still made, and does nothing: a page without it can be used.
LRESULT CALLBACK GraphProcedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  const LRESULT result = WindowProcOf<EqGraph>(window, message, wparam, lparam);
  return message == WM_CREATE ? 0 : result;
}

}  // namespace

const ControlClass kEqGraphClass = {
    .name = kEqGraphClassName,
    .style = CS_DBLCLKS | CS_HREDRAW | CS_VREDRAW,
    .background = COLOR_WINDOW,
    .procedure = GraphProcedure,
};

EqGraph::EqGraph(HWND window, const CREATESTRUCTW&) : ControlWindow(window) { LayOut(); }

LRESULT EqGraph::OnMessage(UINT message, WPARAM wparam, LPARAM lparam) {
  switch (message) {
    case WM_PAINT: OnPaint(); return 0;
    case WM_ERASEBKGND: return 1;
    case WM_SIZE: LayOut(); break;
    case WM_SYSCOLORCHANGE: Invalidate(); break;
    case WM_NCHITTEST: OnHitTest(PointFrom(lparam)); break;
    case WM_SETCURSOR:
      if (LOWORD(lparam) != HTCLIENT) break;
      SetCursor(drag_ || is_over_node_ ? HandCursor() : LoadCursorW(nullptr, IDC_ARROW));
      return TRUE;
    case WM_LBUTTONDOWN: OnPress(PointFrom(lparam)); return 0;
    case WM_LBUTTONDBLCLK: OnDoubleClick(PointFrom(lparam)); return 0;
    case WM_MOUSEMOVE: OnMove(PointFrom(lparam), wparam); return 0;
    case WM_LBUTTONUP: EndDrag(DragEnd::kReleased); return 0;
    case WM_RBUTTONDOWN:
    case WM_RBUTTONDBLCLK: OnRightPress(PointFrom(lparam), wparam); return 0;
    case WM_CAPTURECHANGED:
      if (reinterpret_cast<HWND>(lparam) != window()) EndDrag(DragEnd::kCancelled);
      return 0;
    case WM_CANCELMODE: EndDrag(DragEnd::kCancelled); break;
    case WM_ENABLE:
    case WM_SHOWWINDOW:
      if (!wparam) EndDrag(DragEnd::kCancelled);
      break;
    case WM_GETDLGCODE: return DLGC_WANTARROWS | (drag_ ? DLGC_WANTALLKEYS : 0);
    case WM_KEYDOWN:
    case WM_SYSKEYDOWN:
      if ((wparam == VK_MENU && OnAltKey(message)) || OnKey(wparam)) return 0;
      break;
    case WM_KEYUP:
    case WM_SYSKEYUP:
      if (wparam == VK_MENU && OnAltKey(message)) return 0;
      break;
    case WM_KILLFOCUS: owns_alt_ = false; break;
    case WM_DESTROY:
      if (has_menu_open_) EndMenu();  // it does not outlive its graph
      EndDrag(DragEnd::kCancelled);
      return 0;
    default:
      if (const auto result = OnGraphMessage(message, wparam, lparam)) return *result;
  }
  return Default(message, wparam, lparam);
}

std::optional<LRESULT> EqGraph::OnGraphMessage(UINT message, WPARAM wparam, LPARAM lparam) {
  switch (message) {
    case kGraphListCurve:
      if (wparam != 0) return AddCurve(PointerIn<EqCurve>(lparam)) ? 1 : 0;
      RemoveCurve(reinterpret_cast<EqCurve*>(lparam));  // only compared: one that is not listed is no harm
      return 1;
    case kGraphSetSpan:
      scale_.x_span = static_cast<std::int32_t>(lparam);
      Invalidate();
      return 0;
    case kGraphSetBackground:
      background_ = reinterpret_cast<PaintGraphBackground>(wparam);
      background_context_ = reinterpret_cast<void*>(lparam);
      return 0;
    case kGraphGetPlot:
      if (RECT* const plot = PointerIn<RECT>(lparam)) *plot = ToRECT(scale_.plot);
      return 0;
    case kGraphSelectNode:
      if (!curves_.empty()) Select(*curves_.front(), static_cast<std::uint32_t>(lparam));
      return 0;
    case kGraphGetSelectedNode: return static_cast<LRESULT>(curves_.empty() ? kNoNode : curves_.front()->selected_node);
  }
  return std::nullopt;
}

bool EqGraph::AddCurve(EqCurve* curve) {
  if (!curve || (!IsListed(curve) && curves_.size() == kMaxCurves)) return false;
  if (!IsListed(curve)) {
    curves_.push_back(curve);
    curve->backup = nullptr;
  }
  for (EqCurveNode& node : curve->nodes) node.reserved = 0;
  MarkSelected(*curve, kNoNode);
  scale_ = ScaleOver(curves_, scale_.plot);
  Invalidate();
  Announce(EVENT_OBJECT_REORDER);
  return true;
}

void EqGraph::RemoveCurve(EqCurve* curve) {
  std::erase_if(curves_, [curve](const EqCurve* listed) { return !curve || listed == curve; });
  scale_ = ScaleOver(curves_, scale_.plot);
  Invalidate();
  Announce(EVENT_OBJECT_REORDER);
  if (drag_ && !IsListed(drag_->curve)) EndDrag(DragEnd::kCurveGone);
}

void EqGraph::Select(EqCurve& curve, std::uint32_t node) {
  MarkSelected(curve, node);
  Invalidate();
  if (&curve == curves_.front() && curve.selected_node != kNoNode) {
    Announce(EVENT_OBJECT_SELECTION, static_cast<int>(curve.selected_node) + 1);
  }
  Notify(LOWORD(curve.id), kGraphSelected);
}

void EqGraph::LayOut() {
  RECT client = {};
  GetClientRect(window(), &client);
  scale_.plot = FromRECT(client);
}

void EqGraph::OnPaint() {
  PaintBuffered(window(), buffer_, [this](HDC dc, const Canvas&, const Rect&) {
    const RECT plot = ToRECT(scale_.plot);
    FillRect(dc, &plot, GetSysColorBrush(COLOR_WINDOW));
    if (background_) {
      const int saved = SaveDC(dc);
      background_(dc, background_context_, curves_.empty() ? nullptr : curves_.front(), &plot);
      RestoreDC(dc, saved);
    }
    for (const EqCurve* curve : curves_) painter_.Paint(dc, scale_, *curve);
  });
}

std::optional<EqGraph::NodePlace> EqGraph::NodeUnder(Point pointer) const {
  for (EqCurve* const curve : curves_) {
    if (const auto node = NodeAt(scale_, *curve, pointer)) return NodePlace{curve, *node};
  }
  return std::nullopt;
}

bool EqGraph::IsListed(const EqCurve* curve) const { return std::ranges::find(curves_, curve) != curves_.end(); }

void EqGraph::Notify(WORD id, WORD code) const {
  if (!IsAlive()) return;
  SendMessageW(Parent(), WM_COMMAND, MAKEWPARAM(id, code), reinterpret_cast<LPARAM>(window()));
}

void EqGraph::OnHitTest(Point screen) {
  if (drag_) return;
  POINT place = {screen.x, screen.y};
  ScreenToClient(window(), &place);
  is_over_node_ = NodeUnder(FromPOINT(place)).has_value();
}

void EqGraph::OnPress(Point pointer) {
  EndDrag(DragEnd::kReleased);  // its own release got lost
  if (!IsAlive()) return;
  SetFocus(window());
  if (!IsAlive() || !IsWithin(scale_.plot, pointer.x, kPressMarginPx)) return;
  const auto place = NodeUnder(pointer);
  if (!place) return;
  Select(*place->curve, place->node);
  if (!IsAlive() || !IsThere(*place)) return;
  SetCursor(HandCursor());
  drag_ = {place->curve, place->node, pointer, {}};
  std::ranges::copy(place->curve->nodes, drag_->backup.begin());
  place->curve->backup = drag_->backup.data();
  SetCapture(window());
}

// A message that moves nothing follows many a press: the node stays until the pointer moves.
void EqGraph::OnMove(Point pointer, WPARAM buttons) {
  if (!drag_ || drag_->pointer == pointer) return;
  drag_->pointer = pointer;
  const HeldKeys keys = KeysHeld(buttons);
  owns_alt_ = owns_alt_ || keys.alt;
  DragNode(scale_, *drag_->curve, drag_->node, drag_->backup[drag_->node].width, pointer, keys);
  Notify(LOWORD(drag_->curve->id), kGraphChanged);
  if (IsAlive()) Redraw();
}

void EqGraph::EndDrag(DragEnd end) {
  if (!drag_) return;
  const Drag ended = *drag_;
  drag_.reset();
  const WORD id = LOWORD(ended.curve->id);
  ended.curve->backup = nullptr;
  if (GetCapture() == window()) ReleaseCapture();
  if (end == DragEnd::kCurveGone) return;
  if (end == DragEnd::kCancelled) {
    ended.curve->nodes[ended.node] = ended.backup[ended.node];  // the others are as the owner has left them
    MarkSelected(*ended.curve, ended.curve->selected_node);     // and so is the selection
    is_over_node_ = false;
    Invalidate();
  }
  Notify(id, kGraphChanged);
  if (end == DragEnd::kReleased) Notify(id, kGraphEditEnded);
}

void EqGraph::OnDoubleClick(Point pointer) {
  EndDrag(DragEnd::kReleased);
  if (!IsAlive() || !IsWithin(scale_.plot, pointer.x, 0)) return;
  const auto place = NodeUnder(pointer);
  if (!place) return;
  const WORD id = LOWORD(place->curve->id);
  EqCurveNode& node = place->curve->nodes[place->node];
  node.enable = node.enable == 0 ? 1 : 0;
  Invalidate();
  Notify(id, kGraphChanged);
  if (!IsKeyDown(VK_LBUTTON)) Notify(id, kGraphEditEnded);
}

void EqGraph::OnRightPress(Point pointer, WPARAM buttons) {
  if (drag_ || has_menu_open_ || (buttons & MK_LBUTTON) != 0) return;
  SetFocus(window());
  if (!IsAlive()) return;
  const auto place = NodeUnder(pointer);
  if (!place) return;
  Select(*place->curve, place->node);
  if (IsAlive() && IsThere(*place)) OfferMenu(*place, pointer);
}

void EqGraph::OfferMenu(NodePlace place, Point pointer) {
  POINT screen = {pointer.x, pointer.y};
  ClientToScreen(window(), &screen);
  has_menu_open_ = true;
  const int item_id = TrackBandMenu(window(), FromPOINT(screen), place.curve->nodes[place.node]);
  has_menu_open_ = false;
  if (!IsAlive() || !IsThere(place)) return;
  ApplyBandItem(place.curve->nodes[place.node], item_id);
  Invalidate();
  Notify(LOWORD(place.curve->id), kGraphChanged);
}

bool EqGraph::OnKey(WPARAM key) {
  if (!drag_) return false;
  if (key == VK_ESCAPE) {
    EndDrag(DragEnd::kCancelled);
    return true;
  }
  if (key < VK_LEFT || key > VK_DOWN) return false;
  if (IsKeyDown(VK_CONTROL)) return true;
  const int along = key == VK_LEFT || key == VK_UP ? -1 : 1;
  const bool is_across = key == VK_LEFT || key == VK_RIGHT;
  MovePointer(is_across ? along : 0, is_across ? 0 : along);
  return true;
}

// The drag follows it.
void EqGraph::MovePointer(int right_px, int down_px) const {
  POINT pointer = {};
  GetCursorPos(&pointer);
  ScreenToClient(window(), &pointer);
  const Point moved = LimitedTo(scale_.plot, {pointer.x + right_px, pointer.y + down_px});
  pointer = {moved.x, moved.y};
  ClientToScreen(window(), &pointer);
  SetCursorPos(pointer.x, pointer.y);
}

// Alt alone would open the menu of the window that the page is in.
bool EqGraph::OnAltKey(UINT message) {
  const bool is_own = drag_ || owns_alt_;
  owns_alt_ = is_own && (message == WM_SYSKEYDOWN || message == WM_KEYDOWN);
  return is_own;
}

int EqGraph::PartCount() const { return curves_.empty() ? 0 : static_cast<int>(NodeCount(*curves_.front())); }

LONG EqGraph::PartRole(int part) const { return part == 0 ? ROLE_SYSTEM_LIST : ROLE_SYSTEM_LISTITEM; }

std::wstring EqGraph::PartName(int part) const {
  return part == 0 ? PlainLabel(WindowText(window()).c_str()) : std::to_wstring(part);
}

LONG EqGraph::PartState(int part) const {
  LONG state = ControlWindow::PartState(part);
  if (part == 0) return state;
  state = (state & ~STATE_SYSTEM_FOCUSED) | STATE_SYSTEM_SELECTABLE;
  return curves_.front()->nodes[part - 1].selected != 0 ? state | STATE_SYSTEM_SELECTED : state;
}

Rect EqGraph::PartBounds(int part) const {
  if (part == 0) return ControlWindow::PartBounds(part);
  const EqCurve& curve = *curves_.front();
  return NodeSquare(NodePixel(scale_, curve, curve.nodes[part - 1]));
}

int EqGraph::PartAt(Point client) const {
  if (curves_.empty()) return 0;
  const auto node = NodeAt(scale_, *curves_.front(), client);
  return node ? static_cast<int>(*node) + 1 : 0;
}

}  // namespace tervan::ui
