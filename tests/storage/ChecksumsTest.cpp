#include <vector>

#include "storage/Checksums.h"
#include "tests/storage/StorageTest.h"

namespace cairnset {
namespace {

int confirmFork(const std::string& content) {
  return confirmChecksum(ForkFile(content).fork, nullptr, 0);
}

TEST(Checksums, AppendsPaddingAndSum) {
  const std::string zeros(8, '\0'), one = "\0\0\0\0\0\0\0\1"s, ones(8, '\xFF');
  const struct {
    std::string content, appended;
    bool swapped;
  } cases[] = {
      {"", zeros, false},
      {"ABC", "\0\0\0\0\0ABC\0\0\0\0\0"s, false},
      {one + one + ones, one, false},
      {"\0\0\0\0\xFF\xFF\xFF\xFF"s + one, "\0\0\0\1\0\0\0\0"s, false},
      {"\xFF" + one, zeros.substr(1) + "\0\1\0\0\0\0\0\0"s, true},
  };
  for (const auto& c : cases) {
    Filled f(c.content);
    f.seekp(0);
    EXPECT_EQ(f.append64BitChecksum(c.swapped) + f.tellp(), 1);
    EXPECT_EQ(contentOf(f), c.content + c.appended);
    EXPECT_EQ(f.confirmRawAppended64BitChecksum(nullptr), !c.swapped) << c.content;
    EXPECT_EQ(confirmFork(c.content + c.appended), !c.swapped) << c.content;
    EXPECT_EQ(f.confirmSwappedAppended64BitChecksum(), c.content.empty()) << "by its byte order";
    ++f.buffer()[f.size() / 2];
    EXPECT_EQ(f.confirmRawAppended64BitChecksum(nullptr) + confirmFork(contentOf(f)), 0);
  }
}

// Ten bytes of content: the word 4142434445464748 and the partial word 494A.
TEST(Checksums, EachFormHasItsOwnRange) {
  const std::string content = "ABCDEFGHIJ";
  unsigned long long computed = 0;
  Filled raw(content + "\x8A\x8C" + "CDEFGH"), tiny("ABCDEFG");
  EXPECT_EQ(raw.calculateRaw64BitChecksum(), 0x4142434445464748u);
  EXPECT_EQ(raw.calculateSwapped64BitChecksum(), 0x9191464544434241u);
  EXPECT_EQ(raw.confirmRawAppended64BitChecksum(&computed) + raw.eof(), 2);
  EXPECT_EQ(computed, 0x8A8C434445464748u);
  EXPECT_EQ(Filled(content + "\x91\x91" + "FEDCBA").confirmSwappedAppended64BitChecksum(), 1);
  EXPECT_EQ(tiny.calculateRaw64BitChecksum() + tiny.calculateSwapped64BitChecksum(), 0u);
  EXPECT_EQ(tiny.confirmRawAppended64BitChecksum(nullptr) + confirmFork("ABCDEFG"), 0);
}

std::vector<float> seen;

long report(float fraction, long cancelAt) {
  seen.push_back(fraction);
  return static_cast<long>(seen.size()) == cancelAt ? 5 : 0;
}

TEST(Checksums, ReportsProgressAfterEachBlock) {
  const struct {
    std::size_t contentSize;
    std::vector<float> progress;
  } cases[] = {{131071, {0, 1}}, {131072, {0, 0, 1}}, {3 * 131072 + 5, {0, 0, .25, .5, 1}}};
  for (const auto& c : cases) {
    // A 1 in the first byte of each block and of what is left.
    std::string content(c.contentSize, '\0'), trailer(8, '\0');
    for (std::size_t at = 0; at < content.size(); at += 131072, ++trailer[0])
      content[at] = 1;
    const ForkFile good(content + trailer);
    for (std::size_t cancelAt = 0; cancelAt <= c.progress.size(); ++cancelAt) {
      std::vector<float> want = c.progress;
      if (cancelAt > 0) want.resize(cancelAt);
      seen.clear();
      const int result = confirmChecksum(good.fork, report, static_cast<long>(cancelAt));
      EXPECT_TRUE(result == (cancelAt == 0 ? 1 : -1) && seen == want) << c.contentSize;
    }
  }
}

}  // namespace
}  // namespace cairnset
