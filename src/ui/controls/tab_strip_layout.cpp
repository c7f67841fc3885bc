#include "ui/controls/tab_strip_layout.h"

#include <algorithm>

namespace tervan::ui {
namespace {

constexpr int kMargin_px = 10;  // on each side of a text
constexpr int kGap_px = 2;      // between tabs

}  // namespace

std::vector<Rect> LayOutTabs(Size client, std::span<const int> text_widths_px, int dpi) {
  std::vector<Rect> tabs;
  int left = 0;
  for (const int text_px : text_widths_px) {
    const int right = left + text_px + 2 * AtDpi(kMargin_px, dpi);
    tabs.push_back({std::min(left, client.width), 0, std::min(right, client.width), client.height});
    left = right + AtDpi(kGap_px, dpi);
  }
  return tabs;
}

int TabAt(std::span<const Rect> tabs, Point point) {
  const auto found = std::ranges::find_if(tabs, [&](const Rect& tab) { return tab.Contains(point); });
  return found != tabs.end() ? static_cast<int>(found - tabs.begin()) : kNoTab;
}

int TabAfter(TabStep step, int selected, int count) {
  if (count == 0) return kNoTab;
  switch (step) {
    case TabStep::kPrevious: return selected > 0 ? selected - 1 : count - 1;
    case TabStep::kNext: return (selected + 1) % count;
    case TabStep::kFirst: return 0;
    case TabStep::kLast: return count - 1;
  }
  return kNoTab;
}

}  // namespace tervan::ui
