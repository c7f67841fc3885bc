// The compressor's control object: settings, older stored forms, meters. What the page and the host reach through
// ICompressorSettings.
#pragma once

#include <cstdint>
#include <memory>

#include "effects/compressor/compressor_engine.h"
#include "effects/compressor/compressor_meters.h"
#include "effects/compressor/compressor_settings.h"
#include "effects/compressor/meter_exchange.h"
#include "shell/record_control.h"

namespace tervan {

// The time that the graph's reference clock shows, 100-ns units.
class StreamClock {
 public:
  virtual ~StreamClock() = default;
  virtual std::int64_t Now_100ns() = 0;
};

namespace compressor {

inline constexpr std::uint16_t kSettingsReplaced = 32701;
inline constexpr std::uint16_t kStreamingStarted = 32702;
inline constexpr std::uint16_t kMetersReset = 32703;

}  // namespace compressor

class CompressorControl final : public RecordControl<CompressorSettings, CompressorEngineOwner> {
 public:
  explicit CompressorControl(WindowPoster& poster) : RecordControl(compressor::kParams, poster) {}

  // All [any thread]; S_OK, or E_POINTER.
  HRESULT SetLegacySettings6(const std::uint32_t* words);  // the first 6 or 8 fields of a record
  HRESULT SetLegacySettings8(const std::uint32_t* words);
  HRESULT GetMeters(CompressorMeters* meters);
  HRESULT PutMeters(const CompressorMeters& meters);

  // Null: none. [host]
  void SetClock(std::shared_ptr<StreamClock> clock);

  // [stream]
  void StartMeters();  // allocates the history when there is a clock; may throw std::bad_alloc
  void ResetMeters();
  void AdvanceStreamTime(std::uint32_t frames, std::uint32_t sample_rate_hz);

  void PublishMeters(const CompressorMeters& meters) override;
  void EndMeters() override;
  bool IsWatched() const override { return HasNotifyWindow(); }

 private:
  HRESULT SetLegacySettings(const std::uint32_t* words, std::uint32_t count);

  // Guarded by lock_.
  MeterExchange meters_;
  std::shared_ptr<StreamClock> clock_;
};

}  // namespace tervan
