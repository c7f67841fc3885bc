// Writes a WAV file in the plain form: format, for float also the number of frames, and data.
#pragma once

#include <cstdint>
#include <string>

#include "host/audio_format.h"
#include "host/output_file.h"

namespace tervan::host {

class WavWriter {
 public:
  // Throws a Failure, also when so many frames do not fit into a WAV file.
  WavWriter(const std::string& path, const AudioFormat& format, std::uint64_t expected_frames, bool may_replace);

  const AudioFormat& Format() const { return format_; }
  std::uint64_t Frames() const { return frames_; }

  void Write(const void* data, size_t frames);
  // Completes the file and puts it in its place. Without this no file remains.
  void Finish();

 private:
  const AudioFormat format_;
  std::uint64_t frames_ = 0;
  OutputFile output_;
};

}  // namespace tervan::host
