// Renders through the platform's filter graph, without a clock.
#pragma once

#include <span>

#include "host/console.h"
#include "host/effect_instance.h"
#include "host/render_io.h"

namespace tervan::host {

// Throws a Failure. The graph is gone when this returns, the effects stay.
void RenderThroughGraph(RenderInput& input, RenderOutput& output, std::span<const EffectInstance> chain,
                        size_t buffer_frames, ProgressLine& progress);

}  // namespace tervan::host
