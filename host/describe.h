// What the module offers, asked of the module itself.
#pragma once

#include <string>

#include "host/module_loader.h"

namespace tervan::host {

std::string ListEffects(const Module& module, bool json);
// Throws a UsageError for a name that is not in the list.
std::string DescribeEffect(const Module& module, const std::string& name, bool json);

}  // namespace tervan::host
