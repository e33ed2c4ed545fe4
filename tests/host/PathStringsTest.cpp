#include <cstring>
#include <memory>
#include <string>
#include <tuple>

#include <gtest/gtest.h>

#include "host/PathStrings.h"
#include "host/SystemVersion.h"
#include "host/Tokenizer.h"

namespace cairnset {

TEST(PathStringsTest, PartsOfAPath) {
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
}

TEST(PathStringsTest, ChangedInPlace) {
  // u: made uniform; n: made native; o: the same on an older system. "Rooted" begins with the
  // default volume's name.
  const std::tuple<char, const char*, const char*> cases[] = {
      {'u', "/a/b//", "/a/b"},
      {'n', "Data:Presets", "/Volumes/Data/Presets"},
      {'n', ":Presets:Programs", "Presets/Programs"},
      {'n', "Rooted:a", "/Rooted/a"},
      {'o', "/Data/Presets", "Data:Presets"},
      {'o', "//a:b", ":a:b"}};
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
                                                             {'l', {"ab\0c\n", 5}, 2, 0},
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

}  // namespace cairnset
