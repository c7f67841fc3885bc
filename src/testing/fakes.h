// Stand-ins for what surrounds the portable core: the host's recorder and storage, windows, and an effect that records
// its calls.
#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <set>
#include <span>
#include <string>
#include <vector>

#include "effects/compressor/compressor_control.h"
#include "params/param_recorder.h"
#include "shell/automated_control.h"
#include "shell/effect.h"

namespace tervan::testing {

// "B3" begin of row 3, "V3=1.5" value, "E3" end, in the order of the calls.
class RecordingRecorder : public ParamRecorder {
 public:
  void BeginEdit(std::uint32_t index) override { Note("B" + std::to_string(index)); }
  void EditValue(std::uint32_t index, float value) override {
    std::string number = std::to_string(value);
    number.erase(number.find_last_not_of('0') + 1);
    if (number.back() == '.') number.pop_back();
    Note("V" + std::to_string(index) + "=" + number);
  }
  void EndEdit(std::uint32_t index) override { Note("E" + std::to_string(index)); }

  std::vector<std::string> Take() { return std::exchange(calls_, {}); }
  std::function<void()> on_call;  // what the host does from within a call

 private:
  void Note(std::string call) {
    calls_.push_back(std::move(call));
    if (on_call) on_call();
  }
  std::vector<std::string> calls_;
};

inline WindowHandle Window(std::uintptr_t number) { return reinterpret_cast<WindowHandle>(number); }

class FakePoster : public WindowPoster {
 public:
  struct Message {
    WindowHandle window;
    std::int32_t command_id;
    std::uint16_t code;
    bool operator==(const Message&) const = default;
  };

  bool Exists(WindowHandle window) override { return !destroyed.contains(window); }
  void PostCommand(WindowHandle window, std::int32_t command_id, std::uint16_t code) override {
    messages_.push_back({window, command_id, code});
  }

  std::vector<Message> Take() { return std::exchange(messages_, {}); }
  std::set<WindowHandle> destroyed;

 private:
  std::vector<Message> messages_;
};

struct FakeClock : StreamClock {
  explicit FakeClock(std::int64_t time_100ns = 0) : now_100ns(time_100ns) {}
  std::int64_t Now_100ns() override { return now_100ns; }
  std::atomic<std::int64_t> now_100ns;
};

using Bytes = std::vector<std::uint8_t>;

// A host's storage. Reads that run out give what is left and short_read; the nth call can be made to fail.
class FakeStream : public ByteStream {
 public:
  explicit FakeStream(Bytes content = {}) : bytes(std::move(content)) {}

  HRESULT Read(void* data, std::uint32_t count) override {
    if (calls++ == failing_call) return E_OUTOFMEMORY;
    const std::size_t got = std::min<std::size_t>(count, bytes.size() - position);
    if (got != 0) std::memcpy(data, bytes.data() + position, got);
    position += got;
    return got < count ? short_read : S_OK;
  }
  HRESULT Write(const void* data, std::uint32_t count) override {
    if (calls++ == failing_call) return E_OUTOFMEMORY;
    const auto* const first = static_cast<const std::uint8_t*>(data);
    bytes.insert(bytes.end(), first, first + count);
    return S_OK;
  }

  Bytes bytes;
  std::size_t position = 0;
  int calls = 0;
  int failing_call = -1;
  HRESULT short_read = S_FALSE;
};

// Opens what control objects keep for their effects.
class OpenAutomatedControl : public AutomatedControl {
 public:
  using AutomatedControl::AutomatedControl;
  using AutomatedControl::FetchRecord;
  using AutomatedControl::ImportRecord;
};

// An effect whose engine only takes notes. Without a parameter table it is one without automation.
class RecordingEffect : public Effect {
 public:
  enum class Kind { kStart, kStop, kPush, kProcess, kAdvance };
  struct Call {
    Kind kind;
    ProcessMode mode = ProcessMode::kContinuous;
    std::uint32_t frames = 0;
    void* data = nullptr;
    SampleFormat format = SampleFormat::kNone;
    bool stop = false;
    float value = 0.0f;  // of row 0, as the last push saw it
  };

  RecordingEffect(const EffectTraits& traits, std::span<const ParamDescriptor> table)
      : traits_(traits), automated_(!table.empty()), control_(table, poster) {
    calls.reserve(1 << 16);  // so that notes do not allocate
  }

  const EffectTraits& traits() const override { return traits_; }
  ControlState& control() override { return control_; }
  ParamManager* params() override { return automated_ ? &control_.params() : nullptr; }
  OpenAutomatedControl& automated() { return control_; }

  void GetRecord(void* record) override {
    std::memcpy(record, record_, traits_.stored.record_bytes);
    if (automated_) control_.params().ExportSettings(record);
  }
  HRESULT SetRecord(const void* record) override {
    std::memcpy(record_, record, traits_.stored.record_bytes);
    control_.ImportRecord(record);
    return S_OK;
  }

  void SetFormat(const StreamFormat&) override {}
  HRESULT Start() override { return Note({.kind = Kind::kStart}), S_OK; }
  HRESULT Stop() override { return Note({.kind = Kind::kStop}), S_OK; }
  bool IsActive() override { return !is_active || is_active(); }
  bool FetchSettings() override { return control_.FetchRecord(fetched_); }
  bool NeedsSettings() const override { return needs_settings; }
  HRESULT PushSettings(ProcessMode mode) override {
    needs_settings = false;
    const int number = pushes_++;
    if (number == failing_push) return E_OUTOFMEMORY;
    if (automated_) pushed_value_ = control_.params().GetFloat(0);
    return Note({.kind = Kind::kPush, .mode = mode, .value = pushed_value_}), S_OK;
  }
  HRESULT Process(SampleFormat format, ProcessMode mode, void* data, std::uint32_t* frames, bool stop) override {
    Note({Kind::kProcess, mode, *frames, data, format, stop, pushed_value_});
    return on_process ? on_process(frames) : S_OK;
  }
  void AdvanceStreamTime(std::uint32_t frames) override { Note({.kind = Kind::kAdvance, .frames = frames}); }
  HRESULT SetParam(std::uint32_t index, float value) override { return control_.SetParam(index, value); }

  // "start", "push0", "m1x960" (mode 1, 960 frames), "advance960", one word a call.
  std::string Take() {
    std::string words;
    for (const Call& call : calls) words += (words.empty() ? "" : " ") + Word(call);
    calls.clear();
    return words;
  }

  FakePoster poster;
  std::vector<Call> calls;
  bool needs_settings = false;
  int failing_push = -1;
  std::function<bool()> is_active;
  std::function<HRESULT(std::uint32_t*)> on_process;

 private:
  static std::string Word(const Call& call) {
    const std::string mode = std::to_string(static_cast<int>(call.mode));
    switch (call.kind) {
      case Kind::kStart: return "start";
      case Kind::kStop: return "stop";
      case Kind::kPush: return "push" + mode;
      case Kind::kAdvance: return "advance" + std::to_string(call.frames);
      case Kind::kProcess: break;
    }
    return "m" + mode + "x" + std::to_string(call.frames) + (call.stop ? "stop" : "");
  }
  void Note(const Call& call) { calls.push_back(call); }

  const EffectTraits traits_;
  const bool automated_;
  OpenAutomatedControl control_;
  std::uint8_t record_[kMaxRecordBytes] = {};
  std::uint8_t fetched_[kMaxRecordBytes] = {};
  float pushed_value_ = 0.0f;
  int pushes_ = 0;
};

}  // namespace tervan::testing
