#include "ui/controls/logo_layout.h"

#include <algorithm>

namespace tervan::ui {
namespace {

constexpr int kTextPadding_px = 8;  // of a text item, both sides together
constexpr int kTitleIndent_px = 4;

}  // namespace

LogoLayout LayOutLogo(Size client, Size picture, std::span<const LogoItemContent> items, int dpi) {
  LogoLayout layout;
  layout.items.resize(items.size());
  int space_px = std::max(client.width, 0);
  for (std::size_t i = items.size(); i-- > 0;) {
    const LogoItemContent& item = items[i];
    const int wanted_px = item.is_text ? item.size.width + AtDpi(kTextPadding_px, dpi) : item.size.width;
    const int width_px = std::clamp(wanted_px, 0, space_px);
    const int height_px = item.is_text ? client.height : item.size.height;
    const int top_px = (client.height - height_px) / 2;
    layout.items[i] = {space_px - width_px, top_px, space_px, top_px + height_px};
    space_px -= width_px;
  }
  const int picture_top_px = (client.height - picture.height) / 2;
  const int picture_right_px = std::min(picture.width, space_px);
  layout.picture = {0, picture_top_px, picture_right_px, picture_top_px + picture.height};
  layout.title = {std::min(picture_right_px + AtDpi(kTitleIndent_px, dpi), space_px), 0, space_px, client.height};
  return layout;
}

LogoHit HitLogo(const LogoLayout& layout, Point point) {
  const auto found = std::ranges::find_if(layout.items, [&](const Rect& item) { return item.Contains(point); });
  if (found != layout.items.end()) return {LogoPart::kItem, static_cast<int>(found - layout.items.begin())};
  if (layout.picture.Contains(point)) return {LogoPart::kPicture};
  if (layout.title.Contains(point)) return {LogoPart::kTitle};
  return {};
}

}  // namespace tervan::ui
