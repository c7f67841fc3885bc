// A file played through effects over and over, in real time and for nobody to hear: what a property page watches.
#pragma once

#include <span>
#include <string>

#include "host/effect_instance.h"
#include "host/render_io.h"
#include "host/sample_stream.h"
#include "host/stream_graph.h"
#include "host/wav_reader.h"

namespace tervan::host {

// Begins again whenever the file ends.
class LoopedInput final : public SampleSource {
 public:
  // Throws a Failure for a file without audio. The reader outlives this.
  explicit LoopedInput(WavReader& reader);

  const AudioFormat& Format() const override { return input_.Format(); }
  std::optional<std::uint64_t> Frames() const override { return std::nullopt; }
  size_t Read(void* data, size_t frames) override;

 private:
  WavReader& reader_;
  RenderInput input_;
};

class DiscardingOutput final : public SampleSink {
 public:
  explicit DiscardingOutput(const AudioFormat& format) : format_(format) {}

  const AudioFormat& Format() const override { return format_; }
  void Write(const void* /*data*/, size_t /*frames*/) override {}

 private:
  const AudioFormat format_;
};

class Playback {
 public:
  // Starts it. Throws a Failure.
  Playback(const std::string& path, std::span<const EffectInstance> chain);

  // Throws a Failure when the stream was broken off.
  void Check() { graph_.IsComplete(0); }

 private:
  WavReader reader_;
  LoopedInput input_;
  DiscardingOutput output_;
  StreamGraph graph_;
};

}  // namespace tervan::host
