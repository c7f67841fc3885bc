// What a level meter was told: levels, the loudest of them since the last reset, and peaks and valleys that are held
// for a while.
//
// A level is 32 bits: an integer from 0 to the maximum, or the bits of a linear amplitude, 1.0 being full scale. Both
// are compared as integers. That orders floats from 0 up; those with a sign, -0.0 among them, are negative and mean
// that there is no signal; infinity and NaN without a sign lie beyond the maximum and count as too loud.
#pragma once

#include <array>
#include <cstdint>

namespace tervan::ui {

inline constexpr int kMaxMeterChannels = 6;
inline constexpr std::uint32_t kMeterHoldMs = 700;
inline constexpr std::int32_t kFloatFullScale = 0x3F800000;  // 1.0f

struct HeldLevel {
  std::int32_t level;
  std::uint32_t taken_ms;
};

struct MeterChannel {
  bool has_signal;
  std::int32_t level;
  HeldLevel peak;
  HeldLevel valley;
  std::int32_t extreme;  // the clip memory
};

class MeterLevels {
 public:
  // An inverted meter shows a gain reduction: its extreme is the smallest level, and starts at the maximum.
  explicit MeterLevels(bool is_inverted);

  // With a change each extreme starts anew, as if the meter had just been made and told its level.
  void SetInverted(bool is_inverted);
  bool IsInverted() const { return is_inverted_; }

  // Fewer than two steps are one: in integer mode its only level is 0. Forgets extremes and holds, keeps levels.
  void SetRange(std::int32_t steps, bool is_float);
  std::int32_t Steps() const { return steps_; }
  bool IsFloat() const { return is_float_; }
  std::int32_t MaximumLevel() const { return is_float_ ? kFloatFullScale : steps_ - 1; }

  // Answers the count that there is then: 0 to kMaxMeterChannels.
  int SetChannelCount(std::uint32_t count);
  int ChannelCount() const { return channel_count_; }

  const MeterChannel& Channel(int channel) const { return channels_[static_cast<std::size_t>(channel)]; }
  void SetLevel(int channel, std::int32_t level);
  void SetExtreme(int channel, std::int32_t extreme);

  // Each extreme starts anew at what the channel shows now.
  void ResetClip();
  void ResetClip(int channel);
  void ResetHolds();
  bool IsClipped(int channel) const { return Channel(channel).extreme > MaximumLevel(); }
  bool IsAnyClipped() const;

  // Lets peaks and valleys follow. Milliseconds of any clock that wraps around; to be called for each painting.
  void Hold(std::uint32_t now_ms);

 private:
  MeterChannel& At(int channel) { return channels_[static_cast<std::size_t>(channel)]; }

  bool is_inverted_;
  bool is_float_ = false;
  std::int32_t steps_ = 32768;
  int channel_count_ = 1;
  std::array<MeterChannel, kMaxMeterChannels> channels_{};
};

}  // namespace tervan::ui
