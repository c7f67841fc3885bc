#include "shell/stored_state.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "effects/compressor/compressor_settings.h"
#include "effects/dither/dither_settings.h"
#include "effects/eq/eq_settings.h"
#include "effects/gate/gate_settings.h"
#include "testing/fakes.h"

namespace tervan {
namespace {

using tervan::testing::Bytes;
using tervan::testing::FakePoster;
using tervan::testing::FakeStream;
using tervan::testing::RecordingEffect;
using tervan::testing::Window;
using Words = std::vector<std::uint32_t>;

const Bytes kCompressorTag{0x9b, 0xf9, 0x00, 0xc4, 0x6e, 0x0c, 0x4c, 0x44,
                           0x8f, 0x20, 0x98, 0xdb, 0x21, 0x6b, 0xe5, 0x6e};
const Bytes kCompressorOlderTag{0x2b, 0xf2, 0xc9, 0x23, 0xec, 0x40, 0xd2, 0x11,
                                0x9d, 0x36, 0x00, 0xc0, 0x4f, 0x8e, 0xdc, 0x1e};
const Bytes kGateOlderTag{0xe0, 0x19, 0x94, 0x86, 0x1f, 0x50, 0xd3, 0x11,
                          0x8c, 0xdc, 0x00, 0xc0, 0x4f, 0x6b, 0x8e, 0x4c};
const Bytes kEqTag{0x0d, 0x9a, 0xb6, 0x8c, 0xe8, 0x10, 0xd2, 0x11, 0x9b, 0x89, 0x00, 0x10, 0x4b, 0x8d, 0x13, 0xc2};
const Bytes kDitherTag{0xe4, 0xf3, 0x0d, 0x26, 0x77, 0xac, 0xd2, 0x11, 0x9e, 0x93, 0x00, 0xc0, 0x4f, 0x68, 0xbe, 0x44};
const Bytes kNoTag(16, 0);

void Append(Bytes& bytes, std::uint32_t word) {
  for (int shift = 0; shift < 32; shift += 8) bytes.push_back(static_cast<std::uint8_t>(word >> shift));
}

Bytes Stored(std::uint32_t size_field, const Bytes& tag, const Words& body) {
  Bytes bytes;
  Append(bytes, size_field);
  bytes.insert(bytes.end(), tag.begin(), tag.end());
  for (const std::uint32_t word : body) Append(bytes, word);
  return bytes;
}

struct Kind {
  const char* name;
  std::uint32_t size_field;
  const Bytes& tag;
  std::uint32_t words;  // of the record
  std::span<const ParamDescriptor> table;
  StoredState stored;
  std::uint16_t code;
};

const Kind kCompressor{
    "compressor", 60, kCompressorTag, 10, compressor::kParams, {compressor::kForms, 40, LoadNotifies::kAfterBodyRead},
    32701};
const Kind kGate{"gate", 36, kCompressorTag, 4, gate::kParams, {gate::kForms, 16, LoadNotifies::kAlways}, 100};
const Kind kEq{"EQ", 120, kEqTag, 26, eq::kParams, {eq::kForms, 104, LoadNotifies::kAfterBodyRead}, 100};
const Kind kDither{"dither", 32, kDitherTag, 3, {}, {dither::kForms, 12, LoadNotifies::kAfterBodyRead}, 100};
const Kind* const kKinds[] = {&kCompressor, &kGate, &kEq, &kDither};

EffectTraits TraitsOf(const Kind& kind) {
  EffectTraits traits{};
  traits.settings_replaced_code = kind.code;
  traits.stored = kind.stored;
  return traits;
}

struct Rig {
  explicit Rig(const Kind& k) : kind(k), effect(TraitsOf(k), k.table) {
    effect.control().SetNotifyWindow(Window(1), 32700);
    Set(Words(kind.words, 7));
    FakeStream nowhere;
    SaveState(effect, nowhere, true);  // not modified
  }
  void Set(const Words& words) { effect.SetRecord(words.data()); }
  Words Get() {
    Words words(kMaxRecordBytes / 4);
    effect.GetRecord(words.data());
    words.resize(kind.words);
    return words;
  }
  std::size_t Notifications() {
    const auto messages = effect.poster.Take();
    for (const auto& message : messages) EXPECT_EQ(message, (FakePoster::Message{Window(1), 32700, kind.code}));
    return messages.size();
  }

