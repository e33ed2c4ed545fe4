#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "host/FileNameRules.h"

namespace cairnset {
namespace {

using CRule = void (*)(char*);
using PascalRule = void (*)(unsigned char*);
struct Rule {
  CRule c;
  PascalRule pascal;
};
constexpr Rule kChars{RemoveIllegalFilenameCharsInPlace, RemoveIllegalFilenameCharsInPlace};
constexpr Rule kTrailing{RemoveIllegalTrailingFilenameCharsInPlace,
                         RemoveIllegalTrailingFilenameCharsInPlace};
constexpr Rule kAll{RemoveAllIllegalFilenameCharsInPlace, RemoveAllIllegalFilenameCharsInPlace};

TEST(FileNameRulesTest, BothForms) {
  const std::string longest(255, '*');
  const struct {
    Rule rule;
    std::string name, result;
  } cases[] = {
      {kAll, "Mix: a/b?.txt ", "Mix: a_b_.txt"},
      {kAll, "a*.", "a_"},
      {kAll, "a.*", "a._"},
      {kAll, "", ""},
      {kAll, " . . ", ""},
      {kAll, longest, std::string(255, '_')},
      {kTrailing, "Name..", "Name"},
      {kTrailing, "..Name", "..Name"},
      {kTrailing, "a. b .", "a. b"},
      {kTrailing, "a\t", "a\t"},
      {kTrailing, std::string(255, '.'), ""},
      {kChars, "..Name. ", "..Name. "},
      {kChars, "\"*/<>?\\|", "________"},
  };
  for (const auto& c : cases) {
    char name[256];
    std::strcpy(name, c.name.c_str());
    c.rule.c(name);
    EXPECT_EQ(name, c.result) << c.name;
    unsigned char pascal[256] = {static_cast<unsigned char>(c.name.size())};
    std::memcpy(pascal + 1, c.name.data(), c.name.size());
    c.rule.pascal(pascal);
    EXPECT_EQ(std::string(pascal + 1, pascal + 1 + pascal[0]), c.result) << c.name;
  }
}

TEST(FileNameRulesTest, EveryByte) {
  for (int byte = 1; byte < 256; ++byte) {
    char name[] = {static_cast<char>(byte), '\0'};
    RemoveIllegalFilenameCharsInPlace(name);
    const bool isIllegal = byte < 0x20 || byte == 0x22 || byte == 0x2A || byte == 0x2F ||
                           byte == 0x3C || byte == 0x3E || byte == 0x3F || byte == 0x5C ||
                           byte == 0x7C;
    EXPECT_EQ(static_cast<unsigned char>(name[0]), isIllegal ? '_' : byte);
  }
}

}  // namespace
}  // namespace cairnset
