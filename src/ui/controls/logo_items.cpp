#include "ui/controls/logo_items.h"

namespace tervan::ui {

void LogoItems::AddText(int id, std::wstring_view text) {
  items_.push_back({.is_text = true, .id = id, .text = std::wstring(text.substr(0, kLongestText))});
}

int LogoItems::SetState(int id, bool is_on) {
  for (int i = 0; i < Count(); ++i) {
    if (items_[i].is_text || items_[i].id != id) continue;
    items_[i].is_on = is_on;
    return i;
  }
  return -1;
}

int LogoItems::Enable(int id, bool is_enabled) {
  for (int i = 0; i < Count(); ++i) {
    if (items_[i].id != id) continue;
    items_[i].is_enabled = is_enabled;
    return i;
  }
  return -1;
}

}  // namespace tervan::ui
