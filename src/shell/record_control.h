// The control object of an automated effect with its settings record, and what the effect's engine sees of it.
#pragma once

#include <span>

#include "shell/automated_control.h"

namespace tervan {

// Where an engine gets its settings. The call takes a lock for the copy. [stream]
template <typename Settings>
class SettingsSource {
 public:
  // Copies the current settings; true when a change was waiting, which is thereby taken note of.
  virtual bool SnapshotSettings(Settings* settings) = 0;

 protected:
  ~SettingsSource() = default;
};

// Source: SettingsSource<Settings>, or an effect's extension of it.
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

  bool SnapshotSettings(Settings* settings) override { return FetchRecord(settings); }

 protected:
  ~RecordControl() = default;
};

}  // namespace tervan
