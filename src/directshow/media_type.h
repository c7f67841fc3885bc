// An owned AM_MEDIA_TYPE: format block and unknown are copied and freed with it. Nothing here throws.
#pragma once
#include <windows.h>

#include <dshow.h>

namespace tervan::directshow {

class MediaType {
 public:
  MediaType() noexcept = default;
  ~MediaType() { Clear(); }
  MediaType(const MediaType&) = delete;  // a copy can fail: use Assign
  MediaType& operator=(const MediaType&) = delete;
  MediaType(MediaType&& other) noexcept { Swap(other); }
  MediaType& operator=(MediaType&& other) noexcept {
    Swap(other);
    return *this;
  }

  const AM_MEDIA_TYPE& Get() const noexcept { return type_; }
  operator const AM_MEDIA_TYPE&() const noexcept { return type_; }
  const AM_MEDIA_TYPE* operator->() const noexcept { return &type_; }
  bool IsEmpty() const noexcept { return type_.majortype == GUID_NULL; }

  // Deep copy. S_OK or E_OUTOFMEMORY (unchanged then).
  HRESULT Assign(const AM_MEDIA_TYPE& source) noexcept;
  // Uncompressed audio of fixed sample size with this format block of `bytes` bytes (a WAVEFORMATEX, possibly
  // extended). S_OK or E_OUTOFMEMORY.
  HRESULT AssignAudio(const WAVEFORMATEX& format, ULONG bytes, const GUID& subtype) noexcept;
  // Takes over a type in task memory and frees its shell, as enumerators and samples hand them out.
  void Adopt(AM_MEDIA_TYPE* source) noexcept;
  void Clear() noexcept;
  void Swap(MediaType& other) noexcept;

 private:
  AM_MEDIA_TYPE type_{};
};

// Fills *target, whose old content is ignored. S_OK or E_OUTOFMEMORY (*target is all zero then).
HRESULT CopyMediaType(AM_MEDIA_TYPE* target, const AM_MEDIA_TYPE& source) noexcept;
// A copy in task memory, freed by DeleteMediaType. Null when memory runs out.
AM_MEDIA_TYPE* CreateMediaType(const AM_MEDIA_TYPE& source) noexcept;
void FreeMediaType(AM_MEDIA_TYPE& type) noexcept;
void DeleteMediaType(AM_MEDIA_TYPE* type) noexcept;

// The same stream format: types, format kind and format block; sizes and flags do not matter.
bool IsSameMediaType(const AM_MEDIA_TYPE& a, const AM_MEDIA_TYPE& b) noexcept;
// A type that leaves its major type or its format open restricts the choice instead of naming one.
bool IsPartialMediaType(const AM_MEDIA_TYPE& type) noexcept;
// Whether `type` fits what `partial` names; GUID_NULL fits everything.
bool MatchesPartialMediaType(const AM_MEDIA_TYPE& type, const AM_MEDIA_TYPE& partial) noexcept;

}  // namespace tervan::directshow
