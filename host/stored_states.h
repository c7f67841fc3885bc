// The files that ":save=" asks for.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "host/effect_instance.h"
#include "host/effect_request.h"

namespace tervan::host {

struct StateFile {
  std::string path;
  std::vector<std::uint8_t> content;
};

// With the settings that the effects have now.
std::vector<StateFile> StatesToSave(std::span<const EffectRequest> requests, std::span<const EffectInstance> chain);
// Throws a Failure.
void WriteStates(std::span<const StateFile> states, bool may_replace);

}  // namespace tervan::host
