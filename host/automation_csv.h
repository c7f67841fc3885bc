// Automation from a file: one envelope segment a line,
//
//   parameter, start s, end s, start value, end value, curve
//
// Values are written as on the command line. In a chain the parameter has the effect in front of it: its name, where
// that is unique, or its position counted from 1 ("compressor.threshold", "2.threshold"). A first line whose times are
// no numbers is a heading; empty lines and lines that begin with # do not count.
#pragma once

#include <windows.h>

#include <medparam.h>

#include <span>
#include <string>
#include <vector>

#include "host/effect_instance.h"

namespace tervan::host {

// Of one parameter of one effect; segments in the order of time, without overlaps.
struct Envelope {
  size_t effect;
  DWORD param;
  std::vector<MP_ENVELOPE_SEGMENT> segments;
};

// Throws a Failure that names the file and the line.
std::vector<Envelope> ReadAutomation(const std::string& path, std::span<const EffectInstance> chain);

// Gives the effects their envelopes. Throws a Failure.
void Automate(std::span<EffectInstance> chain, std::span<const Envelope> envelopes);

}  // namespace tervan::host
