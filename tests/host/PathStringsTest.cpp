#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "host/PathStrings.h"
#include "host/SystemVersion.h"

namespace cairnset {
namespace {

class PathStringsTest : public testing::Test {
 protected:
  ~PathStringsTest() override { gestaltAnswers() = {}; }
};

using SystemVersionTest = PathStringsTest;

TEST_F(PathStringsTest, PartsOfAPath) {
  const struct {
    const char *path, *file, *folder, *olderFolder;
  } cases[] = {
      {"Presets/Programs/Warm", "Warm", "Presets/Programs/", "Presets/Programs"},
      {"Warm", "Warm", "", ""},
      {"/Users/a/b", "b", "/Users/a/", "/Users/a"},
      {"/b", "b", "", ""},
      {"a/b:c", "c", "a/b:", "a/b"},
      {"a:b\\c", "c", "a:b\\", "a:b"},
      {"a/b/", "", "a/b/", "a/b"},
      {"", "", "", ""},
  };
  for (const auto& c : cases) {
    char out[64] = "?";
    extractFilename(c.path, out);
    EXPECT_STREQ(out, c.file) << c.path;
    gestaltAnswers().systemVersion = 0x1000;
    extractPath(c.path, out);
    EXPECT_STREQ(out, c.folder) << c.path;
    gestaltAnswers().systemVersion = 0x0922;
    extractPath(c.path, out);
    EXPECT_STREQ(out, c.olderFolder) << c.path;
  }
  char out[] = "same", path[] = "a\\b/c\\d:e";
  extractFilename(static_cast<const char*>(nullptr), out);
  extractPath(nullptr, out);
  EXPECT_STREQ(out, "same");
  extractFilename("x", static_cast<char*>(nullptr));
  extractPath("x", nullptr);
  EXPECT_EQ(findFileFromPath(path), path + 6);
}

TEST_F(PathStringsTest, AbsoluteAndRelative) {
  const struct {
    const char* path;
    bool absolute, olderAbsolute;
  } cases[] = {{"/a", true, true}, {"a", false, true}, {":a", false, false}, {"", false, true}};
  for (const auto& c : cases) {
    gestaltAnswers() = {};
    EXPECT_EQ(isAbsolutePath(c.path), c.absolute) << c.path;
    EXPECT_EQ(isRelativePath(c.path), !c.absolute) << c.path;
    gestaltAnswers().systemVersion.reset();
    EXPECT_EQ(isAbsolutePath(c.path), c.olderAbsolute) << c.path;
    EXPECT_EQ(isRelativePath(c.path), !c.olderAbsolute) << c.path;
  }
  EXPECT_FALSE(isAbsolutePath(nullptr));
  EXPECT_FALSE(isRelativePath(nullptr));
}

TEST_F(PathStringsTest, ChangedInPlace) {
  const auto uniform = [](char* path) { makePathUniform(path); };
  const auto native = [](char* path) { convertToNativePathFormat(path); };
  const auto olderNative = [](char* path) {
    gestaltAnswers().systemVersion = 0x0922;
    convertToNativePathFormat(path);
    gestaltAnswers() = {};
  };
  const struct {
    void (*change)(char*);
    const char *path, *result;
  } cases[] = {
      {uniform, "/a/b//", "/a/b"},
      {uniform, "/", ""},
      {uniform, "", ""},
      {uniform, "a:", "a:"},
      {native, "Data:Presets", "/Volumes/Data/Presets"},
      {native, ":Presets:Programs", "Presets/Programs"},
      {native, "::a", "/Volumes/a"},
      {native, "Volumes:X", "/Volumes/X"},
      {native, "Volumes", "/Volumes/Volumes"},
      {native, "Root:a", "/Root/a"},
      {native, "Rooted:a", "/Rooted/a"},  // begins with the default volume's name
      {native, ":Root", "Root"},
      {native, "", "/Volumes/"},
      {olderNative, "/Data/Presets", "Data:Presets"},
      {olderNative, "//a", ":a"},
      {olderNative, "a/b:c", "a:b:c"},
  };
  for (const auto& c : cases) {
    const std::size_t room = std::strlen(c.path) + 9 + 1;
    std::string buffer(room, '\0');
    buffer.replace(0, std::strlen(c.path), c.path);
    buffer.resize(room, '\0');
    c.change(buffer.data());
    EXPECT_STREQ(buffer.c_str(), c.result) << c.path;
  }
  makePathUniform(nullptr);
}

TEST_F(PathStringsTest, NamesInAnFSSpec) {
  unsigned char name[256] = "\x04Warm";
  FSSpec spec;
  std::memset(spec.name, 'x', sizeof spec.name);
  setFilename(&spec, name);
  char text[64];
  extractCFilename(&spec, text);
  EXPECT_STREQ(text, "Warm");
  std::memset(name, 0xFF, sizeof name);
  extractFilename(&spec, name);
  EXPECT_EQ(std::memcmp(name, spec.name, 64), 0);
  EXPECT_EQ(name[64], 0xFF);
  std::memset(name, 200, sizeof name);
  setFilename(&spec, name);
  EXPECT_EQ(spec.name[0], 63);
  std::memset(spec.name, 200, sizeof spec.name);
  extractCFilename(&spec, text);
  EXPECT_EQ(std::string(text), std::string(63, '\xC8'));
}

TEST_F(SystemVersionTest, Questions) {
  long answer = 7;
  EXPECT_EQ(Gestalt(0x73797376, &answer), 0);
  EXPECT_EQ(answer, 0x1040);
  EXPECT_EQ(Gestalt(0x73797332, &answer), 0);
  EXPECT_EQ(answer, 4);
  EXPECT_EQ(Gestalt(0x73797331, &answer), -50);
  EXPECT_EQ(answer, 4);
  const struct {
    std::optional<long> version, minor;
    bool isX, isTiger;
    const char* name;
  } cases[] = {{0x1040, 4, true, true, "Tiger"},   {0x1050, 5, true, true, nullptr},
               {0x1039, 3, true, false, "Tiger"},  {0x1000, 0, true, false, "Tiger"},
               {0x0FFF, 9, false, false, nullptr}, {{}, {}, false, false, nullptr}};
  for (const auto& c : cases) {
    gestaltAnswers() = {c.version, c.minor};
    EXPECT_EQ(isRunningOSX(), c.isX) << c.version.value_or(-1);
    EXPECT_EQ(isRunningTiger(), c.isTiger) << c.version.value_or(-1);
    EXPECT_STREQ(getSystemVersionString(), c.name) << c.version.value_or(-1);
  }
  const std::uint32_t one = 1;
  unsigned char first;
  std::memcpy(&first, &one, 1);
  EXPECT_EQ(isRunningBigEndian(), first == 0);
  EXPECT_FALSE(isRunningWin());
}

}  // namespace
}  // namespace cairnset
