#include "host/playback.h"

#include "host/failure.h"
#include "host/text.h"

namespace tervan::host {

LoopedInput::LoopedInput(WavReader& reader) : reader_(reader), input_(reader, WorkingType(reader.Format().type)) {
  if (reader.Frames() == 0) throw Failure(Quoted(reader.Path()) + " holds no audio");
}

size_t LoopedInput::Read(void* data, size_t frames) {
  auto* const bytes = static_cast<std::uint8_t*>(data);
  for (size_t done = 0; done < frames;) {
    const size_t read = input_.Read(bytes + done * Format().FrameBytes(), frames - done);
    if (read == 0) reader_.Rewind();
    done += read;
  }
  return frames;
}

// Small buffers, so that meters and automation follow closely.
Playback::Playback(const std::string& path, std::span<const EffectInstance> chain)
    : reader_(path),
      input_(reader_),
      output_(input_.Format()),
      graph_(input_, output_, chain, BufferFrames(input_.Format(), true), Pace::kRealTime) {
  graph_.Run();
}

}  // namespace tervan::host
