#include <cstring>
#include <string>
#include <tuple>

#include <gtest/gtest.h>

#include "host/FileNameRules.h"
#include "host/PascalStrings.h"

namespace cairnset {

// A Str255 with a guard behind it, so that a byte too many shows in any build.
struct Pascal {
  explicit Pascal(const std::string& text) { C2PCopy(bytes, text.c_str()); }
  std::string text() const {
    return bytes[256] == 0 ? std::string(bytes + 1, bytes + 1 + bytes[0]) : "overrun";
  }
  unsigned char bytes[600] = {};
};

TEST(PascalStringsTest, ConvertingAndAppending) {
  for (const std::size_t length : {0u, 1u, 128u, 255u, 300u}) {
    const std::string text(length, '\x8E');
    char c[302];
    std::strcpy(c, text.c_str());
    EXPECT_EQ(Pascal(text).text(), text.substr(0, length % 256));
    C2PInPlace(c);
    EXPECT_EQ(std::string(c, length + 1), static_cast<char>(length) + text);
    std::strcpy(c, text.c_str());
    CtoPstr(c), PtoCstr(c);
    EXPECT_EQ(c, text.substr(0, 255));
  }
  constexpr std::size_t cases[][4] = {{55, 200, 255, 255}, {56, 200, 255, 0}, {200, 300, 244, 244}};
  for (const auto& [first, second, clamped, wrapped] : cases) {
    const std::string added = std::string(second, 'b'), whole = std::string(first, 'a') + added;
    Pascal appended(std::string(first, 'a')), joined(std::string(first, 'a')), src(added);
    C2PAppendInPlace(appended.bytes, added.c_str());
    EXPECT_EQ(appended.text(), whole.substr(0, wrapped)) << first << "+" << second;
    PStrCat(joined.bytes, src.bytes);
    EXPECT_EQ(joined.text(), whole.substr(0, clamped)) << first << "+" << second;
  }
  char buffer[40] = "--------";
  EXPECT_STREQ(CStrNCat(CStrNCat(buffer, 10, "xyz"), 5, "xyz"), "--------x");
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
    const auto apply = [which = rule](auto* text) {
      if (which == '*') RemoveAllIllegalFilenameCharsInPlace(text);
      if (which == '.') RemoveIllegalTrailingFilenameCharsInPlace(text);
      if (which == '_') RemoveIllegalFilenameCharsInPlace(text);
    };
    std::string c = name;
    Pascal pascal(name);
    apply(c.data()), apply(pascal.bytes);
    EXPECT_STREQ(c.c_str(), result.c_str()) << name;
    EXPECT_EQ(pascal.text(), result) << name;
  }
}

}  // namespace cairnset
