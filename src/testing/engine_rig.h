// What the tests of engines share: a source of settings, an engine at the start of a stream, runs over
// whole signals, comparison by bits.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <utility>
#include <vector>

#include "shell/automated_engine.h"
#include "shell/engine_dispatch.h"
#include "testing/formats.h"

namespace tervan::testing {

// What engines process.
using Formats = ::testing::Types<std::uint8_t, std::int16_t, std::int32_t, float, double>;
using Floats = ::testing::Types<float, double>;

// The owner of an engine. A change is waiting while `changed` is set.
template <typename Settings, typename Source = SettingsSource<Settings>>
struct FakeSource : Source {
  bool HasChange() const override { return changed; }
  bool SnapshotSettings(Settings* out) override {
    *out = settings;
    return std::exchange(changed, false);
  }
  Settings settings{};
  bool changed = false;
};

template <typename Engine, typename Sample>
HRESULT Process(Engine& engine, ProcessMode mode, Sample* data, std::uint32_t* frames, bool stop = false) {
  return ProcessWith(engine, kFormatOf<Sample>, mode, data, frames, stop);
}

// Blocks of odd and even lengths, one frame among them.
inline constexpr std::uint32_t kBlockFrames[] = {1, 64, 7, 512, 333, 2, 1000};

// Processes all of it in place, in blocks of the given lengths over and over.
template <typename Engine, typename Sample>
void RunAll(Engine& engine, std::vector<Sample>& data, std::size_t channels,
            std::span<const std::uint32_t> blocks = kBlockFrames) {
  std::size_t block = 0;
  for (std::size_t at = 0; at < data.size(); ++block) {
    const std::size_t left = (data.size() - at) / channels;
    auto frames = static_cast<std::uint32_t>(std::min<std::size_t>(left, blocks[block % blocks.size()]));
    Process(engine, ProcessMode::kContinuous, data.data() + at, &frames);
    at += frames * channels;
  }
}

// An engine at the start of a stream, and its owner.
template <typename Engine, typename Settings>
struct StartedEngine : FakeSource<Settings> {
  StartedEngine(const Settings& with, std::size_t channels, std::uint32_t rate_hz) {
    this->settings = with;
    engine.SetFormat(FormatOf(channels, rate_hz));
    engine.Start();
  }
  Engine engine{*this};
};

// Compares bits: a NaN equals itself, 0 does not equal -0.
template <typename Sample>
::testing::AssertionResult SameBits(const std::vector<Sample>& a, const std::vector<Sample>& b) {
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (std::memcmp(&a[i], &b[i], sizeof(Sample)) != 0) {
      return ::testing::AssertionFailure() << "sample " << i << ": " << +a[i] << " and " << +b[i];
    }
  }
  return ::testing::AssertionSuccess();
}

}  // namespace tervan::testing
