#include "shell/stream_processor.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "support/float_environment.h"

namespace tervan {
namespace {

std::uint32_t FramesOf(std::uint32_t bytes, const StreamFormat& format) {
  return format.nBlockAlign == 0 ? 0 : bytes / format.nBlockAlign;
}

}  // namespace

void StreamProcessor::SetFormat(const StreamFormat& format) {
  const FloatEnvironmentScope environment;
  format_ = format;
  effect_.control().SetFormat(format);
  effect_.SetFormat(format);
  if (params_) params_->SetSampleRate(format.nSamplesPerSec);
}

HRESULT StreamProcessor::StartStreaming() {
  const FloatEnvironmentScope environment;
  SetStreaming(true);
  data_received_ = draining_ = false;
  unpushed_changes_ = 0;  // the start pushes everything
  const HRESULT result = effect_.Start();
  if (FAILED(result)) SetStreaming(false);
  return result;
}

HRESULT StreamProcessor::StopStreaming() {
  SetStreaming(false);
  return effect_.Stop();
}

void StreamProcessor::SetStreaming(bool streaming) {
  if (params_) params_->SetStreaming(streaming);
}

void StreamProcessor::SetBlock(ParamManager::Block block) {
  if (params_) params_->SetBlock(block);
}

void StreamProcessor::AdvanceStreamTime(std::uint32_t length_bytes) {
  effect_.AdvanceStreamTime(FramesOf(length_bytes, format_));
}

HRESULT StreamProcessor::Transform(SampleView& sample) {
  const FloatEnvironmentScope environment;
  data_received_ = true;
  ProcessMode mode = sample.discontinuity ? ProcessMode::kDiscontinuity : ProcessMode::kContinuous;
  if (draining_) {
    mode = ProcessMode::kDrain;
    sample.length_bytes = sample.size_bytes;
    std::memset(sample.data, 0, sample.size_bytes);
  }
  return params_ ? TransformChunks(sample, mode) : TransformWhole(sample, mode);
}

HRESULT StreamProcessor::TransformWhole(SampleView& sample, ProcessMode mode) {
  std::uint32_t frames = FramesOf(sample.length_bytes, format_);
  const HRESULT result = effect_.Process(SampleFormatOf(format_), mode, sample.data, &frames, false);
  sample.length_bytes = frames * format_.nBlockAlign;
  return result;
}

std::uint32_t StreamProcessor::NextChunk(std::uint32_t frames_left) {
  return std::min(params_->NextChangeFrames(frames_left, &unpushed_changes_), frames_left);
}

HRESULT StreamProcessor::Push(ProcessMode mode) {
  const HRESULT result = effect_.PushSettings(mode);
  if (SUCCEEDED(result)) unpushed_changes_ = 0;
  return result;
}

HRESULT StreamProcessor::TransformChunks(SampleView& sample, ProcessMode mode) {
  const SampleFormat sample_format = SampleFormatOf(format_);
  const ModeSettles mode_settles = effect_.traits().mode_settles;
  const std::uint32_t total = FramesOf(sample.length_bytes, format_);
  auto* data = static_cast<std::byte*>(sample.data);
  std::uint32_t done = 0;
  HRESULT result = mode == ProcessMode::kDrain ? S_FALSE : S_OK;  // no effect has a tail to give
  do {
    std::uint32_t frames = NextChunk(total - done);
    if (frames == 0 || mode == ProcessMode::kDrain) break;
    if (effect_.IsActive()) {
      if (effect_.control().IsChanged() || effect_.NeedsSettings() || unpushed_changes_ != 0) {
        effect_.FetchSettings();
        const HRESULT pushed = Push(mode);
        if (FAILED(pushed)) {
          result = pushed;
          break;
        }
        if (mode_settles == ModeSettles::kAfterPush) mode = ProcessMode::kContinuous;
      }
      result = effect_.Process(sample_format, mode, data, &frames, false);
      if (frames == 0) break;
      if (mode_settles == ModeSettles::kAfterFirstChunk) mode = ProcessMode::kContinuous;
    }
    done += frames;
    data += std::size_t{frames} * format_.nBlockAlign;
  } while (result == S_OK && done < total);
  sample.length_bytes = done * format_.nBlockAlign;
  return result;
}

HRESULT StreamProcessor::BeginStream(std::uint32_t channels, std::uint32_t sample_rate_hz) {
  if (channels < 1 || channels > 2) return E_INVALIDARG;
  SetFormat(FloatFormat(static_cast<std::uint16_t>(channels), sample_rate_hz));
  return StartStreaming();
}

HRESULT StreamProcessor::ProcessBuffer(float* data, std::uint32_t frames, bool stop) {
  if (!data) return E_POINTER;
  if (params_ && format_.nChannels == 0) return S_OK;  // no stream has begun: the shape of the buffer is not known
  const FloatEnvironmentScope environment;
  data_received_ = true;
  effect_.AdvanceStreamTime(frames);
  if (params_) return ProcessChunks(data, frames, stop);
  return effect_.Process(SampleFormat::kFloat32, ProcessMode::kContinuous, data, &frames, stop);
}

HRESULT StreamProcessor::ProcessChunks(float* data, std::uint32_t frames, bool stop) {
  params_->StartDirectBlock(frames);
  HRESULT result = S_OK;
  std::uint32_t done = 0;
  do {
    std::uint32_t chunk = NextChunk(frames - done);
    if (chunk == 0) break;
    if (effect_.IsActive()) {
      if (unpushed_changes_ != 0) {
        effect_.FetchSettings();
        const HRESULT pushed = Push(ProcessMode::kContinuous);
        if (FAILED(pushed)) return pushed;
      }
      result = effect_.Process(SampleFormat::kFloat32, ProcessMode::kContinuous, data, &chunk, stop);
      if (result == S_FALSE) params_->StepPastBlock();
      if (chunk == 0) break;
    }
    done += chunk;
    data += std::size_t{chunk} * format_.nChannels;
  } while (result == S_OK && done < frames);
  return result;
}

HRESULT StreamProcessor::GetTail(float* data, std::uint32_t* frames) {
  if (!frames) return E_POINTER;
  if (!effect_.traits().drains_at_end || !data_received_) {
    *frames = 0;
    return S_FALSE;
  }
  return effect_.Process(SampleFormat::kFloat32, ProcessMode::kDrain, data, frames, false);
}

HRESULT StreamProcessor::Refresh(bool reset) {
  const FloatEnvironmentScope environment;
  if (reset && params_) params_->ResetClock();
  const bool changed = effect_.FetchSettings();
  if (!reset && !changed) return S_FALSE;
  return Push(reset ? ProcessMode::kDiscontinuity : ProcessMode::kContinuous);
}

}  // namespace tervan
