#include "host/json_writer.h"

#include <cmath>
#include <cstdio>

#include "host/text.h"

namespace tervan::host {
namespace {

std::string Escaped(std::string_view utf8) {
  std::string text = "\"";
  for (const char c : utf8) {
    if (c == '"' || c == '\\') {
      text += '\\';
      text += c;
    } else if (static_cast<unsigned char>(c) < 0x20) {
      char code[8];
      std::snprintf(code, sizeof code, "\\u%04x", c);
      text += code;
    } else {
      text += c;
    }
  }
  return text + '"';
}

}  // namespace

JsonWriter& JsonWriter::Key(std::string_view key) {
  StartPiece();
  text_ += Escaped(key) + ": ";
  is_member_ = true;
  return *this;
}

JsonWriter& JsonWriter::Text(std::string_view utf8) { return Piece(Escaped(utf8)); }
JsonWriter& JsonWriter::Number(double value) { return std::isfinite(value) ? Piece(ShortNumber(value)) : Null(); }
JsonWriter& JsonWriter::Number(float value) { return std::isfinite(value) ? Piece(ShortNumber(value)) : Null(); }
JsonWriter& JsonWriter::Integer(long long value) { return Piece(std::to_string(value)); }
JsonWriter& JsonWriter::Bool(bool value) { return Piece(value ? "true" : "false"); }
JsonWriter& JsonWriter::Null() { return Piece("null"); }

JsonWriter& JsonWriter::Open(char bracket) {
  StartPiece();
  text_ += bracket;
  ++depth_;
  is_first_ = true;
  return *this;
}

JsonWriter& JsonWriter::Close(char bracket) {
  --depth_;
  if (!is_first_) text_ += '\n' + std::string(2 * depth_, ' ');
  text_ += bracket;
  is_first_ = false;
  return *this;
}

JsonWriter& JsonWriter::Piece(std::string_view text) {
  StartPiece();
  text_ += text;
  return *this;
}

// What stands before a value or a key: nothing after a key, else a comma and a new line.
void JsonWriter::StartPiece() {
  if (is_member_) {
    is_member_ = false;
    return;
  }
  if (depth_ == 0) return;
  text_ += is_first_ ? "\n" : ",\n";
  text_.append(2 * depth_, ' ');
  is_first_ = false;
}

}  // namespace tervan::host
