#include "host/stored_states.h"

#include "host/output_file.h"

namespace tervan::host {

std::vector<StateFile> StatesToSave(std::span<const EffectRequest> requests, std::span<const EffectInstance> chain) {
  std::vector<StateFile> states;
  for (size_t i = 0; i < chain.size(); ++i) {
    for (const Setting& setting : requests[i].settings) {
      if (setting.key == kSaveKey) states.push_back({setting.value, chain[i].StoredState()});
    }
  }
  return states;
}

void WriteStates(std::span<const StateFile> states, bool may_replace) {
  for (const StateFile& state : states) WriteWholeFile(state.path, state.content, may_replace);
}

}  // namespace tervan::host
