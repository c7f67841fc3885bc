#include "effects/compressor/compressor_control.h"

#include <cstring>
#include <utility>

namespace tervan {

HRESULT CompressorControl::SetLegacySettings(const std::uint32_t* words, std::uint32_t count) {
  if (!words) return E_POINTER;
  CompressorSettings settings = compressor::kMissingFields;
  std::memcpy(&settings, words, count * sizeof *words);
  return SetSettings(&settings);
}

HRESULT CompressorControl::SetLegacySettings6(const std::uint32_t* words) {
  return SetLegacySettings(words, compressor::kLegacyWords6);
}

HRESULT CompressorControl::SetLegacySettings8(const std::uint32_t* words) {
  return SetLegacySettings(words, compressor::kLegacyWords8);
}

HRESULT CompressorControl::GetMeters(CompressorMeters* meters) {
  if (!meters) return E_POINTER;
  std::shared_ptr<StreamClock> clock;
  {
    const LockGuard guard(lock_);
    if (!clock_ || !meters_.has_history()) {
      *meters = meters_.latest();
      return S_OK;
    }
    clock = clock_;
  }
  const std::int64_t now_100ns = clock->Now_100ns();  // not ours: the stream must not wait for it
  const LockGuard guard(lock_);
  *meters = meters_.At(now_100ns);
  return S_OK;
}

HRESULT CompressorControl::PutMeters(const CompressorMeters& meters) {
  const LockGuard guard(lock_);
  meters_.Put(meters, clock_ != nullptr);
  return S_OK;
}

void CompressorControl::PublishMeters(const CompressorMeters& meters) {
  const LockGuard guard(lock_);
  meters_.PutChunk(meters, clock_ != nullptr);
}

void CompressorControl::EndMeters() {
  const LockGuard guard(lock_);
  meters_.PutEnd(clock_ != nullptr);
}

void CompressorControl::SetClock(std::shared_ptr<StreamClock> clock) {
  {
    const LockGuard guard(lock_);
    clock_.swap(clock);
  }
  clock.reset();  // the old one is let go outside the lock
}

void CompressorControl::StartMeters() {
  const LockGuard guard(lock_);
  if (clock_) meters_.StartHistory();
}

void CompressorControl::ResetMeters() {
  const LockGuard guard(lock_);
  meters_.Reset();
}

void CompressorControl::AdvanceStreamTime(std::uint32_t frames, std::uint32_t sample_rate_hz) {
  const double duration_100ns = sample_rate_hz == 0 ? 0.0 : static_cast<double>(frames) / sample_rate_hz * 1e7 + 0.5;
  const LockGuard guard(lock_);
  if (clock_ && meters_.has_history()) meters_.AdvanceTime(static_cast<std::int64_t>(duration_100ns));
}

}  // namespace tervan
