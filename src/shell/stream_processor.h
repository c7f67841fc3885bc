// The processing loop that all effects share: cuts buffers at automation changes, pushes settings into the engine when
// they changed, and hands each chunk to the engine's routine for the stream's format. Serves media samples and plain
// float buffers alike.
//
// One streaming thread at a time. Nothing here takes a lock of its own, allocates or waits.
#pragma once

#include <cstdint>

#include "shell/effect.h"
#include "shell/stream_format.h"
#include "support/result.h"

namespace tervan {

// A media sample as the loop sees it.
struct SampleView {
  void* data;
  std::uint32_t length_bytes;  // in: the valid data; out: what was processed, in whole frames
  std::uint32_t size_bytes;    // of the whole buffer
  bool discontinuity;
};

class StreamProcessor {
 public:
  explicit StreamProcessor(Effect& effect) : effect_(effect), params_(effect.params()) {}

  const StreamFormat& format() const { return format_; }
  void SetFormat(const StreamFormat& format);

  // The result of the effect's start or stop.
  HRESULT StartStreaming();
  HRESULT StopStreaming();

  // The block times of the sample about to be processed, 100-ns units. Effects without automation need none.
  ParamManager::Block block() const { return params_ ? params_->block() : ParamManager::Block{}; }
  void SetBlock(ParamManager::Block block);
  void AdvanceStreamTime(std::uint32_t length_bytes);

  // S_OK: deliver the sample; S_FALSE: drop it; a failure of a push ends the sample with its code.
  HRESULT Transform(SampleView& sample);

  bool has_data() const { return data_received_; }
  void BeginDrain() { draining_ = true; }
  void EndDrain() { draining_ = data_received_ = false; }

  // Direct processing of interleaved 32-bit floats.

  // channels 1 or 2, else E_INVALIDARG; else as StartStreaming.
  HRESULT BeginStream(std::uint32_t channels, std::uint32_t sample_rate_hz);
  HRESULT EndStream() { return StopStreaming(); }

  // The result of the engine's last call, S_OK when none ran; E_POINTER. stop reaches the engine's routine.
  HRESULT ProcessBuffer(float* data, std::uint32_t frames, bool stop);

  // S_FALSE and no frames when nothing was processed or the effect has no tail; E_POINTER.
  HRESULT GetTail(float* data, std::uint32_t* frames);

  bool IsUnchanged() const { return !effect_.control().IsChanged(); }

  // reset: clock to 0 and a full push. Otherwise a smooth push of waiting changes, S_FALSE when there are none.
  HRESULT Refresh(bool reset);

 private:
  void SetStreaming(bool streaming);
  HRESULT TransformChunks(SampleView& sample, ProcessMode mode);
  HRESULT TransformWhole(SampleView& sample, ProcessMode mode);
  HRESULT ProcessChunks(float* data, std::uint32_t frames, bool stop);
  std::uint32_t NextChunk(std::uint32_t frames_left);
  HRESULT Push(ProcessMode mode);

  Effect& effect_;
  ParamManager* const params_;
  StreamFormat format_{};
  // Change masks that automation reported since the last push. They outlast a sample without frames and a bypassed
  // chunk, or a value that then stands still would never reach the engine.
  std::uint32_t unpushed_changes_ = 0;
  bool data_received_ = false;
  bool draining_ = false;
};

}  // namespace tervan
