// Where the tabs of a strip lie, and which one a key leads to.
#pragma once

#include <span>
#include <vector>

#include "ui/geometry.h"

namespace tervan::ui {

inline constexpr int kNoTab = -1;

// One beside the other from the left, each as wide as its text and a margin on both sides. What does not fit is cut off
// at the right edge; tabs that lie beyond it are empty.
std::vector<Rect> LayOutTabs(Size client, std::span<const int> text_widths_px, int dpi);

// kNoTab: there is none.
int TabAt(std::span<const Rect> tabs, Point point);

enum class TabStep { kPrevious, kNext, kFirst, kLast };

// Round and round; from kNoTab to the nearest end. kNoTab without tabs.
int TabAfter(TabStep step, int selected, int count);

}  // namespace tervan::ui
