// The compressor. Only 32-bit floats have a path without meters.

#include "effects/compressor/compressor_engine.h"

#include "engine_bench.h"

namespace tervan::bench {
namespace {

class Owner : public CompressorEngineOwner {
 public:
  Owner(const CompressorSettings& settings, bool watched) : settings_(settings), watched_(watched) {}

  bool HasChange() const override { return false; }
  bool SnapshotSettings(CompressorSettings* settings) override {
    *settings = settings_;
    return false;
  }
  void PublishMeters(const CompressorMeters& meters) override { benchmark::DoNotOptimize(meters); }
  void EndMeters() override {}
  bool IsWatched() const override { return watched_; }

 private:
  const CompressorSettings settings_;
  const bool watched_;
};

template <typename Sample>
void RegisterFormat(const std::string& format, bool metered, bool smooth) {
  Register("Compressor_Stereo" + format + (metered ? "_Metered" : "") + (smooth ? "_Smooth" : ""),
           [=](benchmark::State& state) {
             Owner owner({0, 0, -24, 4, 15, 250, 1, smooth ? 1 : 0, 0, 0}, metered);
             TimeEngine<Sample, CompressorEngine>(state, owner);
           });
}

[[maybe_unused]] const bool registered = [] {
  for (const bool smooth : {false, true}) {
    RegisterFormat<float>("Float32", false, smooth);
    RegisterFormat<float>("Float32", true, smooth);
    RegisterFormat<double>("Float64", true, smooth);
    RegisterFormat<std::uint8_t>("Pcm8", true, smooth);
    RegisterFormat<std::int16_t>("Pcm16", true, smooth);
    RegisterFormat<std::int32_t>("Pcm32", true, smooth);
  }
  return true;
}();

}  // namespace
}  // namespace tervan::bench
