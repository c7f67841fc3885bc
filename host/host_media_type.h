// The one media type that the host's own pins speak.
#pragma once

#include <windows.h>

#include <dshow.h>

#include "directshow/media_type.h"
#include "host/audio_format.h"

namespace tervan::host {

HRESULT AssignMediaType(const AudioFormat& format, directshow::MediaType* type) noexcept;
// S_OK when the type is this format, otherwise VFW_E_TYPE_NOT_ACCEPTED.
HRESULT CheckMediaTypeIs(const AudioFormat& format, const AM_MEDIA_TYPE& type) noexcept;

}  // namespace tervan::host
