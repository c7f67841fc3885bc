#include "host/wav_reader.h"

#include <mmsystem.h>

#include <dshow.h>

#include <algorithm>
#include <array>
#include <optional>

#include "host/failure.h"
#include "host/text.h"

namespace tervan::host {
namespace {

constexpr DWORD kUnknownSize = 0xFFFFFFFF;  // written by programs that stream into a pipe
constexpr FOURCC kFormatChunk = mmioFOURCC('f', 'm', 't', ' ');
constexpr FOURCC kDataChunk = mmioFOURCC('d', 'a', 't', 'a');
constexpr std::uint64_t kChunkHeaderBytes = 8;

// The RIFF functions over an open file. They take a path of at most 128 characters, but a handle as well.
class RiffFile {
 public:
  explicit RiffFile(HANDLE file) {
    MMIOINFO info{};
    info.fccIOProc = FOURCC_DOS;
    info.adwInfo[0] = static_cast<DWORD>(reinterpret_cast<UINT_PTR>(file));  // handles have 32 significant bits
    riff_ = mmioOpenW(nullptr, &info, MMIO_READ);
    if (!riff_) throw Failure("the platform's RIFF functions do not open a file");
  }
  ~RiffFile() { mmioClose(riff_, MMIO_FHOPEN); }  // the handle stays open
  RiffFile(const RiffFile&) = delete;
  RiffFile& operator=(const RiffFile&) = delete;

  HMMIO Get() const { return riff_; }

 private:
  HMMIO riff_;
};

struct DataSpan {
  std::uint64_t offset;
  std::uint64_t bytes;
};

class HeaderParser {
 public:
  explicit HeaderParser(FileHandle& file) : file_(file), size_(file.Size()), riff_(file.Get()) {}

  // Walks the chunks until it has seen both that matter.
  void Parse(AudioFormat* format, DataSpan* data) {
    const DWORD declared_end = EnterWave();
    std::optional<AudioFormat> found_format;
    std::optional<DataSpan> found_data;
    while (!found_format || !found_data) {
      MMCKINFO chunk{};
      if (mmioDescend(riff_.Get(), &chunk, &wave_, 0) != MMSYSERR_NOERROR) break;
      if (chunk.ckid == kFormatChunk) found_format = ReadFormat(chunk);
      if (chunk.ckid == kDataChunk) {
        found_data = DataOf(chunk, declared_end);
        if (!found_format && found_data->offset + found_data->bytes == size_) break;
      }
      if (mmioAscend(riff_.Get(), &chunk, 0) != MMSYSERR_NOERROR) break;
    }
    if (!found_format) Fail("has no format chunk");
    if (!found_data) Fail("has no data chunk");
    *format = *found_format;
    *data = *found_data;
  }

 private:
  [[noreturn]] void Fail(const std::string& what) const { throw Failure(Quoted(file_.Path()) + ' ' + what); }

  // Gives the end that the header declares.
  DWORD EnterWave() {
    std::array<char, 12> start{};
    const size_t bytes = file_.Read(start.data(), start.size());
    file_.Seek(0);
    const std::string_view id(start.data(), 4), kind(start.data() + 8, 4);
    if (bytes == start.size() && kind == "WAVE") {
      if (id == "RF64" || id == "BW64") Fail("is a 64-bit WAV file (RF64), which is not supported");
      if (id == "RIFX") Fail("is a big-endian WAV file (RIFX), which is not supported");
    }
    wave_.fccType = mmioFOURCC('W', 'A', 'V', 'E');
    if (bytes < start.size() || kind != "WAVE" ||
        mmioDescend(riff_.Get(), &wave_, nullptr, MMIO_FINDRIFF) != MMSYSERR_NOERROR) {
      Fail("is not a WAV file");
    }
    const DWORD declared = wave_.cksize;
    // Headers that were never completed declare nonsense: the file's own end bounds the search.
    wave_.cksize = static_cast<DWORD>(std::min<std::uint64_t>(size_ - kChunkHeaderBytes, 0x7FFFFFFF));
    return declared;
  }

