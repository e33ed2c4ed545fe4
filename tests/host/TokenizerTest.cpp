#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "host/Tokenizer.h"

namespace cairnset {
namespace {

// The text in a block of its own size, so that the address sanitizer sees a read at its end.
struct Text {
  explicit Text(const std::string& text) : chars(text.begin(), text.end()) {}
  char* begin() { return chars.data(); }
  char* end() { return chars.data() + chars.size(); }
  std::vector<char> chars;
};

TEST(TokenizerTest, Tokens) {
  const struct {
    std::string text;
    long start, length;
  } cases[] = {
      {"  \"Grand Hall\",x", 3, 10},
      {"abc,def ghi", 0, 7},
      {",\t ,ab", 4, 2},
      {"ab\tc", 0, 2},
      {"ab\nc", 0, 2},
      {"ab\rc", 0, 2},
      {"ab\"c d", 0, 4},
      {"\nab", 0, 0},  // the end of a line is no junk
      {" , ", 3, 0},
      {"a", 0, 1},
      {"\"", 1, 0},
      {"\"\"x", 1, 0},
      {"\"a, b", 1, 4},
      {"\"a b\tc\"", 1, 3},
      {"\"a b\nc\"", 1, 3},
      {"\"a b\rc\"", 1, 3},
      {{"a\0b c", 5}, 0, 3},
  };
  for (const auto& c : cases) {
    Text text(c.text);
    char* pos = text.begin();
    EXPECT_EQ(getToken(&pos, text.end()), c.length) << c.text;
    EXPECT_EQ(pos - text.begin(), c.start) << c.text;
  }
}

TEST(TokenizerTest, LinesAndJunk) {
  const struct {
    void (*skip)(char**, char*);
    std::string text;
    long reached;
  } cases[] = {{skipLine, "ab\ncd", 3}, {skipLine, "ab\r\nc", 3},      {skipLine, "ab", 2},
               {skipLine, "\n\n", 1},   {skipLine, {"ab\0c\n", 5}, 2}, {skipJunk, ", \tx ", 3},
               {skipJunk, ",,", 2},     {skipJunk, "\n,", 0},          {skipJunk, {"\0,", 2}, 0}};
  for (const auto& c : cases) {
    Text text(c.text);
    char* pos = text.begin();
    c.skip(&pos, text.end());
    EXPECT_EQ(pos - text.begin(), c.reached) << c.text;
  }
}

TEST(TokenizerTest, NothingBeyondTheEnd) {
  Text text("ab cd");
  char* const end = text.begin() + 2;
  for (char* const start : {end, end + 1}) {
    char* pos = start;
    EXPECT_EQ(getToken(&pos, end), 0);
    skipJunk(&pos, end);
    skipLine(&pos, end);
    EXPECT_EQ(pos, start);
  }
  char* none = nullptr;
  char* pos = text.begin();
  EXPECT_EQ(getToken(nullptr, end), 0);
  EXPECT_EQ(getToken(&none, end), 0);
  EXPECT_EQ(getToken(&pos, nullptr), 0);
  EXPECT_EQ(pos, text.begin());
}

}  // namespace
}  // namespace cairnset
