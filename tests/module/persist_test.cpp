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

Bytes Record(std::uint32_t size_field, const GUID& tag, const CompressorSettings& settings, std::size_t body_bytes) {
  Bytes record(20 + body_bytes);
  std::memcpy(record.data(), &size_field, 4);
  std::memcpy(record.data() + 4, &tag, 16);
  std::memcpy(record.data() + 20, &settings, body_bytes);
  return record;
}

// Gives and takes bytes; call number `failing_call` (from 0) fails with `failure`. A read past the end comes short and
// succeeds.
class FakeStream final : public CountedFake<IStream> {
 public:
  explicit FakeStream(Bytes content = {}) : bytes(std::move(content)) {}

  STDMETHODIMP Read(void* out, ULONG count, ULONG* read) override {
    if (calls++ == failing_call) return failure;
    const ULONG given = std::min<ULONG>(count, static_cast<ULONG>(bytes.size() - position));
    std::memcpy(out, bytes.data() + position, given);
    position += given;
    if (read) *read = given;
    return given == count ? S_OK : short_read;
  }
  STDMETHODIMP Write(const void* in, ULONG count, ULONG* written) override {
    if (calls++ == failing_call) return failure;
    const auto* const from = static_cast<const std::uint8_t*>(in);
    bytes.insert(bytes.end(), from, from + count);
    if (written) *written = count;
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
  HRESULT failure = STG_E_ACCESSDENIED;
  HRESULT short_read = S_OK;
};

class PersistTest : public ModuleTest {
 protected:
  void SetUp() override {
    ModuleTest::SetUp();
    control = NewCompressor<ICompressorSettings>();
    persist = Query<IPersistStream>(control.Get());
  }
  void TearDown() override {
    persist.Reset();
    control.Reset();
    ModuleTest::TearDown();
  }

