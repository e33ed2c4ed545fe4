#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "host/MacRoman.h"
#include "host/Names.h"
#include "host/ResultCodes.h"

namespace cairnset {
namespace {

using namespace std::string_literals;

std::string sortKey(std::string_view name) {
  std::string key = "before";
  appendSortKey(name, key);
  EXPECT_EQ(key.substr(0, 6), "before");
  return key.substr(6);
}

TEST(NamesTest, HeldNames) {
  const struct {
    std::string volume, held;
  } cases[] = {
      {"", ""},
      {"Mix: a/b?\x01.txt ", "Mix/ a:b?\x01.txt "},
      {"caf\u00E9", "caf\x8E"},
      {"cafe\u0301", "caf\x8E"},
      {"A\u030A\u00C5", "\x81\x81"},
      {"\u03A9\u20AC\uF8FF\u2260=\u0338", "\xBD\xDB\xF0\xAD\xAD"},
      {"\u4E2D\U0001F3B9x", "__x"},
      {"b\u0301c", "_c"},                       // does not compose
      {"e\u0301\u0323x \u1EB9\u0301", "_x _"},  // one cluster each
      {"\u0301\u0302a", "_a"},                  // marks with nothing to stand on
      {"?\u0301*\u0301\u0302:\u0301", "?_*_/_"},
      {"\x01\u0301", "\x01_"},
      {"\xFF\xC3(\xE2\x82", "__(__"},
      {"\xFF\u0301", "__"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(heldNameFromVolumeName(c.volume), c.held) << c.volume;
    EXPECT_EQ(heldNameFromUnicode(unicodeFromVolumeName(c.volume)), c.held) << c.volume;
  }
}

TEST(NamesTest, UnicodeNames) {
  const struct {
    std::string volume;
    std::u16string unicode;
  } cases[] = {
      {"a:b", u"a/b"},
      {"\xC3\xA9 e\xCC\x81", u"\u00E9 e\u0301"},
      {"\xF0\x9F\x8E\xB9\xF4\x8F\xBF\xBF", u"\xD83C\xDFB9\xDBFF\xDFFF"},
      {"\x80", u"\xDC80"},                                // a trailing byte alone
      {"\xC0\xAF", u"\xDCC0\xDCAF"},                      // overlong, of 2 ...
      {"\xE0\x9F\xBF", u"\xDCE0\xDC9F\xDCBF"},            // ... 3 ...
      {"\xF0\x8F\xBF\xBF", u"\xDCF0\xDC8F\xDCBF\xDCBF"},  // ... and 4 bytes
      {"\xED\xA0\x80\xED\xBF\xBF", u"\xDCED\xDCA0\xDC80\xDCED\xDCBF\xDCBF"},  // surrogates
      {"\xED\x9F\xBF\xEE\x80\x80", u"\uD7FF\uE000"},                          // their neighbours
      {"\xF4\x90\x80\x80", u"\xDCF4\xDC90\xDC80\xDC80"},                      // beyond U+10FFFF
      {"\xF8\x88\x80\x80\x80", u"\xDCF8\xDC88\xDC80\xDC80\xDC80"},            // 5 bytes
      {"\xE2\x82z", u"\xDCE2\xDC82z"},                                        // cut short
      {"\xE2\x82\xC3\xA9", u"\xDCE2\xDC82\u00E9"},  // resumes at the next lead
      {"\xF0\x9F\x8E", u"\xDCF0\xDC9F\xDC8E"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(unicodeFromVolumeName(c.volume), c.unicode) << c.volume;
    std::string back;
    EXPECT_EQ(volumeNameFromUnicode(c.unicode, back), noErr) << c.volume;
    EXPECT_EQ(back, c.volume);
  }
}

TEST(NamesTest, RefusesNamesThatNoEntryHas) {
  const std::u16string refused[] = {
      u"",
      u".",
      u"..",
      u"a:b",
      u"a\0b"s,
      std::u16string(256, u'a'),
      std::u16string(128, u'\u00E9'),
      u"\xD800x",
      u"x\xD83C",
      u"\xDC41",
      u"\xDD00",
      u"\xDFB9\xD83C",
      u"\xDCC3\xDCA9",
  };
  for (const auto& name : refused) {
    std::string out = "old";
    EXPECT_EQ(volumeNameFromUnicode(name, out), bdNamErr) << testing::PrintToString(name);
    EXPECT_EQ(out, "");
  }
  std::string out;
  EXPECT_EQ(volumeNameFromUnicode(std::u16string(127, u'\u00E9') + u"...", out), bdNamErr);
  EXPECT_EQ(volumeNameFromUnicode(std::u16string(127, u'\u00E9') + u".", out), noErr);
}

TEST(NamesTest, EveryVolumeNameComesBackFromItsUnicodeName) {
  const std::string pieces[] = {"a",        ":",        "\xC3",     "\xA9",     "\xE2\x82",
                                "\xAC",     "\xED\xA0", "\xF0\x9F", "\x8E\xB9", "e\xCC\x81",
                                "\xF4\x8F", "\xBF",     "\xFE"};
  std::mt19937 random(20061);
  for (int round = 0; round < 20000; ++round) {
    std::string name = "x";
    for (auto left = random() % 12; left > 0; --left) {
      const auto byte = static_cast<char>(1 + random() % 255);
      name +=
          round % 2 == 0 ? pieces[random() % std::size(pieces)] : std::string(byte != '/', byte);
    }
    std::string back;
    ASSERT_EQ(volumeNameFromUnicode(unicodeFromVolumeName(name), back), noErr) << name;
    ASSERT_EQ(back, name);
  }
}

TEST(NamesTest, EveryHeldNameComesBackFromItsVolumeName) {
  std::mt19937 random(1904);
  for (int round = 0; round < 2000; ++round) {
    std::string held = "x", volume;
    std::u16string unicode = u"x";
    for (int i = 0; i < 40; ++i) {
      const auto byte = static_cast<unsigned char>(1 + random() % 255);
      if (byte == ':') continue;
      held += static_cast<char>(byte);
      unicode += unicodeFromMacRoman(byte);
    }
    ASSERT_EQ(volumeNameFromUnicode(unicode, volume), noErr);
    ASSERT_EQ(heldNameFromVolumeName(volume), held) << volume;
  }
}

TEST(NamesTest, ComposedAndDecomposedCopiesAreOneName) {
  const struct {
    std::string composed, decomposed;
  } cases[] = {
      {"\u00E9", "e\u0301"},
      {"\u1EBF", "e\u0302\u0301"},        // over two steps
      {"\u00E4\u0327", "a\u0327\u0308"},  // the cedilla comes first
      {"\u0344x", "\u0308\u0301x"},
      {"\uD55C\uAC00", "\u1112\u1161\u11AB\u1100\u1161"},
      {"\uD7A3", "\u1112\u1175\u11C2"},
      {"\u304C", "\u304B\u3099"},
      {"\u09CB", "\u09C7\u09BE"},
      {"\uFB2C", "\u05E9\u05BC\u05C1"},
      {"\U0001D160", "\U0001D158\U0001D165\U0001D16E"},
      {"\u037E", ";"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(heldNameFromVolumeName(c.composed), heldNameFromVolumeName(c.decomposed))
        << c.composed;
    EXPECT_EQ(sortKey(c.composed), sortKey(c.decomposed)) << c.composed;
  }
  EXPECT_EQ(heldNameFromVolumeName("\uD55C\u304C"), "__");
  // The instrument's host leaves these as they are.
  EXPECT_NE(sortKey("\u2260"), sortKey("=\u0338"));
  EXPECT_NE(sortKey("\uF900"), sortKey("\u8C48"));
  EXPECT_NE(sortKey("\U0002F800"), sortKey("\u4E3D"));
}

TEST(NamesTest, OrderOfAFolder) {
  const std::vector<std::string> ordered = {
      "",           " b",         "-",    ":",      "9",      ";",         "_",
      "Alpha",      "alphab",     "Beta", "cafe",   "cafeb",  "caf\u00C9", "cafe\u0301s",
      "caff",       "Z",          "~",    "\u00C6", "\u0141", "\u03A9a",   "\u03C9b",
      "\U00010400", "\U00010401", "\xFF", "\uFF21",
  };
  for (std::size_t i = 1; i < ordered.size(); ++i) {
    EXPECT_LT(sortKey(ordered[i - 1]), sortKey(ordered[i])) << ordered[i - 1] << " " << ordered[i];
  }
  EXPECT_EQ(sortKey("\u00C4:\U00010400"), "a\xCC\x88/\xED\xA0\x81\xED\xB0\xA8");
  for (char c = 1; c > 0 && c < 127; ++c) {  // a name of ASCII alone is ordered like any other
    const std::string ascii(c != '/', c);
    EXPECT_EQ(sortKey(ascii + "\u00E9"), sortKey(ascii) + sortKey("\u00E9")) << ascii;
  }
}

}  // namespace
}  // namespace cairnset
