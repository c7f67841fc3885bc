// The two ends of a rendering, the same for both paths: what is read, and what comes out, measured on the way.
#pragma once

#include <windows.h>

#include <atomic>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "host/effect_instance.h"
#include "host/level_meter.h"
#include "host/sample_stream.h"
#include "host/wav_reader.h"
#include "host/wav_writer.h"

namespace tervan::host {

// What the effects work on unless something else is wanted: the file's samples, but no integers of 24 bits.
SampleType WorkingType(SampleType file);

class RenderInput final : public SampleSource {
 public:
  // Delivers samples of this type, whatever the file holds.
  RenderInput(WavReader& reader, SampleType type);

  const AudioFormat& Format() const override { return format_; }
  std::optional<std::uint64_t> Frames() const override { return reader_.Frames(); }
  size_t Read(void* data, size_t frames) override;

  const LevelMeter& Levels() const { return levels_; }              // of the file, once the rendering is over
  std::uint64_t FramesRead() const { return frames_read_.load(); }  // [any thread]

 private:
  WavReader& reader_;
  const AudioFormat format_;
  std::vector<std::uint8_t> unconverted_;
  LevelMeter levels_;
  std::atomic<std::uint64_t> frames_read_{0};
};

// A window that nobody sees. Some effects publish their meters only while one is registered with them. The first window
// of a process takes Wine a quarter of a second, so one serves all files.
class MeterWindow {
 public:
  MeterWindow();
  ~MeterWindow();
  MeterWindow(const MeterWindow&) = delete;
  MeterWindow& operator=(const MeterWindow&) = delete;

  HWND Get() const { return window_; }  // null when there can be none

 private:
  const HWND window_;
};

// Asks the effects of a chain for their gain reduction, and keeps the largest. While it lives, the window is registered
// with the effects; null for none.
class ReductionWatch {
 public:
  ReductionWatch(std::span<const EffectInstance> chain, HWND window);
  ~ReductionWatch();
  ReductionWatch(const ReductionWatch&) = delete;
  ReductionWatch& operator=(const ReductionWatch&) = delete;

  // After every buffer. [stream]
  void Poll();
  // In dB, at least 0, one for every effect; nothing for an effect that has no meters or published none.
  std::vector<std::optional<double>> LargestDb() const;

 private:
  struct Watched {
    const EffectInstance* effect;
    bool has_meters;
    std::optional<double> smallest_gain;
  };

  const HWND window_;
  std::vector<Watched> effects_;
};

class RenderOutput final : public SampleSink {
 public:
  // Takes samples of this type, whatever the file will hold.
  RenderOutput(WavWriter& writer, SampleType type, std::span<const EffectInstance> chain, HWND meter_window);

  const AudioFormat& Format() const override { return format_; }
  void Write(const void* data, size_t frames) override;

  const LevelMeter& Levels() const { return levels_; }  // of the file
  const ReductionWatch& Reductions() const { return reductions_; }

 private:
  WavWriter& writer_;
  const AudioFormat format_;
  std::vector<std::uint8_t> converted_;
  LevelMeter levels_;
  ReductionWatch reductions_;
};

// Frames in one buffer. Without automation: few calls. With it: not much more than the effects process with one
// setting, so that the meters of hardly any chunk are missed.
size_t BufferFrames(const AudioFormat& format, bool is_automated);

}  // namespace tervan::host
