// UTF-8, one character at a time.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace cairnset {

/// How many ASCII characters the text begins with. Nearly all names have no others, so this
/// checks eight at a time.
std::size_t asciiLength(std::string_view text);

/// Appends a character as 1 to 4 bytes. A surrogate is written like any other character below
/// U+10000, as 3 bytes; what is to be valid UTF-8 must hold none.
void appendUtf8(char32_t character, std::string& out);

/// Takes the first character off a text that is not empty. A byte that is not part of a valid
/// sequence (overlong, cut short, a surrogate, beyond U+10FFFF) is taken by itself and returned as
/// the surrogate U+DC00 + byte, which no valid sequence gives.
char32_t takeUtf8(std::string_view& text);

/// The character that two UTF-16 surrogates stand for.
constexpr char32_t characterOfPair(char32_t high, char32_t low) {
  return 0x10000 + ((high - 0xD800) << 10) + (low - 0xDC00);
}

}  // namespace cairnset
