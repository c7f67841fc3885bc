#include "host/wav_writer.h"

#include <mmsystem.h>

#include <array>
#include <vector>

#include "host/failure.h"
#include "host/text.h"

namespace tervan::host {
namespace {

constexpr std::uint64_t kMaxRiffBytes = 0xFFFFFFFF;
constexpr size_t kMaxHeaderBytes = 128;

// Chunks in memory through the platform's RIFF functions. Sizes are given in advance, so that they may exceed what
// those functions could count.
class HeaderBuilder {
 public:
  HeaderBuilder() {
    MMIOINFO info{};
    info.fccIOProc = FOURCC_MEM;
    info.pchBuffer = buffer_.data();
    info.cchBuffer = buffer_.size();
    riff_ = mmioOpenW(nullptr, &info, MMIO_CREATE | MMIO_READWRITE);
    if (!riff_) throw Failure("the platform's RIFF functions do not open a buffer");
  }
  ~HeaderBuilder() { mmioClose(riff_, 0); }
  HeaderBuilder(const HeaderBuilder&) = delete;
  HeaderBuilder& operator=(const HeaderBuilder&) = delete;

  // Starts a chunk; the next one starts where its content ends.
  void Begin(FOURCC id, std::uint64_t bytes, FOURCC type = 0) {
    MMCKINFO chunk{};
    chunk.ckid = id;
    chunk.fccType = type;
    chunk.cksize = static_cast<DWORD>(bytes);
    Check(mmioCreateChunk(riff_, &chunk, type ? MMIO_CREATERIFF : 0) == MMSYSERR_NOERROR);
  }
  template <class T>
  void Add(FOURCC id, const T& content, LONG bytes = sizeof(T)) {
    Begin(id, bytes);
    Check(mmioWrite(riff_, reinterpret_cast<const char*>(&content), bytes) == bytes);
  }
  std::vector<char> Bytes() {
    const LONG end = mmioSeek(riff_, 0, SEEK_CUR);
    Check(end > 0);
    return {buffer_.begin(), buffer_.begin() + end};
  }

 private:
  static void Check(bool is_done) {
    if (!is_done) throw Failure("the platform's RIFF functions do not write a header");
  }

  std::array<char, kMaxHeaderBytes> buffer_{};
  HMMIO riff_;
};

std::vector<char> Header(const std::string& path, const AudioFormat& format, std::uint64_t frames) {
  constexpr LONG kPcmBytes = sizeof(PCMWAVEFORMAT), kFloatBytes = sizeof(WAVEFORMATEX);
  constexpr std::uint64_t kChunkBytes = 8;
  const LONG format_bytes = format.IsFloat() ? kFloatBytes : kPcmBytes;
  const std::uint64_t data_bytes = frames * format.FrameBytes();
  const std::uint64_t fact_bytes = format.IsFloat() ? kChunkBytes + sizeof(DWORD) : 0;
  const std::uint64_t riff_bytes =
      sizeof(FOURCC) + kChunkBytes + format_bytes + fact_bytes + kChunkBytes + data_bytes + data_bytes % 2;
  if (riff_bytes > kMaxRiffBytes) {
    throw Failure("cannot write " + Quoted(path) + ": " + std::to_string(data_bytes) + " bytes of " + Describe(format) +
                  " do not fit into a WAV file");
  }
  HeaderBuilder header;
  header.Begin(FOURCC_RIFF, riff_bytes, mmioFOURCC('W', 'A', 'V', 'E'));
  header.Add(mmioFOURCC('f', 'm', 't', ' '), ToWaveFormat(format), format_bytes);
  if (format.IsFloat()) header.Add(mmioFOURCC('f', 'a', 'c', 't'), static_cast<DWORD>(frames));
  header.Begin(mmioFOURCC('d', 'a', 't', 'a'), data_bytes);
  return header.Bytes();
}

}  // namespace

WavWriter::WavWriter(const std::string& path, const AudioFormat& format, std::uint64_t expected_frames,
                     bool may_replace)
    : format_(format), output_(path, may_replace) {
  const std::vector<char> header = Header(path, format, expected_frames);
  output_.File().Write(header.data(), header.size());
}

void WavWriter::Write(const void* data, size_t frames) {
  output_.File().Write(data, frames * format_.FrameBytes());
  frames_ += frames;
}

void WavWriter::Finish() {
  if (frames_ * format_.FrameBytes() % 2 != 0) output_.File().Write("", 1);  // chunks have even lengths
  const std::vector<char> header = Header(output_.Path(), format_, frames_);
  output_.File().Seek(0);
  output_.File().Write(header.data(), header.size());
  output_.Commit();
}

}  // namespace tervan::host
