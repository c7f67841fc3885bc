// The parameter store of an automated effect: descriptions, values, automation envelopes and edit reporting in one
// place, where the page, presets, stored settings and automation all meet.
//
// Parameters are numbered by their row in the table. Values are in the table's units; control values are the same in
// the units of the settings record. Times are stream times in 100-ns units.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "params/envelope.h"
#include "params/param_descriptor.h"
#include "params/param_recorder.h"
#include "support/lock.h"
#include "support/result.h"

namespace tervan {

// The only time format that automation knows.
inline constexpr GUID kTimeReference{0x93ad712b, 0xdaa0, 0x4ffe, {0xbc, 0x81, 0xb0, 0xce, 0x50, 0x0f, 0xcd, 0xd9}};
inline constexpr std::uint32_t kAllParams = 0xFFFFFFFF;
inline constexpr std::int64_t kChunkLimit_100ns = 200000;  // 20 ms

class ParamManager {
 public:
  // table: static, at most kMaxParams rows. Values start neutral. May throw std::bad_alloc.
  explicit ParamManager(std::span<const ParamDescriptor> table);
  ParamManager(const ParamManager&) = delete;
  ParamManager& operator=(const ParamManager&) = delete;

  std::span<const ParamDescriptor> table() const { return table_; }

  // What hosts ask and set. [any thread]

  // S_OK; E_POINTER; E_INVALIDARG for an index without a row.
  HRESULT GetParam(std::uint32_t index, float* value) const;

  // S_OK when the value changed, S_FALSE when it is the same or automation governs it now. E_INVALIDARG for an index
  // without a row and for a value outside the range (NaN is outside). The recorder is not told.
  HRESULT SetParam(std::uint32_t index, float value);

  // index: a row or kAllParams. E_POINTER; E_INVALIDARG (no segments, no such row, a value that is not finite);
  // E_OUTOFMEMORY, then that row and the following ones are unchanged.
  HRESULT AddEnvelope(std::uint32_t index, std::uint32_t count, const SegmentData* segments);
  HRESULT FlushEnvelope(std::uint32_t index, std::int64_t start_100ns, std::int64_t end_100ns);

  // Null: edits go unreported. The recorder is called without any lock held, by the thread that edits.
  void SetRecorder(std::shared_ptr<ParamRecorder> recorder);

  // Control values: index is a row, control is not range-checked. [page, host]

  std::int32_t GetInteger(std::uint32_t index) const;
  float GetFloat(std::uint32_t index) const;

  // True when the value changed; the recorder is then told, between a begin and an end unless an edit is in progress.
  bool SetInteger(std::uint32_t index, std::int32_t control);
  bool SetFloat(std::uint32_t index, float control);

  bool BeginEdit(std::uint32_t index);         // false when an edit was in progress already
  bool EndEdit(std::uint32_t index);           // false when none was
  bool IsEditable(std::uint32_t index) const;  // false while streaming inside a segment

  // record: the effect's settings record; fields without a row are left alone. Import reports all begins, then all
  // changed values, then all ends; the values change together, so that no snapshot holds half of them.
  void ExportSettings(void* record) const;
  void ImportSettings(const void* record);

  // What the processing loop needs. [stream]

  void SetStreaming(bool streaming);
  void SetSampleRate(std::uint32_t sample_rate_hz);  // 0: time stands still

  struct Block {
    std::int64_t start_100ns = 0;
    std::int64_t end_100ns = 0;
  };
  Block block() const;
  void SetBlock(Block block);                   // and the clock to its start
  void StartDirectBlock(std::uint32_t frames);  // a block that starts at the clock
  void StepPastBlock();                         // the clock to one frame after the block's end
  void ResetClock();

  // How many of the next `frames` frames can be processed before a parameter changes; ORs the change masks of the
  // parameters that changed now into *flags (may be null) and advances the clock. At least 1 while frames > 0, at most
  // kChunkLimit_100ns of audio while any envelope exists. time_scale: see FindSegment.
  std::uint32_t NextChangeFrames(std::uint32_t frames, std::uint32_t* flags, double time_scale = 1.0);

 private:
  struct Change {
    bool changed = false;
    bool captured = false;
    float value = 0.0f;
  };

  Change StoreLocked(std::uint32_t index, float value);
  bool Store(std::uint32_t index, float value);
  void Report(ParamRecorder& recorder, std::uint32_t index, const Change& change) const;
  std::shared_ptr<ParamRecorder> recorder() const;
  float Value(std::uint32_t index) const;
  std::int64_t DurationLocked(std::uint32_t frames) const;
  bool AnyEnvelopeLocked() const;
  std::uint32_t EndAllMotionLocked();

  template <typename Edit>
  HRESULT EditEnvelopes(std::uint32_t index, const Edit& edit);

  const std::span<const ParamDescriptor> table_;
  mutable Lock edit_lock_;  // serialises envelope editors; taken before lock_. The stream never takes it.
  mutable Lock lock_;       // guards all below
  std::vector<ParamState> states_;
  std::shared_ptr<ParamRecorder> recorder_;
  bool streaming_ = false;
  Block block_;
  std::int64_t clock_100ns_ = 0;
  double frames_per_100ns_ = 0.0;
  double time_per_frame_100ns_ = 0.0;
};

}  // namespace tervan
