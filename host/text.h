// Text and numbers. All text in the host is UTF-8 and becomes wide only where the platform is called. Numbers are
// written and read with ".", whatever the user's locale says.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace tervan::host {

std::wstring Wide(std::string_view utf8);
std::string Narrow(std::wstring_view wide);

// In double quotes, for messages that name what the user wrote.
std::string Quoted(std::string_view text);

// Only A to Z change.
std::string Lower(std::string_view text);
std::string_view Trimmed(std::string_view text);
// How names are compared: lower case, without blanks, dots, '-' and '_', so "attack-time" is "Attack Time".
std::string NameKey(std::string_view text);

// The whole text as a finite number.
std::optional<double> ParseNumber(std::string_view text);
std::optional<long> ParseInteger(std::string_view text);

// The shortest text that reads back as this value.
std::string ShortNumber(float value);
std::string ShortNumber(double value);
std::string FixedNumber(double value, int decimals);

// "a, b and c"; "or" in place of "and" on request.
std::string Listed(std::span<const std::string> items, std::string_view conjunction = "and");

// What the platform says about an error code or HRESULT, ready for the end of a sentence.
std::string SystemMessage(unsigned long code);

}  // namespace tervan::host
