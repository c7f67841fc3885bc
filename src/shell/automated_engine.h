// The signal path of an automated effect as the shell drives it: settings on demand, then one routine per sample
// format. Streaming thread only; no allocation, no lock of its own.
#pragma once

#include <cstdint>

#include "shell/effect.h"
#include "shell/sample_codec.h"
#include "shell/stream_format.h"
#include "support/result.h"

namespace tervan {

// Where an engine gets its settings. [stream]
template <typename Settings>
class SettingsSource {
 public:
  virtual bool HasChange() const = 0;  // is waiting; takes no lock

  // Copies the current settings, under a lock; true when a change was waiting, which is thereby taken note of.
  virtual bool SnapshotSettings(Settings* settings) = 0;

 protected:
  ~SettingsSource() = default;
};

// Engine derives from this and brings
//
//   void Design(const Settings&, ProcessMode)              coefficients; kDiscontinuity also resets the running state
//   template <typename Codec> void Run(typename Codec::Sample* data, std::uint32_t frames)
//                                                          interleaved frames of the format's channels, in place
//   bool EndStream()                                       the stop flag is raised; true: the stream ends here
//
// It may put its own Start and SetFormat before these; nothing calls them through this base.
//
// Source: SettingsSource<Settings>, or an effect's extension of it.
template <typename Engine, typename Settings, typename Source = SettingsSource<Settings>>
class AutomatedEngine {
 public:
  explicit AutomatedEngine(Source& source) : source_(source) {}

  // Another rate than before asks for new settings.
  void SetFormat(const StreamFormat& format) {
    if (format.nSamplesPerSec != format_.nSamplesPerSec) loaded_ = false;
    format_ = format;
  }

  // Loads the settings with a reset.
  void Start() {
    loaded_ = false;
    LoadSnapshot(ProcessMode::kDiscontinuity);
  }

  bool loaded() const { return loaded_; }  // false: the next routine asks for settings, changed or not

  void LoadParameters(const Settings& settings, ProcessMode mode) {
    engine().Design(settings, mode);
    loaded_ = true;
  }

  // *frames frames in place. In kDrain mode nothing is touched: S_FALSE and no frames.
  HRESULT ProcessPcm8(ProcessMode mode, std::uint8_t* data, std::uint32_t* frames) {
    return ProcessSnapshot<Pcm8Codec>(mode, data, frames);
  }
  HRESULT ProcessPcm16(ProcessMode mode, std::int16_t* data, std::uint32_t* frames) {
    return ProcessSnapshot<Pcm16Codec>(mode, data, frames);
  }
  HRESULT ProcessPcm32(ProcessMode mode, std::int32_t* data, std::uint32_t* frames) {
    return ProcessSnapshot<Pcm32Codec>(mode, data, frames);
  }
  HRESULT ProcessFloat64(ProcessMode mode, double* data, std::uint32_t* frames) {
    return ProcessSnapshot<Float64Codec>(mode, data, frames);
  }

  // Changed settings wait until they are loaded from outside. stop: the engine may end the stream; it then asks for new
  // settings, S_FALSE and no frames.
  HRESULT ProcessFloat32(ProcessMode mode, float* data, std::uint32_t* frames, bool stop) {
    if (mode == ProcessMode::kDrain) return NoFrames(frames);
    if (stop && engine().EndStream()) {
      loaded_ = false;
      return NoFrames(frames);
    }
    if (!loaded_) LoadSnapshot(mode);
    engine().template Run<Float32Codec>(data, *frames);
    return S_OK;
  }

 protected:
  ~AutomatedEngine() = default;

  Source& source() const { return source_; }
  const StreamFormat& format() const { return format_; }

 private:
  Engine& engine() { return static_cast<Engine&>(*this); }

  static HRESULT NoFrames(std::uint32_t* frames) {
    *frames = 0;
    return S_FALSE;
  }

  // When they changed or none are loaded.
  void LoadSnapshot(ProcessMode mode) {
    if (loaded_ && !source_.HasChange()) return;
    Settings settings{};
    source_.SnapshotSettings(&settings);
    LoadParameters(settings, mode);
  }

  template <typename Codec>
  HRESULT ProcessSnapshot(ProcessMode mode, typename Codec::Sample* data, std::uint32_t* frames) {
    if (mode == ProcessMode::kDrain) return NoFrames(frames);
    LoadSnapshot(mode);
    engine().template Run<Codec>(data, *frames);
    return S_OK;
  }

  Source& source_;
  StreamFormat format_{};
  bool loaded_ = false;
};

}  // namespace tervan
