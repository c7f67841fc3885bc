#pragma once

namespace tervan::host {

inline constexpr int kExitDone = 0;
inline constexpr int kExitUsage = 1;   // the command line is wrong
inline constexpr int kExitFailed = 2;  // something else is

}  // namespace tervan::host
