#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "host/NameConversions.h"

namespace cairnset {
namespace {

std::u16string units(const HFSUniStr255& name) {
  return {name.unicode, name.length};
}

TEST(NameConversionsTest, IntoUnicode) {
  const struct {
    std::string text;
    std::u16string unicode;
    OSErr result;
  } cases[] = {
      {"", u"", 4},
      {"Warm/\x8E:", u"Warm/\u00E9:", 0},
      {std::string(254, 'a'), std::u16string(254, u'a'), 0},
      {std::string(255, 'a'), std::u16string(254, u'a'), 0},
  };
  for (const auto& c : cases) {
    HFSUniStr255 name{3, u"old"};
    EXPECT_EQ(ConvertCStringToHFSUniStr(c.text.c_str(), &name), c.result) << c.text;
    EXPECT_EQ(units(name), c.unicode);
    name = {3, u"old"};
    const std::string pascal = static_cast<char>(c.text.size()) + c.text;
    EXPECT_EQ(
        ConvertPStringToHFSUniStr(reinterpret_cast<const unsigned char*>(pascal.data()), &name),
        c.result);
    EXPECT_EQ(units(name), c.unicode);
  }
  HFSUniStr255 name{3, u"old"};
  EXPECT_EQ(ConvertCStringToHFSUniStr(nullptr, &name), 5);
  EXPECT_EQ(name.length, 0);
  EXPECT_EQ(ConvertPStringToHFSUniStr(nullptr, &name), 5);
  const std::u16string text(300, u'\u4E2D'), empty;
  EXPECT_EQ(ConvertCFStringRefToHFSUniStr(&text, &name), 0);
  EXPECT_EQ(units(name), text.substr(0, 255));
  EXPECT_EQ(ConvertCFStringRefToHFSUniStr(&empty, &name), 4);
  EXPECT_EQ(name.length, 0);
  EXPECT_EQ(ConvertCFStringRefToHFSUniStr(nullptr, &name), 4);
}

TEST(NameConversionsTest, OutOfUnicode) {
  const struct {
    HFSUniStr255 name;
    long size;
    OSErr result;
    const char* text;
  } cases[] = {
      {{5, u"cafe\u0301"}, 16, 0, "caf\x8E"},
      {{3, u"a\xDCFF\u4E2D"}, 16, 0, "a__"},
      {{4, u"Warm"}, 5, 0, "Warm"},
      {{4, u"Warm"}, 4, 0, "War"},
      {{4, u"Warm"}, 1, 0, ""},
      {{4, u"Warm"}, 0, -1, "old"},
      {{0, u""}, 16, 0, ""},
  };
  for (const auto& c : cases) {
    char text[16] = "old";
    EXPECT_EQ(ConvertHFSUniStrToCString(&c.name, text, c.size), c.result) << c.text;
    EXPECT_STREQ(text, c.text) << c.size;
  }
  char text[256] = "old";
  EXPECT_EQ(ConvertHFSUniStrToCString(nullptr, text, sizeof text), -1);
  EXPECT_STREQ(text, "");
  HFSUniStr255 longest{255, {}};
  for (UniChar& unit : longest.unicode)
    unit = u'a';
  EXPECT_EQ(ConvertHFSUniStrToCString(&longest, text, sizeof text), 0);
  EXPECT_EQ(std::strlen(text), 255u);
  EXPECT_EQ(ConvertHFSUniStrToCString(&longest, nullptr, 16), -1);
}

}  // namespace
}  // namespace cairnset