  const Kind& kind;
  RecordingEffect effect;
};

// Words of the body that a load reads for this header; 0: refused.
std::uint32_t BodyWords(const Kind& kind, std::uint32_t size, const Bytes& tag) {
  if (&kind == &kCompressor) {
    if (tag == kCompressorTag) return size == 60 ? 10 : 0;
    if (size == 56) return tag == kCompressorOlderTag ? 9 : 0;
    return size == 44 ? 6 : size == 52 ? 8 : 0;
  }
  if (&kind == &kGate) {
    if (tag == kGateOlderTag) return size == 32 ? 3 : 0;
    return tag == kCompressorTag && size == 36 ? 4 : 0;
  }
  if (&kind == &kEq) return tag == kEqTag && size == 120 ? 25 : 0;
  return tag == kDitherTag && size == 32 ? 3 : 0;
}

TEST(StoredState, EveryHeaderIsReadOrRefusedAndTheCurrentOneWritten) {
  Words pattern(26);
  for (std::uint32_t i = 0; i < 26; ++i) pattern[i] = 1000 + i;
  for (const Kind* const kind : kKinds) {
    for (const std::uint32_t size : {0u, 12u, 32u, 36u, 44u, 52u, 56u, 60u, 104u, 120u, 124u, 0xFFFFFFFFu}) {
      for (const Bytes* const tag :
           {&kCompressorTag, &kCompressorOlderTag, &kGateOlderTag, &kEqTag, &kDitherTag, &kNoTag}) {
        SCOPED_TRACE(::testing::Message() << kind->name << ", size " << size << ", tag " << int{tag->front()});
        Rig rig(*kind);
        FakeStream stream(Stored(size, *tag, pattern));
        const std::uint32_t body = BodyWords(*kind, size, *tag);
        Words expected(kind->words, body == 0 ? 7 : 0);
        std::copy_n(pattern.begin(), body, expected.begin());
        if (body == 6) expected[6] = 1;  // automatic gain compensation, where a record has none

        EXPECT_EQ(LoadState(rig.effect, stream), body == 0 ? E_FAIL : S_OK);
        EXPECT_EQ(stream.position, 20 + 4 * body);
        EXPECT_EQ(rig.Get(), expected);
        EXPECT_EQ(rig.Notifications(), body != 0 || kind == &kGate ? 1u : 0u);
        EXPECT_EQ(rig.effect.control().IsDirty(), body != 0);

        FakeStream saved;
        EXPECT_EQ(SaveState(rig.effect, saved, false), S_OK);
        EXPECT_EQ(saved.bytes, Stored(kind->size_field, kind->tag, expected));
        EXPECT_EQ(SavedBytes(rig.effect), saved.bytes.size());
      }
    }
  }
}

TEST(StoredState, BrokenStreamsCountAsTheyReport) {
  constexpr std::size_t kHalfAHeader = 10, kOneWord = 24;
  struct Case {
    const Kind& kind;
    std::size_t bytes;
    int failing_call;
    HRESULT short_read, result;
    std::uint32_t first_word;  // afterwards
    std::size_t notifications;
  };
  for (const Case& c : {Case{kCompressor, kOneWord, 0, S_OK, E_OUTOFMEMORY, 7, 0},
                        {kCompressor, kOneWord, 1, S_OK, E_OUTOFMEMORY, 7, 1},
                        {kGate, kOneWord, 0, S_OK, E_OUTOFMEMORY, 7, 1},
                        {kCompressor, kOneWord, -1, S_OK, S_OK, 1, 1},
                        {kCompressor, kOneWord, -1, S_FALSE, S_FALSE, 1, 1},
                        {kCompressor, kOneWord, -1, E_FAIL, E_FAIL, 7, 1},
                        {kCompressor, kHalfAHeader, -1, S_FALSE, E_FAIL, 7, 0}}) {
    SCOPED_TRACE(::testing::Message() << c.bytes << " bytes, read " << c.failing_call << ", result " << c.result);
    Bytes bytes = Stored(c.kind.size_field, c.kind.tag, {1});
    bytes.resize(c.bytes);
    FakeStream stream(bytes);
    stream.failing_call = c.failing_call;
    stream.short_read = c.short_read;
    Rig rig(c.kind);
    EXPECT_EQ(LoadState(rig.effect, stream), c.result);
    Words expected(c.kind.words, 7);
    expected[0] = c.first_word;
    EXPECT_EQ(rig.Get(), expected);
    EXPECT_EQ(rig.Notifications(), c.notifications);
    EXPECT_EQ(rig.effect.control().IsDirty(), c.first_word == 1);
  }
}

TEST(StoredState, OnlyACompleteSaveThatIsAskedToTakesTheModifiedFlagBack) {
  struct Case {
    int failing_call;
    bool clear, dirty_before, dirty_after;
    std::size_t written;
  };
  for (const Case& c : {Case{-1, true, true, false, 36},
                        {-1, false, true, true, 36},
                        {0, true, true, true, 0},
                        {1, true, true, true, 20},
                        {1, true, false, false, 20}}) {
    SCOPED_TRACE(::testing::Message() << "write " << c.failing_call << " fails, clear " << c.clear);
    Rig rig(kGate);
    if (c.dirty_before) rig.effect.automated().Set(0, 5);
    FakeStream stream;
    stream.failing_call = c.failing_call;
    EXPECT_EQ(SaveState(rig.effect, stream, c.clear), c.failing_call < 0 ? S_OK : E_OUTOFMEMORY);
    EXPECT_EQ(rig.effect.control().IsDirty(), c.dirty_after);
    EXPECT_EQ(stream.bytes.size(), c.written);
  }
}

}  // namespace
}  // namespace tervan
