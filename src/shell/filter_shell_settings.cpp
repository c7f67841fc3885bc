// Stored settings, presets and direct processing of a filter.

#include "shell/filter_shell.h"

namespace tervan {
namespace {

class HostStream final : public ByteStream {
 public:
  explicit HostStream(IStream& stream) : stream_(stream) {}
  HRESULT Read(void* data, std::uint32_t bytes) override { return stream_.Read(data, bytes, nullptr); }
  HRESULT Write(const void* data, std::uint32_t bytes) override { return stream_.Write(data, bytes, nullptr); }

 private:
  IStream& stream_;
};

}  // namespace

HRESULT FilterShell::IsDirty() { return effect_->control().IsDirty() ? S_OK : S_FALSE; }

HRESULT FilterShell::Load(IStream* stream) {
  if (!stream) return E_POINTER;
  HostStream bytes(*stream);
  return LoadState(*effect_, bytes);
}

HRESULT FilterShell::Save(IStream* stream, BOOL clear_dirty) {
  if (!stream) return E_POINTER;
  HostStream bytes(*stream);
  return SaveState(*effect_, bytes, clear_dirty != FALSE);
}

HRESULT FilterShell::GetSizeMax(ULARGE_INTEGER* size) {
  if (!size) return E_POINTER;
  size->QuadPart = SavedBytes(*effect_);
  return S_OK;
}

HRESULT FilterShell::GetPresetCount(LONG* count) {
  if (!count) return E_POINTER;
  *count = static_cast<LONG>(effect_->traits().presets.count);
  return S_OK;
}

HRESULT FilterShell::GetPresetName(LONG index, WCHAR* name, LONG name_length) {
  const PresetList& presets = effect_->traits().presets;
  if (!name) return E_POINTER;
  if (index < 0 || static_cast<std::size_t>(index) >= presets.count) return E_INVALIDARG;
  if (name_length <= 0) return S_OK;
  WCHAR wide[kPresetNameBytes] = {};
  MultiByteToWideChar(CP_ACP, 0, presets.name(static_cast<std::size_t>(index)), -1, wide, kPresetNameBytes);
  lstrcpynW(name, wide, name_length);  // cuts, and always terminates
  return S_OK;
}

HRESULT FilterShell::ApplyPreset(LONG index) { return tervan::ApplyPreset(*effect_, index); }

HRESULT FilterShell::BeginStream(DWORD channels, DWORD sample_rate_hz) {
  return processor_.BeginStream(channels, sample_rate_hz);
}

HRESULT FilterShell::ProcessBuffer(float* buffer, DWORD frames, DWORD flush) {
  return processor_.ProcessBuffer(buffer, frames, flush != 0);
}

HRESULT FilterShell::GetTail(float* buffer, DWORD* frames) {
  if (!frames) return E_POINTER;
  std::uint32_t count = *frames;
  const HRESULT result = processor_.GetTail(buffer, &count);
  if (SUCCEEDED(result)) *frames = count;
  return result;
}

HRESULT FilterShell::EndStream() { return processor_.EndStream(); }
HRESULT FilterShell::IsUnchanged() { return processor_.IsUnchanged() ? S_FALSE : S_OK; }
HRESULT FilterShell::Refresh(DWORD reset, DWORD, DWORD) { return processor_.Refresh(reset != 0); }

}  // namespace tervan
