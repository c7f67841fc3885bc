// Stored settings: a 20-byte header (size field, tag GUID), then the body, little-endian and without padding. And
// factory presets.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>

#include "support/result.h"

namespace tervan {

static_assert(std::endian::native == std::endian::little, "records are copied as they lie in memory");

inline constexpr std::size_t kHeaderBytes = 20;
inline constexpr std::size_t kMaxRecordBytes = 128;  // no effect's settings record is longer

// One form in which a record may be stored.
struct StoredForm {
  std::uint32_t size_field;
  const GUID* tag;           // null: any but the current form's
  std::uint32_t body_bytes;  // what a load reads; the fields behind it come from `missing`
  const void* missing;       // a record whose fields complete the body; null when there are none
};

enum class LoadNotifies { kAfterBodyRead, kAlways };

struct StoredState {
  std::span<const StoredForm> forms;  // the current one first
  std::uint32_t record_bytes;         // what a save writes behind the header
  LoadNotifies load_notifies;
};

inline constexpr std::size_t kPresetNameBytes = 64;

// A table of {name, settings record} rows.
struct PresetList {
  const void* first = nullptr;
  std::size_t count = 0;
  std::size_t row_bytes = 0;

  const char* name(std::size_t index) const { return static_cast<const char*>(first) + index * row_bytes; }
  const void* record(std::size_t index) const { return name(index) + kPresetNameBytes; }
};

template <typename Record>
struct FactoryPreset {
  char name[kPresetNameBytes];  // zero-padded, in the system code page
  Record settings;
};

template <typename Record, std::size_t kCount>
constexpr PresetList ListOf(const FactoryPreset<Record> (&presets)[kCount]) {
  return {presets, kCount, sizeof(FactoryPreset<Record>)};
}

// A stream of bytes as the host's storage offers it. Results are the stream's own; a short read that the stream reports
// as success is taken as success.
class ByteStream {
 public:
  virtual ~ByteStream() = default;
  virtual HRESULT Read(void* data, std::uint32_t bytes) = 0;
  virtual HRESULT Write(const void* data, std::uint32_t bytes) = 0;
};

class Effect;

// Replaces the effect's settings by a stored record and tells its windows. E_FAIL for an unknown form, else the result
// of the read; a failed read leaves the settings alone, a short one the fields that it did not reach.
HRESULT LoadState(Effect& effect, ByteStream& stream);

// Writes the current form; both parts written, clear_dirty takes the modified flag back.
HRESULT SaveState(Effect& effect, ByteStream& stream, bool clear_dirty);

std::uint64_t SavedBytes(const Effect& effect);

// Applies a factory preset and tells the windows. E_INVALIDARG for an index without a row.
HRESULT ApplyPreset(Effect& effect, std::int32_t index);

}  // namespace tervan
