// What the effects with automatable parameters have in common as effects: a control object and an engine around one
// settings record.
#pragma once

#include <cstdint>

#include "shell/effect.h"
#include "shell/engine_dispatch.h"

namespace tervan {

// Control: derived from RecordControl<Settings>. Engine: an AutomatedEngine, made from the control object.
template <typename Settings, typename Control, typename Engine>
class AutomatedEffect : public Effect {
 public:
  // Starts from preset 0. May throw std::bad_alloc.
  AutomatedEffect(const EffectTraits& traits, WindowPoster& poster) : traits_(traits), control_(poster) {
    ApplyPreset(*this, 0);
  }

  Control& settings_control() { return control_; }

  const EffectTraits& traits() const final { return traits_; }
  ControlState& control() final { return control_; }
  ParamManager* params() final { return &control_.params(); }
  void GetRecord(void* record) final { control_.GetSettings(static_cast<Settings*>(record)); }
  HRESULT SetRecord(const void* record) final { return control_.SetSettings(static_cast<const Settings*>(record)); }
  void SetFormat(const StreamFormat& format) override { engine_.SetFormat(format); }
  HRESULT Start() override {
    engine_.Start();
    return S_OK;
  }
  HRESULT Stop() override { return S_OK; }
  bool FetchSettings() final { return control_.SnapshotSettings(&fetched_); }
  bool NeedsSettings() const final { return !engine_.loaded(); }
  HRESULT PushSettings(ProcessMode mode) final {
    engine_.LoadParameters(fetched_, mode);
    return S_OK;
  }
  HRESULT Process(SampleFormat format, ProcessMode mode, void* data, std::uint32_t* frames, bool stop) final {
    return ProcessWith(engine_, format, mode, data, frames, stop);
  }
  HRESULT SetParam(std::uint32_t index, float value) final {
    const HRESULT result = control_.SetParam(index, value);
    if (result == S_OK && traits_.param_set_code) control_.Notify(*traits_.param_set_code);
    return result;
  }

 protected:
  const EffectTraits& traits_;
  Control control_;
  Engine engine_{control_};

 private:
  Settings fetched_{};  // the copy for the next push
};

}  // namespace tervan
