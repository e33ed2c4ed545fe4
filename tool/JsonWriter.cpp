#include "tool/JsonWriter.h"

#include <charconv>
#include <cmath>
#include <cstddef>
#include <utility>

#include "host/text/MacRoman.h"
#include "host/text/Utf8.h"

namespace cairnset {

namespace {

constexpr std::size_t kPiece = 1 << 16;
constexpr char32_t kReplacement = 0xFFFD;

bool isPlain(char c) {
  return c >= 0x20 && c < 0x7F && c != '"' && c != '\\' && c != '<';
}

void appendEscape(char32_t c, std::string& out) {
  constexpr char kDigits[] = "0123456789abcdef";
  if (c == '"' || c == '\\') {
    out.append(1, '\\').append(1, static_cast<char>(c));
  } else {
    out.append("\\u00").append(1, kDigits[c >> 4]).append(1, kDigits[c & 15]);
  }
}

}  // namespace

void JsonWriter::separate() {
  if (_needs_comma) _text += ',';
  if (std::exchange(_breaks_line, false)) _text += '\n';
  if (_text.size() > kPiece) flush();
}

JsonWriter& JsonWriter::key(std::string_view name) {
  separate();
  _text.append(1, '"').append(name).append("\":");
  _needs_comma = false;
  return *this;
}

void JsonWriter::open(char bracket) {
  separate();
  _text += bracket;
  _needs_comma = false;
}

void JsonWriter::close(char bracket) {
  _text += bracket;
  _needs_comma = true;
}

void JsonWriter::raw(std::string_view value) {
  separate();
  _text += value;
  _needs_comma = true;
}

void JsonWriter::number(std::int64_t value) {
  char digits[24];
  raw({digits, std::to_chars(digits, std::end(digits), value).ptr});
}

void JsonWriter::number(float value) {
  char digits[32];
  if (!std::isfinite(value)) return null();
  raw({digits, std::to_chars(digits, std::end(digits), value).ptr});
}

void JsonWriter::text(std::string_view value) {
  raw("\"");
  while (!value.empty()) {
    std::size_t plain = 0;
    while (plain < value.size() && isPlain(value[plain]))
      ++plain;
    _text += value.substr(0, plain);
    value.remove_prefix(plain);
    if (value.empty()) break;
    const char32_t c = takeUtf8(value);
    const bool isNoUtf8 = c >= 0xDC00 && c <= 0xDCFF;
    if (c < 0xA0) {
      appendEscape(c, _text);
    } else {
      appendUtf8(isNoUtf8 ? kReplacement : c, _text);
    }
  }
  _text += '"';
}

void JsonWriter::heldText(std::string_view value) {
  if (asciiLength(value) == value.size()) return text(value);
  _converted.clear();
  appendUtf8FromMacRoman(value, _converted);
  text(_converted);
}

void JsonWriter::flush() {
  if (std::exchange(_breaks_line, false)) _text += '\n';
  _sink(_text);
  _text.clear();
}

}  // namespace cairnset
