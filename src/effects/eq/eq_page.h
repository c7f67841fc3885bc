// The Track EQ's property page: the response graph with a handle for each band, tabs that choose a band, and the
// controls of the band that is chosen.
#pragma once

#include <array>
#include <string>

#include "effects/eq/eq_interface.h"
#include "effects/eq/eq_page_graph.h"
#include "effects/eq/eq_page_tabs.h"
#include "ui/pages/page_params.h"

namespace tervan {

inline constexpr wchar_t kEqPageName[] = L"LmTEQ Property Page";

// Of a trackbar; a double click leads to the default.
struct EqSliderRange {
  int minimum;
  int maximum;
  int default_position;
};

class EqPage final : public ui::AutomatedPageFor<IEqSettings> {
 public:
  explicit EqPage(IUnknown* outer) noexcept;

 private:
  bool OnInitPage() override;
  void RefreshControls(int id, ui::Refresh refresh) override;
  void OnFilterNotification(int code) override;
  void OnCommand(int id, int code) override;
  void OnScroll(UINT message, ui::ScrollCode code, HWND slider) override;
  void OnTimer() override;
  void OnLeave() override;
  int TopicInstead(int topic) override;

  void SetUpScaleLabels() const;
  void SetRange(int slider_id, const EqSliderRange& range) const;

  // Parts of a refresh.
  void RefreshGraph(IEqSettings& filter);
  void RefreshMode(const EqBand& band, bool moves_list);
  void RefreshEnable(IEqSettings& filter, int selected, const EqBand& band, bool moves_mark);
  void RefreshSelection(int band);

  void OnGraph(IEqSettings& filter, int code);
  void OnGraphSelected(IEqSettings& filter);
  void OnGraphChanged(IEqSettings& filter);
  void WriteGraph(IEqSettings& filter);
  void OnMode(IEqSettings& filter, int code);
  void OnEnabled(IEqSettings& filter, int code);
  void OnField(IEqSettings& filter, int id);
  void FollowAutomation(IEqSettings& filter);

  // Nothing, when a listener of the edit has closed the page meanwhile, or reconnected it.
  void Set(IEqSettings& filter, eq::BandRow row, int band, INT32 value);

  // An edit that the page has begun, of the band that was chosen then: it ends for that band, whichever is chosen
  // meanwhile.
  void BeginEdit(IEqSettings& filter, eq::BandRow row, int band);
  void EndEdit(IEqSettings& filter, eq::BandRow row);
  void EndEdits(IEqSettings& filter);

  static constexpr int kNoBand = -1;

  EqPageGraph graph_;
  EqPageTabs tabs_;
  std::array<std::wstring, 3> shown_;                // in the fields, as the page has written them
  std::array<int, eq::kParamsPerBand> edited_band_;  // a row each: of the edit that is open, or kNoBand
  bool is_mode_list_open_ = false;
  bool was_automated_ = false;  // any parameter, at the last tick of the timer
};

}  // namespace tervan
