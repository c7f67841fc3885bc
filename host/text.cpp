#include "host/text.h"

#include <windows.h>

#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>

namespace tervan::host {
namespace {

template <class T>
std::optional<T> ParseWhole(std::string_view text) {
  if (text.starts_with('+')) text.remove_prefix(1);
  T value{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

template <class T, class... Format>
std::string ToText(T value, Format... format) {
  // A double in fixed notation takes at most 309 digits before the point.
  std::array<char, 400> buffer;
  const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, format...);
  return {buffer.data(), result.ptr};
}

}  // namespace

std::wstring Wide(std::string_view utf8) {
  const int bytes = static_cast<int>(utf8.size());
  std::wstring wide(MultiByteToWideChar(CP_UTF8, 0, utf8.data(), bytes, nullptr, 0), L'\0');
  MultiByteToWideChar(CP_UTF8, 0, utf8.data(), bytes, wide.data(), static_cast<int>(wide.size()));
  return wide;
}

std::string Narrow(std::wstring_view wide) {
  const int units = static_cast<int>(wide.size());
  std::string utf8(WideCharToMultiByte(CP_UTF8, 0, wide.data(), units, nullptr, 0, nullptr, nullptr), '\0');
  WideCharToMultiByte(CP_UTF8, 0, wide.data(), units, utf8.data(), static_cast<int>(utf8.size()), nullptr, nullptr);
  return utf8;
}

std::string Quoted(std::string_view text) { return '"' + std::string(text) + '"'; }

std::string Lower(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return lower;
}

std::string_view Trimmed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r\n";
  const size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::string NameKey(std::string_view text) {
  std::string key = Lower(text);
  std::erase_if(key, [](char c) { return c == ' ' || c == '\t' || c == '-' || c == '_' || c == '.'; });
  return key;
}

std::optional<double> ParseNumber(std::string_view text) {
  const auto value = ParseWhole<double>(text);
  return value && std::isfinite(*value) ? value : std::nullopt;
}

std::optional<long> ParseInteger(std::string_view text) { return ParseWhole<long>(text); }

std::string ShortNumber(float value) { return ToText(value); }
std::string ShortNumber(double value) { return ToText(value); }
std::string FixedNumber(double value, int decimals) { return ToText(value, std::chars_format::fixed, decimals); }

std::string Listed(std::span<const std::string> items, std::string_view conjunction) {
  std::string text;
  for (size_t i = 0; i < items.size(); ++i) {
    if (i > 0) text += i + 1 < items.size() ? ", " : ' ' + std::string(conjunction) + ' ';
    text += items[i];
  }
  return text;
}

std::string SystemMessage(unsigned long code) {
  char number[16];
  std::snprintf(number, sizeof number, "0x%08lX", code);
  wchar_t* buffer = nullptr;
  const DWORD length = FormatMessageW(
      FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code,
      MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US), reinterpret_cast<wchar_t*>(&buffer), 0, nullptr);
  std::string message(Trimmed(Narrow({buffer, length})));
  LocalFree(buffer);
  if (message.ends_with('.')) message.pop_back();
  return message.empty() ? "error " + std::string(number) : message;
}

}  // namespace tervan::host