  ComPtr<ICompressorSettings> control;
  ComPtr<IPersistStream> persist;
};

TEST_F(PersistTest, AFreshFilterSavesTheseBytes) {
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

TEST_F(PersistTest, LoadsEveryFormAndRefusesTheRest) {
  const CompressorSettings before{9, 9, -9, 9, 9, 9, 1, 1, 0, 1};
  GUID other = kTag;
  other.Data4[7] ^= 1;
  CompressorSettings reserved_set = kStored;
  reserved_set.reserved = 1234;
  const struct {
    const char* what;
    Bytes record;
    HRESULT result;
    CompressorSettings loaded;
  } rows[] = {
      {"current", Record(60, kTag, kStored, 40), S_OK, kStored},
      {"reserved word set", Record(60, kTag, reserved_set, 40), S_OK, kStored},
      {"36 bytes", Record(56, kOlderTag, kStored, 36), S_OK, {1, -2, -30, 4.5f, 60, 700, 0, 1, 0, 0}},
      {"24 bytes", Record(44, kOlderTag, kStored, 24), S_OK, {1, -2, -30, 4.5f, 60, 700, 1, 0, 0, 0}},
      {"24 bytes, any tag", Record(44, GUID_NULL, kStored, 24), S_OK, {1, -2, -30, 4.5f, 60, 700, 1, 0, 0, 0}},
      {"32 bytes", Record(52, GUID_NULL, kStored, 32), S_OK, {1, -2, -30, 4.5f, 60, 700, 0, 1, 0, 0}},
      {"current size, other tag", Record(60, other, kStored, 40), E_FAIL, before},
      {"current tag, 56", Record(56, kTag, kStored, 36), E_FAIL, before},
      {"current tag, 44", Record(44, kTag, kStored, 24), E_FAIL, before},
      {"current tag, 52", Record(52, kTag, kStored, 32), E_FAIL, before},
      {"56 with another tag", Record(56, other, kStored, 36), E_FAIL, before},
      {"older tag, 60", Record(60, kOlderTag, kStored, 40), E_FAIL, before},
      {"a gate's record", Record(36, kTag, kStored, 16), E_FAIL, before},
      {"size 0", Record(0, kTag, kStored, 40), E_FAIL, before},
      {"all ones", Bytes(60, 0xFF), E_FAIL, before},
      {"nothing", {}, E_FAIL, before},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    ASSERT_EQ(control->SetSettings(&before), S_OK);
    FakeStream clean;
    ASSERT_EQ(persist->Save(&clean, TRUE), S_OK);
    FakeStream stream(row.record);
    EXPECT_EQ(persist->Load(&stream), row.result);
    EXPECT_EQ(SettingsOf(*control), row.loaded);
    EXPECT_EQ(stream.position, row.result == S_OK ? row.record.size() : std::min<std::size_t>(20, row.record.size()));
    EXPECT_EQ(persist->IsDirty(), row.result == S_OK ? S_OK : S_FALSE);
  }
}

TEST_F(PersistTest, WhatOneFilterSavesAnotherLoads) {
  ASSERT_EQ(control->SetSettings(&kStored), S_OK);
  FakeStream stream;
  ASSERT_EQ(persist->Save(&stream, FALSE), S_OK);
  const auto other = NewCompressor<IPersistStream>();
  ASSERT_EQ(other->Load(&stream), S_OK);
  EXPECT_EQ(SettingsOf(*Query<ICompressorSettings>(other.Get())), kStored);
}

TEST_F(PersistTest, OnlyASuccessfulSaveThatIsToldToClearsTheModifiedFlag) {
  const struct {
    BOOL clear;
    int failing_call;
    HRESULT result, dirty;
    std::size_t written;
  } rows[] = {{FALSE, -1, S_OK, S_OK, 60},
              {TRUE, 0, STG_E_ACCESSDENIED, S_OK, 0},
              {TRUE, 1, STG_E_ACCESSDENIED, S_OK, 20},
              {TRUE, -1, S_OK, S_FALSE, 60},
              {FALSE, -1, S_OK, S_FALSE, 60},
              {TRUE, 1, STG_E_ACCESSDENIED, S_FALSE, 20}};
  for (const auto& row : rows) {
    SCOPED_TRACE(&row - rows);
    FakeStream stream;
    stream.failing_call = row.failing_call;
    EXPECT_EQ(persist->Save(&stream, row.clear), row.result);
    EXPECT_EQ(persist->IsDirty(), row.dirty);
    EXPECT_EQ(stream.bytes.size(), row.written);
  }
}

// What the stream answers is returned; only a body that was asked for reaches the windows.
TEST_F(PersistTest, StreamsThatFailLeaveTheSettings) {
  const HWND window = CreateWindowExW(0, L"STATIC", nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
  ASSERT_EQ(control->SetNotifyWindow(window, 1), S_OK);
  const CompressorSettings before = SettingsOf(*control);
  const struct {
    int failing_call;
    std::uint32_t size_field;
    HRESULT result;
    bool notified;
  } rows[] = {{0, 60, STG_E_ACCESSDENIED, false}, {1, 60, STG_E_ACCESSDENIED, true}, {-1, 61, E_FAIL, false}};
  for (const auto& row : rows) {
    SCOPED_TRACE(&row - rows);
    FakeStream stream(Record(row.size_field, kTag, kStored, 40));
    stream.failing_call = row.failing_call;
    EXPECT_EQ(persist->Load(&stream), row.result);
    EXPECT_EQ(SettingsOf(*control), before);
    MSG message{};
    EXPECT_EQ(PeekMessageW(&message, window, WM_COMMAND, WM_COMMAND, PM_REMOVE) != FALSE, row.notified);
    if (row.notified) {
      EXPECT_EQ(message.wParam, static_cast<WPARAM>(MAKEWPARAM(1, 32701)));
    }
  }
  DestroyWindow(window);
}

TEST_F(PersistTest, AShortReadThatTheStreamCallsSuccessIsSuccess) {
  for (const HRESULT answer : {S_OK, S_FALSE}) {
    Bytes record = Record(60, kTag, kStored, 40);
    record.resize(20 + 12);
    FakeStream stream(record);
    stream.short_read = answer;
    EXPECT_EQ(persist->Load(&stream), answer);
    EXPECT_EQ(SettingsOf(*control).threshold_db, kStored.threshold_db);
  }
}

TEST_F(PersistTest, AbsurdRecordsAreStoredAndHarmless) {
  Bytes record = Record(60, kTag, kStored, 40);
  std::fill(record.begin() + 20, record.end(), 0xFF);  // NaNs and switches of -1
  FakeStream stream(record);
  EXPECT_EQ(persist->Load(&stream), S_OK);
  const auto direct = Query<IDirectBufferProcess>(control.Get());
  ASSERT_EQ(direct->BeginStream(2, 44100), S_OK);
  std::vector<float> buffer(2000, 0.5f);
  EXPECT_EQ(direct->ProcessBuffer(buffer.data(), 1000, 0), S_OK);
  EXPECT_EQ(direct->EndStream(), S_OK);
}

}  // namespace
}  // namespace tervan::test
