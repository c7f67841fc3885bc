// Renders without a filter graph: blocks of 32-bit float go through each effect's IDirectBufferProcess.
#pragma once

#include <span>

#include "host/console.h"
#include "host/effect_instance.h"
#include "host/render_io.h"

namespace tervan::host {

// Input and output are of 32-bit float. Throws a Failure.
void RenderDirectly(RenderInput& input, RenderOutput& output, std::span<const EffectInstance> chain,
                    size_t buffer_frames, ProgressLine& progress);

}  // namespace tervan::host
