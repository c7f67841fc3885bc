#include "shell/stored_state.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "shell/effect.h"

namespace tervan {
namespace {

#pragma pack(push, 1)
struct Header {
  std::uint32_t size_field;
  GUID tag;
};
#pragma pack(pop)
static_assert(sizeof(Header) == kHeaderBytes);

// Room for any effect's record, aligned as its fields are.
struct RecordBuffer {
  std::byte* data() { return bytes; }
  alignas(std::max_align_t) std::byte bytes[kMaxRecordBytes] = {};
};

const StoredForm* FindForm(const StoredState& stored, const Header& header) {
  const StoredForm& current = stored.forms.front();
  const bool tagged_current = header.tag == *current.tag;
  const auto form = std::find_if(stored.forms.begin(), stored.forms.end(), [&](const StoredForm& candidate) {
    if (candidate.size_field != header.size_field) return false;
    return candidate.tag ? header.tag == *candidate.tag : !tagged_current;
  });
  return form == stored.forms.end() ? nullptr : &*form;
}

struct LoadResult {
  HRESULT result;
  bool body_read;  // the read of the body was tried
};

LoadResult LoadBody(Effect& effect, ByteStream& stream) {
  const StoredState& stored = effect.traits().stored;
  Header header{};
  const HRESULT header_result = stream.Read(&header, sizeof header);
  if (FAILED(header_result)) return {header_result, false};
  const StoredForm* const form = FindForm(stored, header);
  if (!form) return {E_FAIL, false};

  RecordBuffer record;
  effect.GetRecord(record.data());  // what a short body does not reach stays as it is
  const HRESULT body_result = stream.Read(record.data(), form->body_bytes);
  if (FAILED(body_result)) return {body_result, true};
  if (form->missing) {
    std::memcpy(record.data() + form->body_bytes, static_cast<const std::byte*>(form->missing) + form->body_bytes,
                stored.record_bytes - form->body_bytes);
  }
  effect.SetRecord(record.data());
  return {body_result, true};
}

}  // namespace

HRESULT LoadState(Effect& effect, ByteStream& stream) {
  const LoadResult load = LoadBody(effect, stream);
  const EffectTraits& traits = effect.traits();
  if (load.body_read || traits.stored.load_notifies == LoadNotifies::kAlways) {
    effect.control().Notify(traits.settings_replaced_code);
  }
  return load.result;
}

HRESULT SaveState(Effect& effect, ByteStream& stream, bool clear_dirty) {
  const StoredState& stored = effect.traits().stored;
  const StoredForm& current = stored.forms.front();
  const Header header{current.size_field, *current.tag};
  // Taken before the settings are read: what changes while the host's stream is written to is still to be saved.
  const bool was_dirty = clear_dirty && effect.control().TakeDirty();
  RecordBuffer record;
  effect.GetRecord(record.data());
  HRESULT result = stream.Write(&header, sizeof header);
  if (SUCCEEDED(result)) result = stream.Write(record.data(), stored.record_bytes);
  if (FAILED(result) && was_dirty) effect.control().MarkDirty();
  return result;
}

std::uint64_t SavedBytes(const Effect& effect) { return kHeaderBytes + effect.traits().stored.record_bytes; }

HRESULT ApplyPreset(Effect& effect, std::int32_t index) {
  const EffectTraits& traits = effect.traits();
  if (index < 0 || static_cast<std::size_t>(index) >= traits.presets.count) return E_INVALIDARG;
  const HRESULT result = effect.SetRecord(traits.presets.record(static_cast<std::size_t>(index)));
  if (SUCCEEDED(result)) effect.control().Notify(traits.settings_replaced_code);
  return result;
}

}  // namespace tervan
