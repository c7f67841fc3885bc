#include "host/effect_request.h"

#include "host/failure.h"
#include "host/text.h"

namespace tervan::host {
namespace {

bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool IsKeyCharacter(char c) {
  return IsLetter(c) || (c >= '0' && c <= '9') || c == ' ' || c == '-' || c == '_' || c == '.';
}

// Length of the key at the start of the text, 0 when no key with "=" stands there.
size_t KeyLength(std::string_view text) {
  if (text.empty() || !IsLetter(text[0])) return 0;
  size_t length = 0;
  while (length < text.size() && IsKeyCharacter(text[length])) ++length;
  return length < text.size() && text[length] == '=' ? length : 0;
}

// Length of the value at the start of the text: up to the colon before the next setting, or to the end.
size_t ValueLength(std::string_view text) {
  size_t length = 0;
  while (length < text.size() && !(text[length] == ':' && KeyLength(text.substr(length + 1)) > 0)) ++length;
  return length;
}

}  // namespace

EffectRequest ParseEffectRequest(std::string_view text) {
  const std::string shown = Quoted(text);
  EffectRequest request;
  const size_t colon = std::min(text.find(':'), text.size());
  request.name = Trimmed(text.substr(0, colon));
  if (request.name.empty()) throw UsageError("the effect " + shown + " has no name");
  text.remove_prefix(colon);
  while (!text.empty()) {
    text.remove_prefix(1);  // the colon
    const size_t key = KeyLength(text);
    if (key == 0) throw UsageError("in the effect " + shown + " there is no KEY=VALUE after a colon");
    Setting setting{std::string(Trimmed(text.substr(0, key))), {}};
    text.remove_prefix(key + 1);
    size_t value;
    if (text.starts_with('"')) {
      const size_t quote = text.find('"', 1);
      if (quote == std::string_view::npos) throw UsageError("in the effect " + shown + " a quote is not closed");
      setting.value = text.substr(1, quote - 1);
      value = quote + 1;
      if (value < text.size() && text[value] != ':') {
        throw UsageError("in the effect " + shown + " something follows a closing quote");
      }
    } else {
      value = ValueLength(text);
      setting.value = Trimmed(text.substr(0, value));
    }
    if (setting.value.empty()) throw UsageError("in the effect " + shown + ' ' + setting.key + " has no value");
    text.remove_prefix(value);
    request.settings.push_back(std::move(setting));
  }
  return request;
}

}  // namespace tervan::host
