#include "ui/controls/meter_levels.h"

#include <algorithm>

namespace tervan::ui {

MeterLevels::MeterLevels(bool is_inverted) : is_inverted_(is_inverted) { SetRange(steps_, is_float_); }

void MeterLevels::SetInverted(bool is_inverted) {
  if (is_inverted == is_inverted_) return;
  is_inverted_ = is_inverted;
  const std::int32_t maximum = MaximumLevel();
  for (MeterChannel& c : channels_) c.extreme = is_inverted && c.level == 0 ? maximum : std::min(c.level, maximum);
}

void MeterLevels::SetRange(std::int32_t steps, bool is_float) {
  steps_ = std::max(steps, 1);
  is_float_ = is_float;
  for (MeterChannel& c : channels_) {
    c.peak.level = 0;
    c.valley.level = 0;
    c.extreme = is_inverted_ ? MaximumLevel() : 0;
  }
}

int MeterLevels::SetChannelCount(std::uint32_t count) {
  return channel_count_ = static_cast<int>(std::min<std::uint32_t>(count, kMaxMeterChannels));
}

void MeterLevels::SetLevel(int channel, std::int32_t level) {
  const std::int32_t maximum = MaximumLevel();
  MeterChannel& c = At(channel);
  c.has_signal = level >= 0;
  c.level = std::clamp(level, 0, maximum);
  if (level <= 0) {
    c.peak.level = 0;
    c.valley.level = 0;
    if (level < 0) c.extreme = is_inverted_ ? maximum : 0;
  } else if (level > maximum || !is_inverted_) {
    c.extreme = std::max(c.extreme, level);
  } else {
    c.extreme = std::min(c.extreme, level);
  }
}

void MeterLevels::SetExtreme(int channel, std::int32_t extreme) { At(channel).extreme = std::max(extreme, 0); }

void MeterLevels::ResetClip(int channel) { At(channel).extreme = At(channel).level; }

void MeterLevels::ResetClip() {
  for (MeterChannel& c : channels_) c.extreme = c.level;
}

void MeterLevels::ResetHolds() {
  const std::int32_t start = is_inverted_ ? kFloatFullScale : 0;
  for (MeterChannel& c : channels_) c.peak.level = c.valley.level = start;
}

bool MeterLevels::IsAnyClipped() const {
  for (int channel = 0; channel < channel_count_; ++channel) {
    if (IsClipped(channel)) return true;
  }
  return false;
}

void MeterLevels::Hold(std::uint32_t now_ms) {
  for (MeterChannel& c : channels_) {
    const auto follow = [&c, now_ms](HeldLevel& held, bool is_beyond) {
      if (is_beyond || now_ms - held.taken_ms >= kMeterHoldMs) held = {c.level, now_ms};
    };
    follow(c.peak, c.level >= c.peak.level);
    follow(c.valley, c.level <= c.valley.level);
  }
}

}  // namespace tervan::ui
