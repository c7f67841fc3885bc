// What stands for numbers and behind them, on pages and in controls.
#pragma once

namespace tervan::ui {

inline constexpr wchar_t kMinusInfinity[] = L"-Inf.";
inline constexpr wchar_t kDecibelUnit[] = L" dB";

}  // namespace tervan::ui
