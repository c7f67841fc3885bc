// The COM half of every effect's filter: pins and streaming by the in-place transform base, and the interfaces that the
// four effects share. All of them forward to the portable half; an effect's own filter adds its control interface.
#pragma once

#include <windows.h>

#include <dshow.h>
#include <ocidl.h>

#include <memory>

#include "directshow/in_place_filter.h"
#include "shell/effect.h"
#include "shell/media_params.h"
#include "shell/plugin_interfaces.h"
#include "shell/stream_processor.h"

namespace tervan {

// Posts notifications through the platform's message queues. One for all filters; it has no state.
WindowPoster& MessagePoster();

class FilterShell : public directshow::Implements<directshow::InPlaceTransformFilter, IMediaParams, IMediaParamInfo,
                                                  IParamRecorderSite, ISpecifyPropertyPages, IPersistStream,
                                                  IPluginPresets, IDirectBufferProcess> {
 public:
  // IPersist, of IBaseFilter and of IPersistStream
  STDMETHODIMP GetClassID(CLSID* clsid) override { return InPlaceTransformFilter::GetClassID(clsid); }

  // IMediaParams
  STDMETHODIMP GetParam(DWORD index, MP_DATA* value) override;
  STDMETHODIMP SetParam(DWORD index, MP_DATA value) override;
  STDMETHODIMP AddEnvelope(DWORD index, DWORD count, MP_ENVELOPE_SEGMENT* segments) override;
  STDMETHODIMP FlushEnvelope(DWORD index, REFERENCE_TIME start, REFERENCE_TIME end) override;
  STDMETHODIMP SetTimeFormat(GUID format, MP_TIMEDATA time_data) override;

  // IMediaParamInfo
  STDMETHODIMP GetParamCount(DWORD* count) override;
  STDMETHODIMP GetParamInfo(DWORD index, MP_PARAMINFO* info) override;
  STDMETHODIMP GetParamText(DWORD index, WCHAR** text) override;
  STDMETHODIMP GetNumTimeFormats(DWORD* count) override;
  STDMETHODIMP GetSupportedTimeFormat(DWORD index, GUID* format) override;
  STDMETHODIMP GetCurrentTimeFormat(GUID* format, MP_TIMEDATA* time_data) override;

  // IParamRecorderSite
  STDMETHODIMP SetRecorder(IParamRecorder* recorder) override;

  // ISpecifyPropertyPages: the effect's own page. S_OK, E_POINTER or E_OUTOFMEMORY.
  STDMETHODIMP GetPages(CAUUID* pages) override;

  // IPersistStream
  STDMETHODIMP IsDirty() override;
  STDMETHODIMP Load(IStream* stream) override;
  STDMETHODIMP Save(IStream* stream, BOOL clear_dirty) override;
  STDMETHODIMP GetSizeMax(ULARGE_INTEGER* size) override;

  // IPluginPresets
  STDMETHODIMP GetPresetCount(LONG* count) override;
  STDMETHODIMP GetPresetName(LONG index, WCHAR* name, LONG name_length) override;
  STDMETHODIMP ApplyPreset(LONG index) override;

  // IDirectBufferProcess
  STDMETHODIMP BeginStream(DWORD channels, DWORD sample_rate_hz) override;
  STDMETHODIMP ProcessBuffer(float* buffer, DWORD frames, DWORD flush) override;
  STDMETHODIMP GetTail(float* buffer, DWORD* frames) override;
  STDMETHODIMP EndStream() override;
  STDMETHODIMP IsUnchanged() override;
  STDMETHODIMP Refresh(DWORD reset, DWORD ignored1, DWORD ignored2) override;

 protected:
  FilterShell(IUnknown* outer, std::unique_ptr<Effect> effect);

  Effect& effect() { return *effect_; }

  IUnknown* FindInterface(REFIID iid) noexcept override;

  HRESULT CheckInputType(const AM_MEDIA_TYPE& type) override;
  HRESULT SetMediaType(PIN_DIRECTION direction, const AM_MEDIA_TYPE& type) override;
  HRESULT StartStreaming() override;
  HRESULT StopStreaming() override;
  HRESULT Transform(IMediaSample& sample) override;
  HRESULT EndOfStream() override;

 private:
  HRESULT ProcessSample(IMediaSample& sample);
  HRESULT DrainPass(bool* last);

  const std::unique_ptr<Effect> effect_;
  StreamProcessor processor_{*effect_};
};

}  // namespace tervan
