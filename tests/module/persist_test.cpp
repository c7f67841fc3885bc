// Stored settings: the bytes that hosts keep in their projects, and streams that fail.
#include <functional>

#include "module/effects.h"

namespace tervan::test {
namespace {

using PersistTest = EffectTest;
TERVAN_FOR_ALL_EFFECTS(PersistTest);

Bytes StoredBytes(const EffectRow& effect, const FormRow& form, const Settings& settings) {
  Bytes record(20);
  std::memcpy(record.data(), &form.size_field, 4);
  std::memcpy(record.data() + 4, &form.tag, 16);
  const Bytes body = RecordBytes(effect, settings);
  record.insert(record.end(), body.begin(), body.end());
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
    const auto* const from = static_cast<const BYTE*>(in);
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

TEST_P(PersistTest, AFreshFilterSavesTheCurrentFormOfPreset0) {
  const Filter filter(effect);
  const Bytes expected = StoredBytes(effect, effect.forms[0], effect.presets[0].settings);
  FakeStream stream;
  ASSERT_EQ(filter.persist->Save(&stream, FALSE), S_OK);
  EXPECT_EQ(filter.persist->IsDirty(), S_OK);
  EXPECT_EQ(stream.bytes, expected);
  stream.failing_call = 3;
  EXPECT_EQ(filter.persist->Save(&stream, TRUE), STG_E_ACCESSDENIED);
  EXPECT_EQ(filter.persist->IsDirty(), S_OK);
  ULARGE_INTEGER size;
  size.QuadPart = ~0ull;
  EXPECT_EQ(filter.persist->GetSizeMax(&size), S_OK);
  EXPECT_EQ(size.QuadPart, expected.size());
  EXPECT_EQ(filter.persist->GetSizeMax(nullptr), E_POINTER);
  EXPECT_EQ(filter.persist->Save(nullptr, TRUE), E_POINTER);
  EXPECT_EQ(filter.persist->Load(nullptr), E_POINTER);
}

TEST_P(PersistTest, EveryChangeOfSettingsMakesTheFilterModified) {
  const Filter filter(effect);
  const ParamRow& first = effect.params[0];
  FakeStream stored;
  stored.bytes = StoredBytes(effect, effect.forms[0], effect.loaded);
  const struct {
    const char* what;
    std::function<void()> act;
    HRESULT dirty;
  } rows[] = {
      {"a value", [&] { filter.SetAt(first, first.max * first.scale); }, S_OK},
      {"the same value", [&] { filter.SetAt(first, first.max * first.scale); }, S_FALSE},
      {"a record, even the same", [&] { filter.Set(filter.Get()); }, S_OK},
      {"the host's value", [&] { return effect.has_automation && filter.values->SetParam(0, first.min); },
       effect.has_automation ? S_OK : S_FALSE},
      {"the host's same value", [&] { return effect.has_automation && filter.values->SetParam(0, first.min); },
       S_FALSE},
      {"a preset", [&] { filter.presets->ApplyPreset(2); }, S_OK},
      {"a load", [&] { filter.persist->Load(&stored); }, S_OK},
  };
  for (const auto& row : rows) {
    FakeStream stream;
    ASSERT_EQ(filter.persist->Save(&stream, TRUE), S_OK);
    row.act();
    EXPECT_EQ(filter.persist->IsDirty(), row.dirty) << row.what;
  }
}

// Loads a record into a filter that has 9 or its highest value in each word. No settings: it keeps them. told: its
// windows hear of it.
void ExpectLoad(const EffectRow& effect, FakeStream& stream, HRESULT result, Settings settings, bool told) {
  Window window;
  const Filter filter(effect);
  ASSERT_EQ(filter.Register(window, 1), S_OK);
  filter.Set(Settings(effect.loaded.size(), 9));
  if (settings.empty()) settings = filter.Get();
  EXPECT_EQ(filter.persist->Load(&stream), result);
  EXPECT_EQ(filter.Get(), settings);
  EXPECT_EQ(window.Take(), Commands(told ? 1 : 0, {1, effect.replaced_code}));
}

TEST_P(PersistTest, LoadingTakesEachFormAndRefusesOthers) {
  for (const FormRow& form : effect.forms) {
    SCOPED_TRACE(&form - effect.forms.data());
    const bool is_taken = form.words != 0;
    Settings expected(effect.loaded.begin(), effect.loaded.begin() + form.words);
    expected.insert(expected.end(), form.rest.begin(), form.rest.end());
    FakeStream stream;
    stream.bytes = StoredBytes(effect, form, effect.loaded);
    ExpectLoad(effect, stream, is_taken ? S_OK : E_FAIL, expected, is_taken || effect.told_of_failed_loads);
    EXPECT_EQ(stream.position, 20 + 4 * form.words);
  }
}

TEST_P(PersistTest, AFailingStreamLeavesTheSettings) {
  for (const int failing_call : {0, 1}) {  // the header, the body
    SCOPED_TRACE(failing_call);
    FakeStream stream;
    stream.bytes = StoredBytes(effect, effect.forms[0], effect.loaded);
    stream.failing_call = failing_call;
    ExpectLoad(effect, stream, STG_E_ACCESSDENIED, {}, failing_call == 1 || effect.told_of_failed_loads);
  }
}

}  // namespace
}  // namespace tervan::test
