#include "params/param_manager.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cmath>
#include <cstring>
#include <exception>
#include <utility>

#include "support/saturate.h"

namespace tervan {
namespace {

bool IsFinite(const SegmentData& segment) { return std::isfinite(segment.valStart) && std::isfinite(segment.valEnd); }

// The value that a record's field stands for.
float ValueOfField(const ParamDescriptor& row, const void* record) {
  const char* const field = static_cast<const char*>(record) + row.recordOffset;
  if (row.controlKind == ControlKind::kFloat) {
    float control = 0.0f;
    std::memcpy(&control, field, sizeof control);
    return ValueOfFloat(row, control);
  }
  std::int32_t control = 0;
  std::memcpy(&control, field, sizeof control);
  return ValueOfInteger(row, control);
}

void WriteField(const ParamDescriptor& row, float value, void* record) {
  char* const field = static_cast<char*>(record) + row.recordOffset;
  if (row.controlKind == ControlKind::kFloat) {
    const float control = FloatOfValue(row, value);
    std::memcpy(field, &control, sizeof control);
  } else {
    const std::int32_t control = IntegerOfValue(row, value);
    std::memcpy(field, &control, sizeof control);
  }
}

}  // namespace

ParamManager::ParamManager(std::span<const ParamDescriptor> table) : table_(table), states_(table.size()) {
  assert(table.size() <= kMaxParams);
  for (std::size_t i = 0; i < table.size(); ++i) states_[i].value = table[i].info.mpdNeutralValue;
}

float ParamManager::Value(std::uint32_t index) const {
  const LockGuard guard(lock_);
  return states_[index].value;
}

HRESULT ParamManager::GetParam(std::uint32_t index, float* value) const {
  if (!value) return E_POINTER;
  if (index >= table_.size()) return E_INVALIDARG;
  *value = Value(index);
  return S_OK;
}

HRESULT ParamManager::SetParam(std::uint32_t index, float value) {
  if (index >= table_.size()) return E_INVALIDARG;
  if (!std::isfinite(value)) return E_INVALIDARG;
  const ParamInfo& info = table_[index].info;
  const LockGuard guard(lock_);
  ParamState& state = states_[index];
  if (streaming_ && state.in_segment) return S_FALSE;
  if (value < info.mpdMinValue || value > info.mpdMaxValue) return E_INVALIDARG;
  return std::exchange(state.value, value) == value ? S_FALSE : S_OK;
}

// Edits the lists of one row or of all. The new list is made beside the old one, so that the stream only ever waits for
// a swap.
template <typename Edit>
HRESULT ParamManager::EditEnvelopes(std::uint32_t index, const Edit& edit) {
  if (index != kAllParams && index >= table_.size()) return E_INVALIDARG;
  const std::size_t first = index == kAllParams ? 0 : index;
  const std::size_t end = index == kAllParams ? table_.size() : first + 1;
  const LockGuard edit_guard(edit_lock_);
  try {
    for (std::size_t i = first; i < end; ++i) {
      SegmentList list = edit(states_[i].segments);
      const bool disjoint = IsDisjoint(list);
      const LockGuard guard(lock_);
      states_[i].segments.swap(list);
      states_[i].disjoint = disjoint;
    }
  } catch (const std::exception&) {  // no memory, or more segments than a list can ever hold
    return E_OUTOFMEMORY;
  }
  return S_OK;
}

HRESULT ParamManager::AddEnvelope(std::uint32_t index, std::uint32_t count, const SegmentData* segments) {
  if (!segments) return E_POINTER;
  if (count == 0) return E_INVALIDARG;
  const std::span given(segments, count);
  if (!std::all_of(given.begin(), given.end(), IsFinite)) return E_INVALIDARG;
  return EditEnvelopes(index, [given](const SegmentList& stored) { return WithSegments(stored, given); });
}

HRESULT ParamManager::FlushEnvelope(std::uint32_t index, std::int64_t start_100ns, std::int64_t end_100ns) {
  return EditEnvelopes(index, [=](const SegmentList& stored) { return WithoutSpan(stored, start_100ns, end_100ns); });
}

void ParamManager::SetRecorder(std::shared_ptr<ParamRecorder> recorder) {
  {
    const LockGuard guard(lock_);
    recorder_.swap(recorder);
  }
  recorder.reset();  // the old one is let go outside the lock
}

std::shared_ptr<ParamRecorder> ParamManager::recorder() const {
  const LockGuard guard(lock_);
  return recorder_;
}

std::int32_t ParamManager::GetInteger(std::uint32_t index) const { return IntegerOfValue(table_[index], Value(index)); }
float ParamManager::GetFloat(std::uint32_t index) const { return FloatOfValue(table_[index], Value(index)); }

bool ParamManager::SetInteger(std::uint32_t index, std::int32_t control) {
  return Store(index, ValueOfInteger(table_[index], control));
}

bool ParamManager::SetFloat(std::uint32_t index, float control) {
  return Store(index, ValueOfFloat(table_[index], control));
}

ParamManager::Change ParamManager::StoreLocked(std::uint32_t index, float value) {
  ParamState& state = states_[index];
  return {.changed = std::exchange(state.value, value) != value, .captured = state.captured, .value = value};
}

bool ParamManager::Store(std::uint32_t index, float value) {
  Change change;
  std::shared_ptr<ParamRecorder> recorder;
  {
    const LockGuard guard(lock_);
    change = StoreLocked(index, value);
    recorder = recorder_;
  }
  if (recorder && change.changed) Report(*recorder, index, change);
  return change.changed;
}

void ParamManager::Report(ParamRecorder& recorder, std::uint32_t index, const Change& change) const {
  if (!change.captured) recorder.BeginEdit(index);
  recorder.EditValue(index, change.value);
  if (!change.captured) recorder.EndEdit(index);
}

bool ParamManager::BeginEdit(std::uint32_t index) {
  std::shared_ptr<ParamRecorder> recorder;
  {
    const LockGuard guard(lock_);
    if (std::exchange(states_[index].captured, true)) return false;
    recorder = recorder_;
  }
  if (recorder) recorder->BeginEdit(index);
  return true;
}

bool ParamManager::EndEdit(std::uint32_t index) {
  std::shared_ptr<ParamRecorder> recorder;
  {
    const LockGuard guard(lock_);
    states_[index].released = true;
    if (!std::exchange(states_[index].captured, false)) return false;
    recorder = recorder_;
  }
  if (recorder) recorder->EndEdit(index);
  return true;
}

bool ParamManager::IsEditable(std::uint32_t index) const {
  const LockGuard guard(lock_);
  return !(streaming_ && states_[index].in_segment);
}

void ParamManager::ExportSettings(void* record) const {
  const LockGuard guard(lock_);
  for (std::size_t i = 0; i < table_.size(); ++i) WriteField(table_[i], states_[i].value, record);
}

void ParamManager::ImportSettings(const void* record) {
  const auto count = static_cast<std::uint32_t>(table_.size());
  for (std::uint32_t i = 0; i < count; ++i) BeginEdit(i);
  std::array<Change, kMaxParams> changes;
  {
    const LockGuard guard(lock_);
    for (std::uint32_t i = 0; i < count; ++i) changes[i] = StoreLocked(i, ValueOfField(table_[i], record));
  }
  if (const auto told = recorder()) {
    for (std::uint32_t i = 0; i < count; ++i) {
      if (changes[i].changed) Report(*told, i, changes[i]);
    }
  }
  for (std::uint32_t i = 0; i < count; ++i) EndEdit(i);
}

void ParamManager::SetStreaming(bool streaming) {
  const LockGuard guard(lock_);
  streaming_ = streaming;
}

void ParamManager::SetSampleRate(std::uint32_t sample_rate_hz) {
  const LockGuard guard(lock_);
  frames_per_100ns_ = sample_rate_hz * 1e-7;
  time_per_frame_100ns_ = sample_rate_hz == 0 ? 0.0 : 1e7 / sample_rate_hz;
}

ParamManager::Block ParamManager::block() const {
  const LockGuard guard(lock_);
  return block_;
}

void ParamManager::SetBlock(Block block) {
  const LockGuard guard(lock_);
  block_ = block;
  clock_100ns_ = block.start_100ns;
}

std::int64_t ParamManager::DurationLocked(std::uint32_t frames) const {
  return static_cast<std::int64_t>(frames * time_per_frame_100ns_ + 0.5);
}

void ParamManager::StartDirectBlock(std::uint32_t frames) {
  const LockGuard guard(lock_);
  block_ = {clock_100ns_, SaturatingAdd(clock_100ns_, DurationLocked(frames))};
}

void ParamManager::StepPastBlock() {
  const LockGuard guard(lock_);
  clock_100ns_ = SaturatingAdd(block_.end_100ns, DurationLocked(1));
}

void ParamManager::ResetClock() {
  const LockGuard guard(lock_);
  clock_100ns_ = 0;
}

bool ParamManager::AnyEnvelopeLocked() const {
  return std::any_of(states_.begin(), states_.end(), [](const ParamState& state) { return !state.segments.empty(); });
}

// Returns the change masks of the parameters that were moving.
std::uint32_t ParamManager::EndAllMotionLocked() {
  std::uint32_t changed = 0;
  for (std::size_t i = 0; i < states_.size(); ++i) {
    states_[i].in_segment = false;
    if (StopMoving(states_[i])) changed |= table_[i].changeMask;
  }
  return changed;
}

std::uint32_t ParamManager::NextChangeFrames(std::uint32_t frames, std::uint32_t* flags, double time_scale) {
  std::uint32_t changed = 0;
  std::uint32_t chunk_frames = frames;
  {
    const LockGuard guard(lock_);
    std::int64_t limit = DurationLocked(frames);
    if (!AnyEnvelopeLocked()) {
      changed = EndAllMotionLocked();
    } else {
      for (std::size_t i = 0; i < states_.size(); ++i) {
        const SegmentHit hit = FindSegment(states_[i], clock_100ns_, time_scale);
        if (hit.covered) limit = std::min(limit, hit.remaining_100ns);
        if (hit.changed) changed |= table_[i].changeMask;
      }
      limit = std::min(limit, kChunkLimit_100ns);
      // Without a rate no time passes, and nothing can change within the block.
      if (frames_per_100ns_ > 0.0) {
        chunk_frames = static_cast<std::uint32_t>(static_cast<double>(limit) * frames_per_100ns_ + 0.5);
        if (frames > 0) chunk_frames = std::max(chunk_frames, std::uint32_t{1});
      }
    }
    clock_100ns_ = SaturatingAdd(clock_100ns_, limit);
  }
  if (flags) *flags |= changed;
  return chunk_frames;
}

}  // namespace tervan
