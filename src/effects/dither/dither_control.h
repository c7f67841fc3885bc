// The dither's control object: three settings that clamp.
#pragma once

#include <cstdint>

#include "effects/dither/dither_settings.h"
#include "shell/control_state.h"

namespace tervan {

class DitherControl final : public ControlState {
 public:
  explicit DitherControl(WindowPoster& poster) : ControlState(poster) {}

  // All [any thread]; S_OK, or E_POINTER.
  HRESULT GetSettings(DitherSettings* settings) const;
  HRESULT SetSettings(const DitherSettings* settings);  // a change in any case
  HRESULT Get(const dither::Field& field, std::int32_t* value) const;
  HRESULT Set(const dither::Field& field, std::int32_t value);  // a change if it differs

  // Copies the settings; true when a change was waiting, which is thereby taken note of. [stream]
  bool SnapshotSettings(DitherSettings* settings);

 private:
  DitherSettings settings_{};  // guarded by lock_
};

}  // namespace tervan
