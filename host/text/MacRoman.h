// The instrument's 8-bit character set.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "host/HostTypes.h"

namespace cairnset {

/// The Unicode character of a Mac Roman byte; bytes below 0x80 are ASCII. 0xDB is the euro sign and
/// 0xF0 the private-use character U+F8FF.
UniChar unicodeFromMacRoman(unsigned char byte);

/// The Mac Roman byte of a composed Unicode character, or nothing where it has no form there.
std::optional<unsigned char> macRomanFromUnicode(char32_t character);

extern const std::array<unsigned char, 256> kMacRomanUpperCase;

/// The byte with its letter in upper case, marks kept: 0x8E (e acute) becomes 0x83. Letters without
/// an upper-case form in Mac Roman, and everything that is no letter, stay as they are.
inline unsigned char macRomanToUpper(unsigned char byte) {
  return kMacRomanUpperCase[byte];
}

/// Appends Mac Roman text as composed UTF-8. Every report shows names through this.
void appendUtf8FromMacRoman(std::string_view text, std::string& out);

}  // namespace cairnset
