#include "host/render_io.h"

#include <algorithm>

#include "host/sample_convert.h"

namespace tervan::host {
namespace {

// Room for these frames; it never shrinks, so a rendering allocates it once.
void* Room(std::vector<std::uint8_t>& buffer, const AudioFormat& format, size_t frames) {
  buffer.resize(std::max(buffer.size(), frames * format.FrameBytes()));
  return buffer.data();
}

}  // namespace

SampleType WorkingType(SampleType file) { return file == SampleType::kPcm24 ? SampleType::kPcm32 : file; }

RenderInput::RenderInput(WavReader& reader, SampleType type) : reader_(reader), format_(reader.Format().With(type)) {}

size_t RenderInput::Read(void* data, size_t frames) {
  const AudioFormat& file_format = reader_.Format();
  const bool is_converted = file_format != format_;
  void* const read = is_converted ? Room(unconverted_, file_format, frames) : data;
  frames = reader_.Read(read, frames);
  const size_t samples = frames * format_.channels;
  levels_.Add(file_format.type, read, samples);
  if (is_converted) ConvertSamples(file_format.type, read, format_.type, data, samples);
  frames_read_ += frames;
  return frames;
}

MeterWindow::MeterWindow()
    : window_(CreateWindowExW(0, L"STATIC", nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr)) {}

MeterWindow::~MeterWindow() {
  if (window_) DestroyWindow(window_);
}

ReductionWatch::ReductionWatch(std::span<const EffectInstance> chain, HWND window) : window_(window) {
  for (const EffectInstance& effect : chain) {
    const auto watch = effect.Type().watch_meters;
    const bool has_meters = window_ && watch && SUCCEEDED(watch(effect.Filter(), window_, true));
    effects_.push_back({&effect, has_meters, std::nullopt});
  }
}

ReductionWatch::~ReductionWatch() {
  for (const Watched& watched : effects_) {
    if (watched.has_meters) watched.effect->Type().watch_meters(watched.effect->Filter(), window_, false);
  }
}

void ReductionWatch::Poll() {
  for (Watched& watched : effects_) {
    if (!watched.has_meters) continue;
    const auto gain = watched.effect->Type().reduction(watched.effect->Filter());
    if (gain) watched.smallest_gain = std::min(watched.smallest_gain.value_or(1.0), *gain);
  }
}

std::vector<std::optional<double>> ReductionWatch::LargestDb() const {
  std::vector<std::optional<double>> reductions;
  for (const Watched& watched : effects_) {
    const auto& gain = watched.smallest_gain;
    reductions.push_back(gain ? std::optional(std::max(0.0, -ToDecibels(*gain))) : std::nullopt);
  }
  return reductions;
}

RenderOutput::RenderOutput(WavWriter& writer, SampleType type, std::span<const EffectInstance> chain, HWND meter_window)
    : writer_(writer), format_(writer.Format().With(type)), reductions_(chain, meter_window) {}

void RenderOutput::Write(const void* data, size_t frames) {
  const AudioFormat& file_format = writer_.Format();
  const size_t samples = frames * format_.channels;
  if (file_format != format_) {
    void* const converted = Room(converted_, file_format, frames);
    ConvertSamples(format_.type, data, file_format.type, converted, samples);
    data = converted;
  }
  levels_.Add(file_format.type, data, samples);
  reductions_.Poll();
  writer_.Write(data, frames);
}

size_t BufferFrames(const AudioFormat& format, bool is_automated) {
  constexpr size_t kPlainFrames = 32768;
  constexpr std::uint32_t kAutomatedBuffersPerSecond = 50;
  if (!is_automated) return kPlainFrames;
  return std::clamp<size_t>(format.rate_hz / kAutomatedBuffersPerSecond, 64, kPlainFrames);
}

}  // namespace tervan::host
