#include "ui/controls/logo_layout.h"

#include <algorithm>

namespace tervan::ui {
namespace {

constexpr int kTextPadding_px = 8;  // of a text item, both sides together
constexpr int kTitleMargin_px = 4;

}  // namespace

LogoLayout LayOutLogo(Size client, int picture_width_px, std::span<const LogoItemContent> items, int dpi) {
  LogoLayout layout;
  layout.items.resize(items.size());
  int space_px = std::max(client.width, 0);
  for (std::size_t i = items.size(); i-- > 0;) {
    const LogoItemContent& item = items[i];
    const int wanted_px = item.is_text ? item.size.width + AtDpi(kTextPadding_px, dpi) : AtDpi(item.size.width, dpi);
    const int width_px = std::clamp(wanted_px, 0, space_px);
    const int height_px = item.is_text ? client.height : AtDpi(item.size.height, dpi);
    const int top_px = (client.height - height_px) / 2;
    layout.items[i] = {space_px - width_px, top_px, space_px, top_px + height_px};
    space_px -= width_px;
  }
  const int picture_right_px = std::min(AtDpi(picture_width_px, dpi), space_px);
  layout.picture = {0, 0, picture_right_px, client.height};
  const int margin_px = AtDpi(kTitleMargin_px, dpi);
  layout.title = {picture_right_px + margin_px, 0, space_px - margin_px, client.height};
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
