#include "directshow/media_type.h"

#include <algorithm>
#include <cstring>
#include <span>
#include <utility>

namespace tervan::directshow {
namespace {

// Types come from other filters: a length without a block counts as no block.
std::span<const BYTE> FormatBlock(const AM_MEDIA_TYPE& type) {
  return {type.pbFormat, type.pbFormat ? type.cbFormat : 0};
}

bool HasSameFormat(const AM_MEDIA_TYPE& a, const AM_MEDIA_TYPE& b) {
  return a.formattype == b.formattype && std::ranges::equal(FormatBlock(a), FormatBlock(b));
}

}  // namespace

HRESULT MediaType::Assign(const AM_MEDIA_TYPE& source) noexcept {
  AM_MEDIA_TYPE copy;
  const HRESULT result = CopyMediaType(&copy, source);
  if (FAILED(result)) return result;
  Clear();
  type_ = copy;
  return S_OK;
}

HRESULT MediaType::AssignAudio(const WAVEFORMATEX& format, ULONG bytes, const GUID& subtype) noexcept {
  AM_MEDIA_TYPE type{};
  type.majortype = MEDIATYPE_Audio;
  type.subtype = subtype;
  type.bFixedSizeSamples = TRUE;
  type.lSampleSize = format.nBlockAlign;
  type.formattype = FORMAT_WaveFormatEx;
  type.cbFormat = bytes;
  type.pbFormat = reinterpret_cast<BYTE*>(const_cast<WAVEFORMATEX*>(&format));  // only read, by the copy
  return Assign(type);
}

void MediaType::Adopt(AM_MEDIA_TYPE* source) noexcept {
  Clear();
  if (!source) return;
  type_ = *source;
  CoTaskMemFree(source);
}

void MediaType::Clear() noexcept {
  FreeMediaType(type_);
  type_ = {};
}

void MediaType::Swap(MediaType& other) noexcept { std::swap(type_, other.type_); }

HRESULT CopyMediaType(AM_MEDIA_TYPE* target, const AM_MEDIA_TYPE& source) noexcept {
  *target = source;
  const std::span<const BYTE> format = FormatBlock(source);
  target->cbFormat = static_cast<ULONG>(format.size());
  target->pbFormat = nullptr;
  if (!format.empty()) {
    target->pbFormat = static_cast<BYTE*>(CoTaskMemAlloc(format.size()));
    if (!target->pbFormat) {
      *target = {};
      return E_OUTOFMEMORY;
    }
    std::memcpy(target->pbFormat, format.data(), format.size());
  }
  if (target->pUnk) target->pUnk->AddRef();
  return S_OK;
}

AM_MEDIA_TYPE* CreateMediaType(const AM_MEDIA_TYPE& source) noexcept {
  auto* const type = static_cast<AM_MEDIA_TYPE*>(CoTaskMemAlloc(sizeof(AM_MEDIA_TYPE)));
  if (type && FAILED(CopyMediaType(type, source))) {
    CoTaskMemFree(type);
    return nullptr;
  }
  return type;
}

void FreeMediaType(AM_MEDIA_TYPE& type) noexcept {
  CoTaskMemFree(type.pbFormat);
  if (type.pUnk) type.pUnk->Release();
  type.cbFormat = 0;
  type.pbFormat = nullptr;
  type.pUnk = nullptr;
}

void DeleteMediaType(AM_MEDIA_TYPE* type) noexcept {
  if (!type) return;
  FreeMediaType(*type);
  CoTaskMemFree(type);
}

bool IsSameMediaType(const AM_MEDIA_TYPE& a, const AM_MEDIA_TYPE& b) noexcept {
  return a.majortype == b.majortype && a.subtype == b.subtype && HasSameFormat(a, b);
}

bool IsPartialMediaType(const AM_MEDIA_TYPE& type) noexcept {
  return type.majortype == GUID_NULL || type.formattype == GUID_NULL;
}

bool MatchesPartialMediaType(const AM_MEDIA_TYPE& type, const AM_MEDIA_TYPE& partial) noexcept {
  if (partial.majortype != GUID_NULL && partial.majortype != type.majortype) return false;
  if (partial.subtype != GUID_NULL && partial.subtype != type.subtype) return false;
  return partial.formattype == GUID_NULL || HasSameFormat(type, partial);
}

}  // namespace tervan::directshow
