#include <utility>

#include <gtest/gtest.h>

#include "host/MacRoman.h"

namespace cairnset {
namespace {

TEST(MacRomanTest, BytesAndCharactersAreOneToOne) {
  constexpr std::pair<int, char16_t> anchors[] = {
      {0x41, u'A'},   {0x7F, 0x7F},   {0x80, 0x00C4}, {0x8F, 0x00E8}, {0x90, 0x00EA},
      {0x9F, 0x00FC}, {0xA0, 0x2020}, {0xAF, 0x00D8}, {0xB0, 0x221E}, {0xBD, 0x03A9},
      {0xC0, 0x00BF}, {0xCA, 0x00A0}, {0xD0, 0x2013}, {0xDB, 0x20AC}, {0xE0, 0x2021},
      {0xEF, 0x00D4}, {0xF0, 0xF8FF}, {0xF5, 0x0131}, {0xFF, 0x02C7},
  };
  for (const auto& [byte, character] : anchors) {
    EXPECT_EQ(unicodeFromMacRoman(static_cast<unsigned char>(byte)), character) << byte;
  }
  for (int byte = 0; byte < 256; ++byte) {
    const auto b = static_cast<unsigned char>(byte);
    EXPECT_EQ(macRomanFromUnicode(unicodeFromMacRoman(b)), b) << byte;
  }
  for (const char32_t other : {0x80, 0xA4, 0x2126, 0x100C4, 0xDC80}) {
    EXPECT_FALSE(macRomanFromUnicode(other)) << static_cast<unsigned long>(other);
  }
}

TEST(MacRomanTest, UpperCaseKeepsTheMarks) {
  for (int byte = 0; byte < 256; ++byte) {
    const auto b = static_cast<unsigned char>(byte);
    const char32_t c = unicodeFromMacRoman(b);
    char32_t upper = c;  // as Latin-1 has its letters, and the two letters that it lacks
    if ((c >= 'a' && c <= 'z') || (c >= 0xE0 && c <= 0xFE && c != 0xF7)) upper = c - 0x20;
    if (c == 0x153) upper = 0x152;
    if (c == 0xFF) upper = 0x178;
    EXPECT_EQ(macRomanToUpper(b), macRomanFromUnicode(upper)) << byte;
  }
}

TEST(MacRomanTest, Utf8) {
  EXPECT_EQ(utf8FromMacRoman("a/\t\x8E\xDB\xF0"), "a/\t\u00E9\u20AC\uF8FF");
}

}  // namespace
}  // namespace cairnset
