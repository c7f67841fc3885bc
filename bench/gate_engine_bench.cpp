// The gate, opening and closing with the programme.

#include "effects/gate/gate_engine.h"

#include "engine_bench.h"

namespace tervan::bench {
namespace {

template <typename Sample>
void RegisterFormat(const std::string& format) {
  Register("Gate_Stereo" + format, [](benchmark::State& state) {
    FixedSettings<GateSettings> settings({10, 500, -320, 0});
    TimeEngine<Sample, GateEngine>(state, settings);
  });
}

[[maybe_unused]] const bool registered = [] {
  RegisterFormat<float>("Float32");
  RegisterFormat<double>("Float64");
  RegisterFormat<std::uint8_t>("Pcm8");
  RegisterFormat<std::int16_t>("Pcm16");
  RegisterFormat<std::int32_t>("Pcm32");
  return true;
}();

}  // namespace
}  // namespace tervan::bench
