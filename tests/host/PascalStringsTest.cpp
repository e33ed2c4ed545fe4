#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "host/DialogControls.h"
#include "host/PascalStrings.h"

namespace cairnset {
namespace {

// A Str255 with a guard behind it, so that one byte too many shows in any build.
struct Pascal {
  explicit Pascal(const std::string& text) { assign(text); }
  void assign(const std::string& text) {
    bytes[0] = static_cast<unsigned char>(text.size());
    std::memcpy(bytes + 1, text.data(), text.size());
    std::memset(bytes + 256, 0x5A, sizeof bytes - 256);
  }
  std::string text() const { return {reinterpret_cast<const char*>(bytes + 1), bytes[0]}; }
  bool isGuardWhole() const {
    return std::string(bytes + 256, bytes + sizeof bytes) == std::string(16, 0x5A);
  }
  unsigned char bytes[272] = {};
};

std::string run(std::size_t count, char c) {
  return std::string(count, c);
}

TEST(PascalStringsTest, ConversionsBetweenTheForms) {
  for (const std::size_t length : {0, 1, 127, 128, 255}) {
    const std::string text = run(length, '\x8E');
    Pascal p(text);
    char c[257];
    P2CCopy(c, p.bytes);
    EXPECT_EQ(c, text);
    C2PInPlace(c);
    EXPECT_EQ(static_cast<unsigned char>(c[0]), length);
    P2CInPlace(c);
    EXPECT_EQ(c, text);
    CtoPstr(c);
    PtoCstr(c);
    EXPECT_EQ(c, text);
    P2CInPlace(p.bytes);
    EXPECT_EQ(reinterpret_cast<char*>(p.bytes), text);
    C2PInPlace(p.bytes);
    EXPECT_EQ(p.text(), text);
    p.assign("");
    C2PCopy(p.bytes, c);
    EXPECT_EQ(p.text(), text);
    EXPECT_TRUE(p.isGuardWhole());
  }
}

TEST(PascalStringsTest, LongCStringsWrapOrAreCut) {
  const std::string text = run(255, 'a') + run(45, 'b');
  char buffer[301];
  std::strcpy(buffer, text.c_str());
  C2PInPlace(buffer);
  EXPECT_EQ(buffer[0], 300 - 256);
  EXPECT_EQ(std::string(buffer + 1, 300), text);
  std::strcpy(buffer, text.c_str());
  CtoPstr(buffer);
  EXPECT_EQ(static_cast<unsigned char>(buffer[0]), 255);
  EXPECT_EQ(std::string(buffer + 1, 255), run(255, 'a'));
  Pascal p("");
  C2PCopy(p.bytes, text.c_str());
  EXPECT_EQ(p.text(), run(44, 'a'));
  EXPECT_TRUE(p.isGuardWhole());
}

TEST(PascalStringsTest, Appending) {
  const struct {
    std::size_t first, second, clamped, wrapped;
  } cases[] = {{0, 0, 0, 0},         {3, 4, 7, 7},         {55, 200, 255, 255}, {56, 200, 255, 0},
               {200, 200, 255, 144}, {255, 255, 255, 254}, {255, 1, 255, 0},    {0, 255, 255, 255}};
  for (const auto& c : cases) {
    const std::string whole = run(c.first, 'a') + run(c.second, 'b');
    Pascal dst(run(c.first, 'a'));
    const Pascal src(run(c.second, 'b'));
    EXPECT_EQ(PStrCat(dst.bytes, src.bytes), dst.bytes);
    EXPECT_EQ(dst.text(), whole.substr(0, c.clamped)) << c.first << "+" << c.second;
    EXPECT_TRUE(dst.isGuardWhole());
    dst.assign(run(c.first, 'a'));
    C2PAppendInPlace(dst.bytes, run(c.second, 'b').c_str());
    EXPECT_EQ(dst.text(), whole.substr(0, c.wrapped)) << c.first << "+" << c.second;
    EXPECT_TRUE(dst.isGuardWhole());
    EXPECT_EQ(PStrCopy(dst.bytes, src.bytes), dst.bytes);
    EXPECT_EQ(dst.text(), src.text());
    char joined[512] = "x";
    P2CAppendInPlace(joined, src.bytes);
    EXPECT_EQ(joined, "x" + src.text());
  }
  Pascal dst(run(200, 'a'));  // the count comes round to a longer string than before
  C2PAppendInPlace(dst.bytes, run(300, 'b').c_str());
  EXPECT_EQ(dst.text(), run(200, 'a') + run(44, 'b'));
  EXPECT_TRUE(dst.isGuardWhole());
}

TEST(PascalStringsTest, BoundedAppend) {
  const struct {
    std::size_t held;
    unsigned long size;
    const char* result;
  } cases[] = {{8, 10, "x"}, {9, 10, ""}, {10, 10, ""},  {11, 10, ""},
               {8, 0, ""},   {0, 1, ""},  {0, 4, "xyz"}, {0, 100, "xyz"}};
  for (const auto& c : cases) {
    char buffer[100] = {};
    std::memset(buffer, '-', c.held);
    EXPECT_EQ(CStrNCat(buffer, c.size, "xyz"), buffer);
    EXPECT_EQ(buffer, run(c.held, '-') + c.result) << c.held << " in " << c.size;
  }
  char untouched[] = "a";
  EXPECT_EQ(CStrNCat(nullptr, 10, "x"), nullptr);
  EXPECT_STREQ(CStrNCat(untouched, 10, nullptr), "a");
}

TEST(PascalStringsTest, Comparing) {
  const std::string long1 = run(255, 'n') + "1", long2 = run(255, 'N') + "2";
  const struct {
    std::string a, b;
    bool exact, folded, sameFile;
  } cases[] = {
      {"", "", true, true, true},
      {"abc", "abc", true, true, true},
      {"abc", "ABC", false, true, true},
      {"az[`{@", "AZ[`{@", false, true, true},
      {"[", "{", false, false, false},
      {"abc", "abcd", false, false, false},
      {"\x8A", "\x80", false, false, true},  // a and A with diaeresis
      {"\x8E", "e", false, false, false},    // marks count
      {"\xF5", "i", false, false, false},
      {"\xE4", "\xC4", false, false, false},  // letters in Latin-1, but not here
      {long1, long2, false, false, true},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(equalCString(c.a.c_str(), c.b.c_str(), true), c.exact) << c.a << " " << c.b;
    EXPECT_EQ(equalCString(c.a.c_str(), c.b.c_str(), false), c.folded) << c.a << " " << c.b;
    EXPECT_EQ(fncmp(c.a.c_str(), c.b.c_str()), c.sameFile ? 0 : 1) << c.a << " " << c.b;
    EXPECT_EQ(fncmpKey(c.a) == fncmpKey(c.b), c.sameFile) << c.a << " " << c.b;
    if (c.a.size() > 255) continue;
    EXPECT_EQ(equalPString(Pascal(c.a).bytes, Pascal(c.b).bytes, true), c.exact) << c.a;
    EXPECT_EQ(equalPString(Pascal(c.a).bytes, Pascal(c.b).bytes, false), c.folded) << c.a;
  }
  EXPECT_FALSE(equalCString(nullptr, nullptr, true));
  EXPECT_FALSE(equalCString("", nullptr, false));
  EXPECT_FALSE(equalPString(nullptr, nullptr, true));
  EXPECT_TRUE(equalPString(Pascal({"a\0b", 3}).bytes, Pascal({"a\0c", 3}).bytes, true));
}

TEST(DialogControlsTest, Texts) {
  Control control;
  setEditText(&control, -2147483647L);
  EXPECT_EQ(control.text, "-2147483647");
  setEditText(&control, 0.125f, 2);
  EXPECT_EQ(control.text, "0.12");
  setEditText(&control, -1e30f, 0);
  EXPECT_EQ(control.text, "-1000000015047466219876688855040");
  setStaticText(&control, "Grand");
  EXPECT_EQ(control.text, "Grand");
}

}  // namespace
}  // namespace cairnset
