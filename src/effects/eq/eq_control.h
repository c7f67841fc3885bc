// The EQ's control object: the settings, and what its page asks besides.
#pragma once

#include <cstdint>

#include "effects/eq/eq_settings.h"
#include "shell/record_control.h"

namespace tervan {

class EqControl final : public RecordControl<EqSettings> {
 public:
  explicit EqControl(WindowPoster& poster) : RecordControl(eq::kParams, poster) {}

  // As those of the base, with the band that the page shows. [any thread]
  HRESULT GetSettings(EqSettings* settings) const;
  HRESULT SetSettings(const EqSettings* settings);

  // The page learns of it by polling. [host]
  HRESULT SetParam(std::uint32_t index, float value);

  // S_OK once after SetParam has changed something, else S_FALSE. [page]
  HRESULT PollChanged();

  // S_OK, or E_POINTER. No change of settings. [any thread]
  HRESULT GetSelectedBand(std::int32_t* band) const;
  HRESULT SetSelectedBand(std::int32_t band);

  // One setting of band 0..3; another band writes nothing. S_OK, or E_POINTER. [any thread]
  HRESULT GetBand(std::int32_t* value, std::int32_t band, eq::BandRow row) const;

 private:
  // Guarded by lock_.
  std::int32_t selected_band_ = 0;
  bool set_by_host_ = false;  // since the last poll
};

}  // namespace tervan
