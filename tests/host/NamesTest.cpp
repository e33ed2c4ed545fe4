#include <string>
#include <tuple>

#include <gtest/gtest.h>

#include "host/MacRoman.h"
#include "host/NameConversions.h"
#include "host/Names.h"
#include "host/ResultCodes.h"

namespace cairnset {

static std::string sortKey(std::string_view name) {
  std::string key;
  return appendSortKey(name, key), key;
}

static std::string volumeName(std::u16string_view name) {
  std::string out = "left over";
  return volumeNameFromUnicode(name, out) == bdNamErr ? "bdNamErr" + out : out;
}

TEST(NamesTest, ThreeFormsAndNamesThatNoEntryHas) {
  const std::tuple<std::string, std::u16string, std::string> cases[] = {
      {"Mix: a?\x01. ", u"Mix/ a?\x01. ", "Mix/ a?\x01. "},
      {"\u00E9e\u0301A\u030A", u"\u00E9e\u0301A\u030A", "\x8E\x8E\x81"},
      {"\u4E2D\U0001F3B9\U0010FFFF", u"\u4E2D\xD83C\xDFB9\xDBFF\xDFFF", "___"},
      {"b\u0301e\u0301\u0323\u1EB9\u0301c", u"b\u0301e\u0301\u0323\u1EB9\u0301c", "___c"},
      // Marks on punctuation, which stays illegal, and on what is no letter.
      {"?\u0301\u0302:\u0301", u"?\u0301\u0302/\u0301", "?_/_"},
      // Not UTF-8: a trailing byte, overlong forms of 2, 3 and 4 bytes, surrogates (but not the
      // character before them), beyond U+10FFFF, cut short.
      {"\x80(\xC0\xAF(", u"\xDC80(\xDCC0\xDCAF(", "_(__("},
      {"\xE0\x9F\xBF(\xF0\x8F\xBF\xBF", u"\xDCE0\xDC9F\xDCBF(\xDCF0\xDC8F\xDCBF\xDCBF", "___(____"},
      {"\xED\xA0\x80\xED\xBF\xBF", u"\xDCED\xDCA0\xDC80\xDCED\xDCBF\xDCBF", "______"},
      {"\xED\x9F\xBF\xF4\x90\x80\x80", u"\uD7FF\xDCF4\xDC90\xDC80\xDC80", "_____"},
      {"\xE2\x82\xC3\xA9(\xF0\x9F\x8E", u"\xDCE2\xDC82\u00E9(\xDCF0\xDC9F\xDC8E", "__\x8E(___"}};
  for (const auto& [volume, unicode, held] : cases) {
    EXPECT_EQ(unicodeFromVolumeName(volume), unicode) << volume;
    EXPECT_EQ(volumeName(unicode), volume);
    EXPECT_EQ(heldNameFromVolumeName(volume), held) << volume;
  }
  const std::u16string e127(127, u'\u00E9');
  EXPECT_EQ(volumeName(e127 + u".").size(), 255u);
  EXPECT_EQ(volumeName(e127 + u".."), "bdNamErr");
  for (const auto* name : {u"", u".", u"..", u"a:b", u"\xD800x", u"\xDC41", u"\xDCC3\xDCA9"})
    EXPECT_EQ(volumeName(name), "bdNamErr") << testing::PrintToString(std::u16string(name));
}

TEST(NamesTest, OrderOfAFolderAndOneNameHoweverComposed) {
  // Also over two steps, with marks that change places, Hangul, a character of one other.
  constexpr const char* cases[][2] = {{"\u1EBF", "e\u0302\u0301"},
                                      {"\u00E4\u0327", "a\u0327\u0308"},
                                      {"\uD55C\uAC00", "\u1112\u1161\u11AB\u1100\u1161"},
                                      {"\U0001D160", "\U0001D158\U0001D165\U0001D16E"},
                                      {"\u037E", ";"}};
  for (const auto& [composed, other] : cases) {
    EXPECT_EQ(heldNameFromVolumeName(composed), heldNameFromVolumeName(other)) << composed;
    EXPECT_EQ(sortKey(composed), sortKey(other)) << composed;
  }
  EXPECT_NE(sortKey("\u2260"), sortKey("=\u0338"));  // left alone by the instrument's host
  EXPECT_EQ(sortKey("\u1EA4:\U00010400"), "a\xCC\x82\xCC\x81/\xED\xA0\x81\xED\xB0\xA8");
  for (char c = '0'; c <= '~'; ++c)  // names of ASCII alone are ordered like any other
    EXPECT_EQ(sortKey(c + std::string("\u00E9")), sortKey({&c, 1}) + sortKey("\u00E9")) << c;
}

TEST(MacRomanTest, BytesCharactersAndUpperCase) {
  for (int byte = 0; byte < 256; ++byte) {
    const auto b = static_cast<unsigned char>(byte);
    const char32_t c = unicodeFromMacRoman(b);
    EXPECT_EQ(macRomanFromUnicode(c), b) << byte;
    // As Latin-1 has its letters, and the two that it lacks.
    const bool isLower = (c >= 'a' && c <= 'z') || (c >= 0xE0 && c <= 0xFE && c != 0xF7);
    const char32_t upper = isLower ? c - 0x20 : c == 0x153 ? 0x152 : c == 0xFF ? 0x178 : c;
    EXPECT_EQ(macRomanToUpper(b), macRomanFromUnicode(upper)) << byte;
  }
}

TEST(NameConversionsTest, BothWays) {
  HFSUniStr255 name;
  EXPECT_EQ(ConvertCStringToHFSUniStr("", &name), 4);
  EXPECT_EQ(ConvertCStringToHFSUniStr("Warm/\x8E:", &name), 0);
  EXPECT_EQ(heldNameFromUnicode({name.unicode, name.length}), "Warm/\x8E:");
  const std::u16string wide(300, u'\u4E2D');
  ConvertCFStringRefToHFSUniStr(&wide, &name);
  EXPECT_EQ(std::u16string(name.unicode, name.length), wide.substr(0, 255));
  char text[4] = "old";
  ConvertHFSUniStrToCString(&name, text, 3);
  EXPECT_STREQ(text, "__");
}

}  // namespace cairnset
