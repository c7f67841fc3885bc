// Writes JSON piece by piece, with commas, indentation and escapes.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tervan::host {

class JsonWriter {
 public:
  JsonWriter& BeginObject() { return Open('{'); }
  JsonWriter& EndObject() { return Close('}'); }
  JsonWriter& BeginArray() { return Open('['); }
  JsonWriter& EndArray() { return Close(']'); }
  // The next piece is this member's value.
  JsonWriter& Key(std::string_view key);

  JsonWriter& Text(std::string_view utf8);
  // null when the number is not finite, which JSON cannot express.
  JsonWriter& Number(double value);
  JsonWriter& Number(float value);
  template <class T>
  JsonWriter& Number(std::optional<T> value) {
    return value ? Number(*value) : Null();
  }
  JsonWriter& Integer(long long value);
  JsonWriter& Bool(bool value);
  JsonWriter& Null();

  // The document, with a line end.
  std::string Take() { return std::move(text_) + '\n'; }

 private:
  JsonWriter& Open(char bracket);
  JsonWriter& Close(char bracket);
  JsonWriter& Piece(std::string_view text);
  void StartPiece();

  std::string text_;
  int depth_ = 0;
  bool is_first_ = true;    // in the present object or array
  bool is_member_ = false;  // a key has been written
};

}  // namespace tervan::host
