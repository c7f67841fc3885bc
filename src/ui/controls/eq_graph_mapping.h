// Where an EQ graph's nodes lie, which one the pointer hits, and what dragging does to them.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "ui/controls/eq_curve.h"
#include "ui/geometry.h"

namespace tervan::ui {

// All curves of a graph share one scale across; each has its own upwards.
struct EqGraphScale {
  Rect plot;
  std::int32_t x_origin = 0;  // curve units at the left edge
  std::int64_t x_span = 0;    // from there to the right edge
};

// The scale that shows all of these curves.
EqGraphScale ScaleOver(std::span<EqCurve* const> curves, Rect plot);

// Of the owner's number, those that there is room for.
std::uint32_t NodeCount(const EqCurve& curve);

// Truncated, and limited to what the platform can draw; a y that is not a number lies above everything.
Point NodePixel(const EqGraphScale& scale, const EqCurve& curve, const EqCurveNode& node);
// Where the pointer takes hold of a node.
Rect NodeSquare(Point node_pixel);
// The first one under the pointer.
std::optional<std::uint32_t> NodeAt(const EqGraphScale& scale, const EqCurve& curve, Point pointer);
// Every node from the first one on that lies right of the scale stays invisible.
bool IsShown(const EqGraphScale& scale, const EqCurveNode& node);

// Right and bottom are edges where nodes can be, too.
Point LimitedTo(Rect plot, Point pointer);

struct HeldKeys {
  bool ctrl = false;
  bool shift = false;
  bool alt = false;
};

// A drag's step: the node follows the pointer, across, upwards or both; with Alt its width grows to the right and
// upwards from what it was at the beginning. No-op for a node that there is not.
void DragNode(const EqGraphScale& scale, EqCurve& curve, std::uint32_t node, float first_width, Point pointer,
              HeldKeys keys);

// Selects this node alone; kNoNode, or one that there is not: none.
void MarkSelected(EqCurve& curve, std::uint32_t node);

}  // namespace tervan::ui
