// Stored settings: the bytes that hosts keep in their projects, and streams that fail.
#include <cstdint>
#include <vector>

#include "module/module.h"

namespace tervan::test {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr GUID kTag = {0xc400f99b, 0x0c6e, 0x444c, {0x8f, 0x20, 0x98, 0xdb, 0x21, 0x6b, 0xe5, 0x6e}};
constexpr GUID kOlderTag = {0x23c9f22b, 0x40ec, 0x11d2, {0x9d, 0x36, 0x00, 0xc0, 0x4f, 0x8e, 0xdc, 0x1e}};
constexpr CompressorSettings kStored{1, -2, -30, 4.5f, 60, 700, 0, 1, 0, 1};

Bytes Record(const GUID& tag, std::uint32_t body_bytes) {
  const std::uint32_t record_bytes = 20 + body_bytes;
  Bytes record(record_bytes);
  std::memcpy(record.data(), &record_bytes, 4);
  std::memcpy(record.data() + 4, &tag, 16);
  std::memcpy(record.data() + 20, &kStored, body_bytes);
  return record;
}

// Gives and takes bytes; call number `failing_call` (from 0) does nothing and fails.
class FakeStream final : public CountedFake<IStream> {
 public:
  STDMETHODIMP Read(void* out, ULONG count, ULONG*) override {
    if (calls++ == failing_call) return STG_E_ACCESSDENIED;
    const ULONG given = std::min<ULONG>(count, static_cast<ULONG>(bytes.size() - position));
    std::memcpy(out, bytes.data() + position, given);
    position += given;
    return S_OK;  // even when it came short
  }
  STDMETHODIMP Write(const void* in, ULONG count, ULONG*) override {
    if (calls++ == failing_call) return STG_E_ACCESSDENIED;
    const auto* const from = static_cast<const std::uint8_t*>(in);
    bytes.insert(bytes.end(), from, from + count);
    return S_OK;
  }
  STDMETHODIMP Seek(LARGE_INTEGER, DWORD, ULARGE_INTEGER*) override { return E_NOTIMPL; }
  STDMETHODIMP SetSize(ULARGE_INTEGER) override { return E_NOTIMPL; }
  STDMETHODIMP CopyTo(IStream*, ULARGE_INTEGER, ULARGE_INTEGER*, ULARGE_INTEGER*) override { return E_NOTIMPL; }
  STDMETHODIMP Commit(DWORD) override { return E_NOTIMPL; }
  STDMETHODIMP Revert() override { return E_NOTIMPL; }
  STDMETHODIMP LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
  STDMETHODIMP UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
  STDMETHODIMP Stat(STATSTG*, DWORD) override { return E_NOTIMPL; }
  STDMETHODIMP Clone(IStream**) override { return E_NOTIMPL; }

  Bytes bytes;
  std::size_t position = 0;
  int calls = 0;
  int failing_call = -1;
};

using PersistTest = ModuleTest;

TEST_F(PersistTest, AFreshFilterSavesTheseBytes) {
  const auto persist = NewCompressor<IPersistStream>();
  FakeStream stream;
  ASSERT_EQ(persist->Save(&stream, TRUE), S_OK);
  EXPECT_EQ(stream.bytes, (Bytes{60,   0,    0,    0,                                               // size
                                 0x9b, 0xf9, 0x00, 0xc4, 0x6e, 0x0c, 0x4c, 0x44,                    // tag
                                 0x8f, 0x20, 0x98, 0xdb, 0x21, 0x6b, 0xe5, 0x6e,                    //
                                 0,    0,    0,    0,    0,    0,    0,    0,    0, 0, 0,    0,     // 0 0 0
                                 0,    0,    0x80, 0x3f, 0,    0,    0x70, 0x41, 0, 0, 0x7a, 0x43,  // 1 15 250
                                 1,    0,    0,    0,    0,    0,    0,    0,    0, 0, 0,    0,    0, 0, 0, 0}));
  ULARGE_INTEGER size;
  size.QuadPart = ~0ull;
  EXPECT_EQ(persist->GetSizeMax(&size), S_OK);
  EXPECT_EQ(size.QuadPart, 60u);
  EXPECT_EQ(persist->GetSizeMax(nullptr), E_POINTER);
  EXPECT_EQ(persist->Save(nullptr, TRUE), E_POINTER);
  EXPECT_EQ(persist->Load(nullptr), E_POINTER);
}

TEST_F(PersistTest, SavingClearsTheModifiedFlagWhenItSucceedsAndIsToldTo) {
  const Compressor compressor;
  const struct {
    BOOL clear;
    int failing_call;
    HRESULT result, dirty;
  } rows[] = {{FALSE, -1, S_OK, S_OK}, {TRUE, 1, STG_E_ACCESSDENIED, S_OK}, {TRUE, -1, S_OK, S_FALSE}};
  for (const auto& row : rows) {
    SCOPED_TRACE(&row - rows);
    FakeStream stream;
    stream.failing_call = row.failing_call;
    EXPECT_EQ(compressor.persist->Save(&stream, row.clear), row.result);
    EXPECT_EQ(compressor.persist->IsDirty(), row.dirty);
  }
}

TEST_F(PersistTest, LoadingTakesARecordTellsTheWindowsOrLeavesTheSettings) {
  const CompressorSettings before{9, 9, -9, 9, 9, 9, 1, 1, 0, 1};
  const struct {
    const char* what;
    Bytes record;
    int failing_call;
    HRESULT result;
    CompressorSettings loaded;
    bool told;
  } rows[] = {
      {"current", Record(kTag, 40), -1, S_OK, kStored, true},
      {"24 bytes", Record(kOlderTag, 24), -1, S_OK, {1, -2, -30, 4.5f, 60, 700, 1, 0, 0, 0}, true},
      {"another tag", Record(GUID_NULL, 40), -1, E_FAIL, before, false},
      {"no header", Record(kTag, 40), 0, STG_E_ACCESSDENIED, before, false},
      {"no body", Record(kTag, 40), 1, STG_E_ACCESSDENIED, before, true},
  };
  Window window;
  const Compressor compressor;
  ASSERT_EQ(compressor.control->SetNotifyWindow(window, 1), S_OK);
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    ASSERT_EQ(compressor.control->SetSettings(&before), S_OK);
    FakeStream stream;
    stream.bytes = row.record;
    stream.failing_call = row.failing_call;
    EXPECT_EQ(compressor.persist->Load(&stream), row.result);
    EXPECT_EQ(SettingsOf(*compressor.control), row.loaded);
    EXPECT_EQ(window.Take(), (std::vector<std::pair<int, int>>(row.told ? 1 : 0, {1, 32701})));
  }
}

}  // namespace
}  // namespace tervan::test
