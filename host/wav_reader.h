// Streams the samples of a WAV file. Headers are read through the platform's RIFF functions; samples
// through the file's handle, because those functions count bytes in 32 signed bits and a WAV may have up to 4 GiB.
//
// Accepted: PCM of 8, 16, 24 and 32 bits and float of 32 and 64 bits, mono or stereo, in the plain or the extensible
// form. A header that was never completed (data size 0 or all ones) means: up to the end of the file.
#pragma once

#include <cstdint>
#include <string>

#include "host/audio_format.h"
#include "host/file_handle.h"

namespace tervan::host {

class WavReader {
 public:
  // Throws a Failure that says in one sentence what is wrong with the file.
  explicit WavReader(const std::string& path);

  const std::string& Path() const { return file_.Path(); }
  const AudioFormat& Format() const { return format_; }
  std::uint64_t Frames() const { return frames_; }

  // Writes the next frames and gives their number, 0 at the end. Throws a Failure.
  size_t Read(void* data, size_t frames);
  // To the first frame. Throws a Failure.
  void Rewind();

 private:
  FileHandle file_;
  AudioFormat format_{};
  std::uint64_t data_offset_ = 0;
  std::uint64_t frames_ = 0;
  std::uint64_t frames_left_ = 0;
};

}  // namespace tervan::host