  AudioFormat ReadFormat(const MMCKINFO& chunk) {
    WAVEFORMATEXTENSIBLE wave{};
    const LONG wanted = static_cast<LONG>(std::min<DWORD>(chunk.cksize, sizeof wave));
    const LONG bytes = mmioRead(riff_.Get(), reinterpret_cast<char*>(&wave), wanted);
    if (bytes < static_cast<LONG>(sizeof(PCMWAVEFORMAT))) Fail("has a format chunk that is too short");
    const WAVEFORMATEX& plain = wave.Format;
    WORD tag = plain.wFormatTag;
    if (tag == WAVE_FORMAT_EXTENSIBLE) {
      if (bytes < static_cast<LONG>(sizeof wave)) Fail("has a format chunk that is too short");
      tag = TagOf(wave.SubFormat);
    }
    if (plain.nChannels != 1 && plain.nChannels != 2) {
      Fail("has " + std::to_string(plain.nChannels) + " channels; only mono and stereo are supported");
    }
    if (plain.nSamplesPerSec == 0) Fail("declares a sample rate of 0");
    const AudioFormat format{TypeOf(tag, plain.wBitsPerSample), plain.nChannels, plain.nSamplesPerSec};
    if (plain.nBlockAlign != 0 && plain.nBlockAlign != format.FrameBytes()) {
      Fail("declares " + std::to_string(plain.nBlockAlign) + " bytes a frame where its format needs " +
           std::to_string(format.FrameBytes()));
    }
    return format;
  }

  // The subformats of the extensible form are the media subtypes of the same formats.
  static WORD TagOf(const GUID& subformat) {
    if (subformat == MEDIASUBTYPE_PCM) return WAVE_FORMAT_PCM;
    if (subformat == MEDIASUBTYPE_IEEE_FLOAT) return WAVE_FORMAT_IEEE_FLOAT;
    return WAVE_FORMAT_UNKNOWN;
  }

  SampleType TypeOf(WORD tag, WORD bits) const {
    if (tag == WAVE_FORMAT_PCM) {
      if (const auto type = PcmType(bits)) return *type;
      Fail("has " + std::to_string(bits) + "-bit PCM samples; supported are 8, 16, 24 and 32 bits");
    }
    if (tag == WAVE_FORMAT_IEEE_FLOAT) {
      switch (bits) {
        case 32: return SampleType::kFloat32;
        case 64: return SampleType::kFloat64;
      }
      Fail("has " + std::to_string(bits) + "-bit float samples; supported are 32 and 64 bits");
    }
    Fail("is compressed or of an unknown kind (format tag " + std::to_string(tag) + "); supported are PCM and float");
  }

  DataSpan DataOf(const MMCKINFO& chunk, DWORD declared_end) const {
    const std::uint64_t offset = chunk.dwDataOffset;
    const std::uint64_t available = size_ - std::min(offset, size_);
    const bool is_never_completed =
        chunk.cksize == kUnknownSize || (chunk.cksize == 0 && declared_end + kChunkHeaderBytes < size_);
    if (is_never_completed) return {offset, available};
    if (chunk.cksize > available) {
      Fail("is truncated: it declares " + std::to_string(chunk.cksize) + " bytes of audio and holds " +
           std::to_string(available));
    }
    return {offset, chunk.cksize};
  }

  FileHandle& file_;
  const std::uint64_t size_;
  RiffFile riff_;
  MMCKINFO wave_{};
};

}  // namespace

WavReader::WavReader(const std::string& path) : file_(FileHandle::OpenForReading(path)) {
  DataSpan data{};
  HeaderParser(file_).Parse(&format_, &data);
  frames_ = data.bytes / format_.FrameBytes();  // a trailing part of a frame is not audio
  data_offset_ = data.offset;
  Rewind();
}

void WavReader::Rewind() {
  file_.Seek(data_offset_);
  frames_left_ = frames_;
}

size_t WavReader::Read(void* data, size_t frames) {
  frames = static_cast<size_t>(std::min<std::uint64_t>(frames, frames_left_));
  const size_t bytes = frames * format_.FrameBytes();
  if (file_.Read(data, bytes) != bytes) throw Failure(Quoted(Path()) + " became shorter while it was read");
  frames_left_ -= frames;
  return frames;
}

}  // namespace tervan::host
