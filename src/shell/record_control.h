// The control object of an automated effect with its settings record, where the effect's engine gets its settings.
#pragma once

#include "shell/automated_control.h"
#include "shell/automated_engine.h"

namespace tervan {

// Source: SettingsSource<Settings>, or an effect's extension of it. An effect may put its own operations before those
// of the base: all callers know the effect's class.
template <typename Settings, typename Source = SettingsSource<Settings>>
class RecordControl : public AutomatedControl, public Source {
 public:
  using AutomatedControl::AutomatedControl;

  // All [any thread]; S_OK, or E_POINTER. Fields without a parameter are not written.
  HRESULT GetSettings(Settings* settings) const {
    if (!settings) return E_POINTER;
    ExportRecord(settings);
    return S_OK;
  }
  // As given, without clamping.
  HRESULT SetSettings(const Settings* settings) {
    if (!settings) return E_POINTER;
    ImportRecord(settings);
    return S_OK;
  }

  bool HasChange() const override { return this->IsChanged(); }
  bool SnapshotSettings(Settings* settings) override { return FetchRecord(settings); }

 protected:
  ~RecordControl() = default;
};

}  // namespace tervan
