// The gate, opening and closing with the programme.

#include "effects/gate/gate_engine.h"

#include "engine_bench.h"

namespace tervan::bench {
namespace {

[[maybe_unused]] const bool registered = [] {
  RegisterFormats<GateEngine>("Gate", GateSettings{10, 500, -320, 0});
  return true;
}();

}  // namespace
}  // namespace tervan::bench
