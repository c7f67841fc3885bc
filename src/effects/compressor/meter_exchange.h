// Hands meter records from the stream to the page. With a reference clock, records are kept with their stream times, so
// that the page sees what is heard now, not what was processed ahead.
//
// Not synchronised: its owner's lock guards it. Times in 100-ns units.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "effects/compressor/compressor_meters.h"
#include "support/saturate.h"

namespace tervan {

class MeterExchange {
 public:
  // From now on records are kept with their times. The history lives as long as this. May throw std::bad_alloc.
  void StartHistory();
  bool has_history() const { return history_ != nullptr; }

  void AdvanceTime(std::int64_t duration_100ns) { time_100ns_ = SaturatingAdd(time_100ns_, duration_100ns); }

  // keep: also append to the history, at the present stream time; the oldest record makes way.
  void Put(const CompressorMeters& meters, bool keep);

  // The same for one chunk of several that share the end of their sample as their time: together they are one record,
  // of the largest levels and the smallest gain, or the reader would never get past the first.
  void PutChunk(const CompressorMeters& meters, bool keep);

  // The idle record, right behind the last sample.
  void PutEnd(bool keep);

  const CompressorMeters& latest() const { return latest_; }

  // The record at a time, interpolated between its neighbours; the idle one at time 0. Forgets the records before.
  // Needs a history.
  CompressorMeters At(std::int64_t now_100ns);

  // Idle record, empty history, stream time 0.
  void Reset();

 private:
  static constexpr std::size_t kEntries = 64;
  struct Entry {
    CompressorMeters meters = kIdleMeters;
    std::int64_t time_100ns = 0;
  };
  using History = std::array<Entry, kEntries>;
  static constexpr std::size_t After(std::size_t index) { return (index + 1) % kEntries; }
  static constexpr std::size_t Before(std::size_t index) { return (index + kEntries - 1) % kEntries; }

  CompressorMeters latest_ = kIdleMeters;
  std::unique_ptr<History> history_;
  std::size_t write_ = 0;
  std::size_t read_ = 0;
  std::int64_t time_100ns_ = 0;
};

}  // namespace tervan
