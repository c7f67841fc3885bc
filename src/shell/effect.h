// What an effect plugs into the shell: a table row of how it differs from the others, and a handful of operations.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "params/param_manager.h"
#include "shell/control_state.h"
#include "shell/stored_state.h"
#include "shell/stream_format.h"
#include "support/result.h"

namespace tervan {

// How an engine routine is to treat the frames.
enum class ProcessMode : std::uint32_t {
  kDiscontinuity = 0,  // the first frames after a break
  kContinuous = 1,
  kDrain = 2,  // the end of the stream: produce what is left, touch nothing
};

// When a discontinuity is over, within one sample, for engines that make a difference.
enum class ModeSettles { kAfterPush, kAfterFirstChunk };

struct EffectTraits {
  GUID filter_clsid;
  GUID page_clsid;
  bool drains_at_end;                           // end-of-stream is preceded by a drain
  ModeSettles mode_settles;                     // for effects with automation
  std::uint16_t settings_replaced_code;         // posted after a preset, a load, and at construction
  std::optional<std::uint16_t> param_set_code;  // posted when the host has set a parameter; none: nothing is
  StoredState stored;
  PresetList presets;
};

// Implemented by each effect; away from Windows, too. Operations are called on the streaming thread unless they say
// otherwise.
class Effect {
 public:
  virtual ~Effect() = default;

  virtual const EffectTraits& traits() const = 0;  // [any thread]
  virtual ControlState& control() = 0;             // [any thread]
  // Null: no automation. Buffers are then never cut, and Process fetches and pushes settings itself. [any thread]
  virtual ParamManager* params() = 0;

  // The settings record of traits().stored.record_bytes; fields without a setting are left alone. [any thread]
  virtual void GetRecord(void* record) = 0;
  virtual HRESULT SetRecord(const void* record) = 0;

  // The format of all frames from now on; before the start, and in the stream when the format changes there. An engine
  // whose coefficients hang on what changes asks for new settings.
  virtual void SetFormat(const StreamFormat& format) = 0;

  // Resets the engine and pushes all settings. A failure keeps the stream from starting.
  virtual HRESULT Start() = 0;
  virtual HRESULT Stop() = 0;

  // False: the chunk passes unchanged and no settings are fetched for it.
  virtual bool IsActive() { return true; }

  // Takes a copy of the settings for the next push; true when a change was waiting, which is thereby taken note of.
  virtual bool FetchSettings() = 0;
  virtual bool NeedsSettings() const = 0;  // the engine asks for a push, changed or not
  // Derives coefficients from the copy. kDiscontinuity also resets the running state.
  virtual HRESULT PushSettings(ProcessMode mode) = 0;

  // Processes *frames interleaved frames in place; may lower *frames. S_FALSE: the stream's end, drop the sample.
  // stop: the caller's flush flag, for 32-bit float only.
  virtual HRESULT Process(SampleFormat format, ProcessMode mode, void* data, std::uint32_t* frames, bool stop) = 0;

  // A sample of this many frames is about to be processed.
  virtual void AdvanceStreamTime([[maybe_unused]] std::uint32_t frames) {}

  // The host sets a parameter through the automation interface, which effects without parameters do not have. As
  // AutomatedControl::SetParam. [host]
  virtual HRESULT SetParam([[maybe_unused]] std::uint32_t index, [[maybe_unused]] float value) { return E_NOTIMPL; }
};

}  // namespace tervan
