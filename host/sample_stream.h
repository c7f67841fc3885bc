// The two ends of a stream as the host's filters know them, whatever lies behind.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "host/audio_format.h"

namespace tervan::host {

class SampleSource {
 public:
  virtual const AudioFormat& Format() const = 0;
  // Nothing for a stream that never ends.
  virtual std::optional<std::uint64_t> Frames() const = 0;
  // Writes the next frames and gives their number, 0 at the end. Throws a Failure. [stream]
  virtual size_t Read(void* data, size_t frames) = 0;

 protected:
  ~SampleSource() = default;
};

class SampleSink {
 public:
  virtual const AudioFormat& Format() const = 0;
  // Throws a Failure. [stream]
  virtual void Write(const void* data, size_t frames) = 0;

 protected:
  ~SampleSink() = default;
};

}  // namespace tervan::host
