// Names on the volume and held ones; PascalStrings, FileNameRules, PathStrings and Tokenizer.

#include "host/ResultCodes.h"
#include "host/SystemVersion.h"
#include "host/text/FileNameRules.h"
#include "host/text/MacRoman.h"
#include "host/text/NameConversions.h"
#include "host/text/Names.h"
#include "host/text/PascalStrings.h"
#include "host/text/PathStrings.h"
#include "host/text/Tokenizer.h"
#include "tests/Testing.h"

namespace cairnset {

// A Str255 with a guard behind it, so that a byte too many shows in any build.
struct Pascal {
  explicit Pascal(const std::string& text) { C2PCopy(bytes, text.c_str()); }
  auto text() const { return std::string(bytes + 1, bytes + (bytes[256] == 0 ? 1 + *bytes : 600)); }
  unsigned char bytes[600] = {};
};

TEST(PascalStringsTest, ConvertingAndAppending) {
  char c[302];
  for (const std::size_t second : {0u, 1u, 128u, 200u, 255u, 300u}) {
    const std::string text(second, '\x8E');
    std::strcpy(c, text.c_str());
    C2PInPlace(c);
    EXPECT_EQ(std::string(c, second + 1), static_cast<char>(second) + text);
    std::strcpy(c, text.c_str());
    CtoPstr(c), PtoCstr(c);
    EXPECT_EQ(c, text.substr(0, 255));
    for (const std::size_t first : {0u, 55u, 56u, 200u}) {
      const std::string start(first, 'a'), whole = start + text;
      Pascal appended(start), joined(start);
      C2PAppendInPlace(appended.bytes, text.c_str());
      EXPECT_EQ(appended.text(), whole.substr(0, whole.size() % 256)) << first << "+" << second;
      PStrCat(joined.bytes, Pascal(text).bytes);
      EXPECT_EQ(joined.text(), whole.substr(0, std::min<std::size_t>(first + second % 256, 255)));
    }
  }
  std::strcpy(c, "--------");
  EXPECT_STREQ(CStrNCat(CStrNCat(c, 10, "xyz"), 5, "xyz"), "--------x");
}

TEST(PascalStringsTest, Comparing) {
  // Equal without ASCII case, as file names. Two letters with their marks, two that are a
  // pair in Latin-1 but not here, two that differ from the 256th byte on.
  const std::tuple<std::string, std::string, bool, bool> cases[] = {
      {"az[`{@", "AZ[`{@", true, true},
      {"\x8A", "\x80", false, true},
      {"\xE4", "\xC4", false, false},
      {std::string(255, 'n') + "1", std::string(255, 'N') + "2", false, true}};
  for (const auto& [a, b, folded, sameFile] : cases) {
    EXPECT_EQ(equalCString(a.c_str(), b.c_str(), false), folded) << a << " " << b;
    EXPECT_EQ(fncmp(a.c_str(), b.c_str()), sameFile ? 0 : 1) << a << " " << b;
  }
}

TEST(FileNameRulesTest, BothForms) {
  const std::tuple<char, std::string, std::string> cases[] = {
      {'*', "Mix: a/b?.txt ", "Mix: a_b_.txt"},
      {'*', " . . ", ""},
      {'*', std::string(255, '*'), std::string(255, '_')},
      {'.', "Name..", "Name"},
      {'_', "\"*/<>?\\|\x1F\x01:;\x7F\xAF. ", "__________:;\x7F\xAF. "}};
  for (const auto& [rule, name, result] : cases) {
    std::string c = name;
    Pascal pascal(name);
    const auto apply = [which = rule](auto*... text) {
      if (which == '*') (RemoveAllIllegalFilenameCharsInPlace(text), ...);
      if (which == '.') (RemoveIllegalTrailingFilenameCharsInPlace(text), ...);
      if (which == '_') (RemoveIllegalFilenameCharsInPlace(text), ...);
    };
    apply(c.data(), pascal.bytes);
    EXPECT_STREQ(c.c_str(), result.c_str()) << name;
    EXPECT_EQ(pascal.text(), result) << name;
  }
}

TEST(PathStringsTest, PartsOfAPathAndTheSystemsName) {
  // The last two columns: the folder, and whether the path is absolute, on an older system.
  const std::tuple<const char*, const char*, const char*, bool, const char*, bool> cases[] = {
      {"Presets/Programs/Warm", "Warm", "Presets/Programs/", false, "Presets/Programs", true},
      {"/Users/a/b", "b", "/Users/a/", true, "/Users/a", true},
      {"/b", "b", "", true, "", true},
      {":a/b:c", "c", ":a/b:", false, ":a/b", false},
      {"a:b\\c", "c", "a:b\\", false, "a:b", true},
      {"", "", "", false, "", true}};
  for (const auto& [path, file, folder, absolute, olderFolder, olderAbsolute] : cases) {
    char part[64];
    extractFilename(path, part);
    EXPECT_STREQ(part, file) << path;
    for (const bool isOlder : {false, true}) {
      gestaltAnswers().systemVersion = isOlder ? 0x0FFF : 0x1000;
      extractPath(path, part);
      EXPECT_STREQ(part, isOlder ? olderFolder : folder) << path;
      EXPECT_EQ(isAbsolutePath(path), isOlder ? olderAbsolute : absolute) << path;
    }
  }
  unsigned char name[65] = "\x04Warm";
  FSSpec fsSpec;
  setFilename(&fsSpec, name);
  std::memset(name, 200, sizeof name);
  extractFilename(&fsSpec, name);
  EXPECT_EQ(std::string(name, name + 65), "\x04Warm" + std::string(59, '\0') + "\xC8");
  std::memset(name, 200, sizeof name);
  setFilename(&fsSpec, name);
  EXPECT_EQ(std::string(fsSpec.name, std::end(fsSpec.name)), "\x3F" + std::string(63, '\xC8'));
  for (const std::optional<long> minor : {std::optional(3l), {4}, {5}, {}}) {
    gestaltAnswers().minorVersion = minor;
    EXPECT_STREQ(getSystemVersionString(), minor.value_or(5) < 5 ? "Tiger" : nullptr);
  }
}

TEST(PathStringsTest, ChangedInPlace) {
  // u: made uniform; n: made native; o: the same on an older system. "Rooted" begins with the
  // default volume's name.
  const std::tuple<char, const char*, const char*> cases[] = {
      {'u', "/a/b//", "/a/b"},        {'n', "Data:Presets", "/Volumes/Data/Presets"},
      {'n', "Rooted:a", "/Rooted/a"}, {'n', ":Presets:Programs", "Presets/Programs"},
      {'o', "//a:b", ":a:b"},         {'o', "/Data/Presets", "Data:Presets"}};
  for (const auto& [change, path, result] : cases) {
    const auto buffer = std::make_unique<char[]>(std::strlen(path) + 9 + 1);
    std::strcpy(buffer.get(), path);
    gestaltAnswers() = {};
    if (change == 'o') gestaltAnswers().systemVersion.reset();
    change == 'u' ? makePathUniform(buffer.get()) : convertToNativePathFormat(buffer.get());
    EXPECT_STREQ(buffer.get(), result) << path;
  }
}

TEST(TokenizerTest, Steps) {
  // t: getToken; l: skipLine; j: skipJunk. Then the text, the place reached, the token's length.
  const std::tuple<char, std::string, long, long> cases[] = {{'t', "  \"Grand Hall\",x", 3, 10},
                                                             {'t', ",\t ,ab\tc", 4, 2},
                                                             {'t', "ab\"c\nd", 0, 4},
                                                             {'t', "\nab", 0, 0},
                                                             {'t', "\"a, b", 1, 4},
                                                             {'l', "ab\r\nc", 3, 0},
                                                             {'l', "ab", 2, 0},
                                                             {'l', "ab\0c\n"s, 2, 0},
                                                             {'j', ",,", 2, 0}};
  for (const auto& [step, content, reached, length] : cases) {
    const auto text = std::make_unique<char[]>(content.size());  // ends where the text does
    std::memcpy(text.get(), content.data(), content.size());
    char *pos = text.get(), *end = pos + content.size();
    EXPECT_EQ(step == 't' ? getToken(&pos, end) : 0, length) << content;
    if (step == 'l') skipLine(&pos, end);
    if (step == 'j') skipJunk(&pos, end);
    EXPECT_EQ(pos - text.get(), reached) << content;
  }
}

static std::string sortKey(std::string_view name, std::string key = "") {
  return appendSortKey(name, key), key;
}

static std::string volumeName(std::u16string_view name) {
  const auto [result, bytes] = volumeNameFromUnicode(name);
  return result == bdNamErr ? "bdNamErr" + bytes : bytes;
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

// On the volume of any bytes, and in the table that folds cases.
TEST(NamesTest, EveryNameAndCharacterComesBack) {
  std::mt19937 random(5);
  for (int round = 0; round < 100'000; ++round) {
    std::string name(9, 'x');
    for (std::size_t i = 1; i < 9; ++i)
      name[i] = "a:\x7F\x80\x90\x9F\xA0\xBF\xC3\xE0\xE1\xED\xF0\xF1\xF4\xFF"[random() % 16];
    ASSERT_EQ(volumeName(unicodeFromVolumeName(name)), name);
    ASSERT_EQ(heldNameFromUnicode(unicodeFromVolumeName(name)), heldNameFromVolumeName(name));
  }
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
  EXPECT_EQ(ConvertCStringToHFSUniStr("", &name) + ConvertCStringToHFSUniStr("Warm/\x8E:", &name),
            4);
  EXPECT_EQ(heldNameFromUnicode({name.unicode, name.length}), "Warm/\x8E:");
  const std::u16string wide(300, u'\u4E2D');
  ConvertCFStringRefToHFSUniStr(&wide, &name);
  EXPECT_EQ(name.length, 255u);
  char text[] = "old";
  ConvertHFSUniStrToCString(&name, text, 3);
  EXPECT_STREQ(text, "__");
}

}  // namespace cairnset
