// The parameter interfaces of a filter. They are handed out for effects with a parameter store only.

#include <cstddef>
#include <cstring>
#include <memory>
#include <new>
#include <string>

#include "directshow/com_ptr.h"
#include "shell/filter_shell.h"

namespace tervan {
namespace {

static_assert(sizeof(ParamInfo) == sizeof(MP_PARAMINFO));
static_assert(offsetof(ParamInfo, szLabel) == offsetof(MP_PARAMINFO, szLabel));
static_assert(sizeof(SegmentData) == sizeof(MP_ENVELOPE_SEGMENT));
static_assert(offsetof(SegmentData, flags) == offsetof(MP_ENVELOPE_SEGMENT, flags));

// Tells the host's recorder. Its results do not matter.
class HostRecorder final : public ParamRecorder {
 public:
  explicit HostRecorder(IParamRecorder* recorder) : recorder_(recorder) {}
  void BeginEdit(std::uint32_t index) override {
    DWORD indices[] = {index};
    recorder_->BeginEdit(indices, 1);
  }
  void EditValue(std::uint32_t index, float value) override {
    DWORD indices[] = {index};
    recorder_->EditValue(indices, 1, &value);
  }
  void EndEdit(std::uint32_t index) override {
    DWORD indices[] = {index};
    recorder_->EndEdit(indices, 1);
  }

 private:
  const directshow::ComPtr<IParamRecorder> recorder_;
};

}  // namespace

HRESULT FilterShell::GetParam(DWORD index, MP_DATA* value) { return effect_->params()->GetParam(index, value); }
HRESULT FilterShell::SetParam(DWORD index, MP_DATA value) { return effect_->SetParam(index, value); }

HRESULT FilterShell::AddEnvelope(DWORD index, DWORD count, MP_ENVELOPE_SEGMENT* segments) {
  return effect_->params()->AddEnvelope(index, count, reinterpret_cast<const SegmentData*>(segments));
}

HRESULT FilterShell::FlushEnvelope(DWORD index, REFERENCE_TIME start, REFERENCE_TIME end) {
  return effect_->params()->FlushEnvelope(index, start, end);
}

HRESULT FilterShell::SetTimeFormat(GUID format, MP_TIMEDATA) { return format == kTimeReference ? S_OK : E_FAIL; }

HRESULT FilterShell::GetParamCount(DWORD* count) {
  if (!count) return E_POINTER;
  *count = static_cast<DWORD>(effect_->params()->table().size());
  return S_OK;
}

HRESULT FilterShell::GetParamInfo(DWORD index, MP_PARAMINFO* info) {
  if (!info) return E_POINTER;
  const auto table = effect_->params()->table();
  if (index >= table.size()) return E_INVALIDARG;
  std::memcpy(info, &table[index].info, sizeof *info);
  return S_OK;
}

HRESULT FilterShell::GetParamText(DWORD index, WCHAR** text) {
  if (!text) return E_POINTER;
  *text = nullptr;
  const auto table = effect_->params()->table();
  if (index >= table.size()) return E_INVALIDARG;
  try {
    const std::u16string block = ParamText(table[index]);
    const std::size_t bytes = block.size() * sizeof(WCHAR);
    *text = static_cast<WCHAR*>(CoTaskMemAlloc(bytes));
    if (!*text) return E_OUTOFMEMORY;
    std::memcpy(*text, block.data(), bytes);
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  }
  return S_OK;
}

HRESULT FilterShell::GetNumTimeFormats(DWORD* count) {
  if (!count) return E_POINTER;
  *count = 1;
  return S_OK;
}

HRESULT FilterShell::GetSupportedTimeFormat(DWORD index, GUID* format) {
  if (!format) return E_POINTER;
  if (index != 0) return E_INVALIDARG;
  *format = kTimeReference;
  return S_OK;
}

HRESULT FilterShell::GetCurrentTimeFormat(GUID* format, MP_TIMEDATA* time_data) {
  if (!format || !time_data) return E_POINTER;
  *format = kTimeReference;
  *time_data = 0;  // reference times need none, whatever the host has set
  return S_OK;
}

HRESULT FilterShell::SetRecorder(IParamRecorder* recorder) {
  try {
    effect_->params()->SetRecorder(recorder ? std::make_shared<HostRecorder>(recorder) : nullptr);
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  }
  return S_OK;
}

}  // namespace tervan
