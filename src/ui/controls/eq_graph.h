// The window class of the EQ graph: nodes that the user drags, over a background that the owner paints.
#pragma once

#include <windows.h>

#include <array>
#include <optional>
#include <vector>

#include "ui/back_buffer.h"
#include "ui/control_window.h"
#include "ui/controls/eq_graph_mapping.h"
#include "ui/controls/eq_graph_messages.h"
#include "ui/controls/eq_graph_painter.h"

namespace tervan::ui {

extern const ControlClass kEqGraphClass;

class EqGraph final : public ControlWindow {
 public:
  EqGraph(HWND window, const CREATESTRUCTW& creation);
  LRESULT OnMessage(UINT message, WPARAM wparam, LPARAM lparam) override;

  // Each node of the first curve is a part.
  int PartCount() const override;
  LONG PartRole(int part) const override;
  std::wstring PartName(int part) const override;
  LONG PartState(int part) const override;
  Rect PartBounds(int part) const override;
  int PartAt(Point client) const override;

 private:
  struct NodePlace {
    EqCurve* curve;
    std::uint32_t node;
  };

  struct Drag {
    EqCurve* curve;
    std::uint32_t node;
    Point pointer;  // of the last step
    std::array<EqCurveNode, kMaxNodes> backup;
  };
  enum class DragEnd {
    kReleased,
    kCancelled,  // the node goes back
    kCurveGone,  // the nodes stay, nobody is told
  };

  // Messages of the owner.
  std::optional<LRESULT> OnGraphMessage(UINT message, WPARAM wparam, LPARAM lparam);
  bool AddCurve(EqCurve* curve);
  void RemoveCurve(EqCurve* curve);  // null: all
  void Select(EqCurve& curve, std::uint32_t node);

  void LayOut();
  void OnPaint();

  // The mouse.
  void OnPress(Point pointer);
  void OnMove(Point pointer, WPARAM buttons);
  void OnDoubleClick(Point pointer);
  void OnRightPress(Point pointer, WPARAM buttons);
  void OfferMenu(NodePlace place, Point pointer);
  void OnHitTest(Point screen);
  void EndDrag(DragEnd end);

  // The keyboard.
  bool OnKey(WPARAM key);
  bool OnAltKey(UINT message);
  void MovePointer(int right_px, int down_px) const;

  std::optional<NodePlace> NodeUnder(Point pointer) const;
  bool IsListed(const EqCurve* curve) const;
  bool IsThere(const NodePlace& place) const { return IsListed(place.curve) && place.node < NodeCount(*place.curve); }
  void Notify(WORD id, WORD code) const;

  std::vector<EqCurve*> curves_;
  EqGraphScale scale_;
  PaintGraphBackground background_ = nullptr;
  void* background_context_ = nullptr;
  std::optional<Drag> drag_;   // with the mouse held since a press
  bool is_over_node_ = false;  // the pointer, when it was last seen
  bool owns_alt_ = false;      // it was held during a drag: its release opens no menu
  bool has_menu_open_ = false;
  EqNodePainter painter_;
  BackBuffer buffer_;
};

}  // namespace tervan::ui
