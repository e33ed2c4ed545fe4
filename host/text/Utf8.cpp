#include "host/text/Utf8.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace cairnset {

std::size_t asciiLength(std::string_view text) {
  std::size_t length = 0;
  for (std::uint64_t eight = 0; length + sizeof eight <= text.size(); length += sizeof eight) {
    std::memcpy(&eight, text.data() + length, sizeof eight);
    if ((eight & 0x8080808080808080u) != 0) break;
  }
  while (length < text.size() && static_cast<unsigned char>(text[length]) < 0x80)
    ++length;
  return length;
}

void appendUtf8(char32_t character, std::string& out) {
  if (character < 0x80) {
    out += static_cast<char>(character);
    return;
  }
  const int trailing = character < 0x800 ? 1 : character < 0x10000 ? 2 : 3;
  out += static_cast<char>(0xFF80u >> trailing | character >> 6 * trailing);
  for (int shift = 6 * (trailing - 1); shift >= 0; shift -= 6)
    out += static_cast<char>(0x80 | (character >> shift & 0x3F));
}

char32_t takeUtf8(std::string_view& text) {
  constexpr char32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char lead = byte(0);
  const std::size_t length = lead < 0x80   ? 1
                             : lead < 0xC0 ? 0
                             : lead < 0xE0 ? 2
                             : lead < 0xF0 ? 3
                                           : 4;
  bool valid = length != 0 && length <= text.size() && lead < 0xF8;
  char32_t character = length < 2 ? lead : lead & (0x7Fu >> length);
  for (std::size_t i = 1; valid && i < length; ++i) {
    valid = (byte(i) & 0xC0) == 0x80;
    character = character << 6 | (byte(i) & 0x3Fu);
  }
  valid = valid && character >= kLeast[length] && character <= 0x10FFFF &&
          (character < 0xD800 || character > 0xDFFF);
  text.remove_prefix(valid ? length : 1);
  return valid ? character : char32_t{0xDC00} + lead;
}

}  // namespace cairnset
