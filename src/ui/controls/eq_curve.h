// The curve that an EQ graph shows and edits: bands as nodes. The graph's owner keeps it, the graph writes into it.
#pragma once

#include <cstdint>

namespace tervan::ui {

inline constexpr std::uint32_t kNoNode = 65535;
inline constexpr std::uint32_t kMaxNodes = 6;

// Values of EqCurveNode::mode.
enum NodeMode : std::int32_t { kLowShelfNode = 1, kBandNode, kHighShelfNode };

struct EqCurveNode {
  std::int32_t x;  // curve units
  float y;         // dB
  float width;     // bands: octaves; shelves: the rolloff, 1 to 4
  std::int32_t shape;
  std::int32_t mode;
  std::int32_t enable;    // 0 or 1
  std::int32_t reserved;  // 0
  std::int32_t selected;  // 0 or 1
};
static_assert(sizeof(EqCurveNode) == 32);

// Owner and graph share the layout; a message carries its address.
struct EqCurve {
  std::uint32_t id;  // its low word is the command that notifications come as
  std::uint32_t owner_context;
  std::int32_t x_minimum;
  float y_maximum;
  std::int32_t x_maximum;
  float y_minimum;
  float width_minimum;
  float width_maximum;
  std::uint32_t reserved[2];
  EqCurveNode* backup;  // the graph's own while a node is dragged: all nodes as they were; else null
  std::uint32_t node_count;
  std::uint32_t node_capacity;
  EqCurveNode nodes[kMaxNodes];
  std::uint32_t selected_node;  // or kNoNode
};

}  // namespace tervan::ui
