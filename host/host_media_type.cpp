#include "host/host_media_type.h"

namespace tervan::host {

HRESULT AssignMediaType(const AudioFormat& format, directshow::MediaType* type) noexcept {
  const WAVEFORMATEX wave = ToWaveFormat(format);
  return type->AssignAudio(wave, sizeof wave, format.IsFloat() ? MEDIASUBTYPE_IEEE_FLOAT : MEDIASUBTYPE_PCM);
}

HRESULT CheckMediaTypeIs(const AudioFormat& format, const AM_MEDIA_TYPE& type) noexcept {
  directshow::MediaType own;
  if (FAILED(AssignMediaType(format, &own))) return E_OUTOFMEMORY;
  return directshow::IsSameMediaType(own, type) ? S_OK : VFW_E_TYPE_NOT_ACCEPTED;
}

}  // namespace tervan::host
