#include "shell/filter_shell.h"

#include <algorithm>
#include <utility>

#include "directshow/com_ptr.h"
#include "shell/filter_setup.h"

namespace tervan {
namespace {

class PostingWindows final : public WindowPoster {
 public:
  bool Exists(WindowHandle window) override { return IsWindow(static_cast<HWND>(window)) != FALSE; }
  void PostCommand(WindowHandle window, std::int32_t command_id, std::uint16_t code) override {
    PostMessageW(static_cast<HWND>(window), WM_COMMAND, MAKEWPARAM(command_id, code), 0);
  }
};

std::uint32_t NonNegative(long bytes) { return bytes > 0 ? static_cast<std::uint32_t>(bytes) : 0; }

}  // namespace

WindowPoster& MessagePoster() {
  static constinit PostingWindows poster;
  return poster;
}

FilterShell::FilterShell(IUnknown* outer, std::unique_ptr<Effect> effect)
    : Implements(outer, effect->traits().filter_clsid, kInputPinName, kOutputPinName), effect_(std::move(effect)) {}

IUnknown* FilterShell::FindInterface(REFIID iid) noexcept {
  if (effect_->params()) {
    if (IUnknown* const found =
            directshow::FindIn(iid, {{__uuidof(IMediaParams), static_cast<IMediaParams*>(this)},
                                     {__uuidof(IMediaParamInfo), static_cast<IMediaParamInfo*>(this)},
                                     {__uuidof(IParamRecorderSite), static_cast<IParamRecorderSite*>(this)}})) {
      return found;
    }
  }
  if (IUnknown* const found =
          directshow::FindIn(iid, {{__uuidof(ISpecifyPropertyPages), static_cast<ISpecifyPropertyPages*>(this)},
                                   {__uuidof(IPersistStream), static_cast<IPersistStream*>(this)},
                                   {__uuidof(IPluginPresets), static_cast<IPluginPresets*>(this)},
                                   {__uuidof(IDirectBufferProcess), static_cast<IDirectBufferProcess*>(this)}})) {
    return found;
  }
  return InPlaceTransformFilter::FindInterface(iid);
}

HRESULT FilterShell::GetPages(CAUUID* pages) {
  if (!pages) return E_POINTER;
  pages->cElems = 0;
  pages->pElems = static_cast<GUID*>(CoTaskMemAlloc(sizeof(GUID)));
  if (!pages->pElems) return E_OUTOFMEMORY;
  pages->cElems = 1;
  pages->pElems[0] = effect_->traits().page_clsid;
  return S_OK;
}

HRESULT FilterShell::CheckInputType(const AM_MEDIA_TYPE& type) {
  return CheckFormat({.is_audio = type.majortype == MEDIATYPE_Audio,
                      .temporally_compressed = type.bTemporalCompression != FALSE,
                      .block = type.pbFormat,
                      .block_bytes = type.cbFormat});
}

HRESULT FilterShell::SetMediaType(PIN_DIRECTION direction, const AM_MEDIA_TYPE& type) {
  processor_.SetFormat(NormalisedFormat(type.pbFormat));
  effect_->control().Notify(direction == PINDIR_INPUT ? kInputFormatSet : kOutputFormatSet);
  return S_OK;
}

HRESULT FilterShell::StartStreaming() {
  // Direct processing may have left its own format.
  directshow::MediaType type;
  const HRESULT connected = Input().GetConnectionType(&type);
  if (FAILED(connected)) return connected;
  processor_.SetFormat(NormalisedFormat(type->pbFormat));
  return processor_.StartStreaming();
}

HRESULT FilterShell::StopStreaming() { return processor_.StopStreaming(); }

HRESULT FilterShell::Transform(IMediaSample& sample) {
  processor_.AdvanceStreamTime(NonNegative(sample.GetActualDataLength()));
  // A sample without times leaves the previous block's, so the answer does not matter.
  ParamManager::Block block = processor_.block();
  sample.GetTime(&block.start_100ns, &block.end_100ns);
  processor_.SetBlock(block);
  return ProcessSample(sample);
}

HRESULT FilterShell::ProcessSample(IMediaSample& sample) {
  BYTE* data = nullptr;
  if (FAILED(sample.GetPointer(&data)) || !data) return E_POINTER;
  const std::uint32_t size_bytes = NonNegative(sample.GetSize());
  SampleView view{.data = data,
                  .length_bytes = std::min(NonNegative(sample.GetActualDataLength()), size_bytes),
                  .size_bytes = size_bytes,
                  .discontinuity = sample.IsDiscontinuity() == S_OK};
  const HRESULT result = processor_.Transform(view);
  sample.SetActualDataLength(static_cast<long>(view.length_bytes));
  return result;
}

HRESULT FilterShell::EndOfStream() {
  if (!effect_->traits().drains_at_end || !processor_.has_data()) return Output().DeliverEndOfStream();
  processor_.BeginDrain();
  HRESULT result = S_OK;
  for (bool last = false; !last && SUCCEEDED(result);) result = DrainPass(&last);
  processor_.EndDrain();
  const HRESULT ended = Output().DeliverEndOfStream();
  return FAILED(result) ? result : ended;
}

HRESULT FilterShell::DrainPass(bool* last) {
  directshow::ComPtr<IMediaSample> sample;
  const HRESULT granted = Output().GetDeliveryBuffer(sample.Put(), nullptr, nullptr, 0);
  if (FAILED(granted)) return granted;
  sample->SetActualDataLength(0);
  const HRESULT processed = ProcessSample(*sample);
  if (FAILED(processed)) return processed;
  *last = processed == S_FALSE;
  return Output().Deliver(sample.Get());
}

}  // namespace tervan
