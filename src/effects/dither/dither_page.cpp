#include "effects/dither/dither_page.h"

#include "effects/dither/dither_filter.h"
#include "resources/ids.h"
#include "ui/ui_library.h"

namespace tervan {
namespace {

using ui::Refresh;

struct List {
  int id;
  int first_string_id;  // of its entries, which are the values from 0 to the highest
  int highest;
  HRESULT (STDMETHODCALLTYPE IDitherSettings::*get)(INT32* value);
  HRESULT (STDMETHODCALLTYPE IDitherSettings::*set)(INT32 value);
};

constexpr List kLists[] = {
    {IDC_DITHER_DEPTH, IDS_DITHER_DEPTH_FIRST, dither::kDepth.highest, &IDitherSettings::GetQuantizationDepth,
     &IDitherSettings::SetQuantizationDepth},
    {IDC_DITHER_TYPE, IDS_DITHER_TYPE_FIRST, dither::kType.highest, &IDitherSettings::GetDitherType,
     &IDitherSettings::SetDitherType},
    {IDC_DITHER_SHAPING, IDS_DITHER_SHAPING_FIRST, dither::kShaping.highest, &IDitherSettings::GetNoiseShaping,
     &IDitherSettings::SetNoiseShaping},
};

constexpr ui::HelpTopic kHelpTopics[] = {
    {IDC_DITHER_DEPTH_LABEL, 10}, {IDC_DITHER_DEPTH, 10},         {IDC_DITHER_TYPE_LABEL, 11},
    {IDC_DITHER_TYPE, 11},        {IDC_DITHER_SHAPING_LABEL, 12}, {IDC_DITHER_SHAPING, 12},
};

constexpr ui::PageDescription kDescription{
    .dialog_id = IDD_DITHER,
    .title_id = IDS_DITHER_TITLE,
    .help_context = 4,
    .filter_name = kDitherFilterName,
    .bypass_id = 0,
    .help_topics = kHelpTopics,
    .timers = {},
};

}  // namespace

DitherPage::DitherPage(IUnknown* outer) noexcept : EffectPageFor(outer, kDescription) {}

bool DitherPage::OnInitPage() {
  for (const List& list : kLists) {
    Send(list.id, CB_RESETCONTENT);
    for (int value = 0; value <= list.highest; ++value) {
      const std::wstring text = ui::ResourceText(list.first_string_id + value);
      Send(list.id, CB_SETITEMDATA, Send(list.id, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text.c_str())), value);
    }
  }
  return true;
}

// A value without an entry leaves the selection as it was.
void DitherPage::RefreshControls(int id, Refresh) {
  const auto filter = Held();
  for (const List& list : kLists) {
    if (id != ui::kAllControls && id != list.id) continue;
    INT32 value = -1;
    (*filter.*list.get)(&value);
    const auto count = Send(list.id, CB_GETCOUNT);
    for (LRESULT entry = 0; entry < count; ++entry) {
      if (Send(list.id, CB_GETITEMDATA, entry) != value) continue;
      Send(list.id, CB_SETCURSEL, entry);
      break;
    }
  }
}

void DitherPage::OnFilterNotification(int) { RefreshControls(ui::kAllControls, Refresh::kOthers); }

void DitherPage::OnCommand(int id, int code) {
  if (code != CBN_SELCHANGE) return;
  for (const List& list : kLists) {
    if (id != list.id) continue;
    const LRESULT entry = Send(list.id, CB_GETCURSEL);
    if (entry == CB_ERR) return;
    const auto filter = Held();
    (*filter.*list.set)(static_cast<INT32>(Send(list.id, CB_GETITEMDATA, entry)));
    ShowValues(ui::kAllControls, Refresh::kOthers);
  }
}

}  // namespace tervan
