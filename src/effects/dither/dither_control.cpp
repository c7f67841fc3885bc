#include "effects/dither/dither_control.h"

#include <algorithm>
#include <utility>

namespace tervan {
namespace {

std::int32_t Clamped(const dither::Field& field, std::int32_t value) { return std::clamp(value, 0, field.highest); }

}  // namespace

HRESULT DitherControl::GetSettings(DitherSettings* settings) const {
  if (!settings) return E_POINTER;
  const LockGuard guard(lock_);
  *settings = settings_;
  return S_OK;
}

HRESULT DitherControl::SetSettings(const DitherSettings* settings) {
  if (!settings) return E_POINTER;
  const LockGuard guard(lock_);
  for (const dither::Field& field : dither::kFields) {
    settings_.*field.member = Clamped(field, settings->*field.member);
  }
  changed_ = true;
  dirty_ = true;
  return S_OK;
}

HRESULT DitherControl::Get(const dither::Field& field, std::int32_t* value) const {
  if (!value) return E_POINTER;
  const LockGuard guard(lock_);
  *value = settings_.*field.member;
  return S_OK;
}

HRESULT DitherControl::Set(const dither::Field& field, std::int32_t value) {
  const LockGuard guard(lock_);
  const std::int32_t clamped = Clamped(field, value);
  if (std::exchange(settings_.*field.member, clamped) != clamped) {
    changed_ = true;
    dirty_ = true;
  }
  return S_OK;
}

bool DitherControl::SnapshotSettings(DitherSettings* settings) {
  const LockGuard guard(lock_);
  *settings = settings_;
  return changed_.exchange(false, std::memory_order_relaxed);
}

}  // namespace tervan
