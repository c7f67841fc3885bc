#include "ui/controls/logo_items.h"

#include <algorithm>

namespace tervan::ui {

void LogoItems::AddText(int id, std::wstring_view text) {
  items_.push_back({.is_text = true, .id = id, .text = std::wstring(text.substr(0, kLongestText))});
}

int LogoItems::Lookup(int id, bool with_texts) const {
  const auto is_it = [&](const LogoItem& item) { return item.id == id && (with_texts || !item.is_text); };
  const auto found = std::ranges::find_if(items_, is_it);
  return found != items_.end() ? static_cast<int>(found - items_.begin()) : -1;
}

}  // namespace tervan::ui
