#include <tuple>
#include <vector>

#include "storage/Checksums.h"
#include "tests/storage/StorageTest.h"

namespace cairnset {
namespace {

TEST(Checksums, AppendsPaddingAndSum) {
  const std::string zeros(8, '\0'), one = "\0\0\0\0\0\0\0\1"s, ones(8, '\xFF');
  const std::tuple<std::string, std::string, bool> cases[] = {
      {"", zeros, false},
      {"ABC", "\0\0\0\0\0ABC\0\0\0\0\0"s, false},
      {one + one + ones, one, false},
      {"\xFF" + one, zeros.substr(1) + "\0\1\0\0\0\0\0\0"s, true}};
  for (const auto& [content, appended, swapped] : cases) {
    Filled f(content);
    EXPECT_TRUE(f.append64BitChecksum(swapped) && contentOf(f) == content + appended) << content;
    EXPECT_EQ(f.confirmSwappedAppended64BitChecksum(), content.empty()) << "by its byte order";
    for (const bool isDamaged : {false, true}) {
      f.buffer()[f.size() / 2] ^= static_cast<char>(isDamaged);
      const ForkFile file(contentOf(f));
      EXPECT_EQ(f.confirmRawAppended64BitChecksum(nullptr), !swapped && !isDamaged) << content;
      EXPECT_EQ(confirmChecksum(file.fork, nullptr, 0), !swapped && !isDamaged) << content;
    }
  }
  EXPECT_EQ(confirmChecksum(ForkFile("ABCDEFG").fork, nullptr, 0), 0);
  // Ten bytes of content: the word 4142434445464748 and the partial word 494A.
  Filled raw("ABCDEFGHIJ\212\214CDEFGH"), swapped("ABCDEFGHIJ\221\221FEDCBA");
  EXPECT_EQ(raw.calculateRaw64BitChecksum(), 0x4142434445464748u);
  EXPECT_EQ(raw.confirmRawAppended64BitChecksum(nullptr), 1);
  EXPECT_EQ(swapped.confirmSwappedAppended64BitChecksum(), 1);
}

std::vector<float> seen;

long report(float fraction, long cancelAt) {
  seen.push_back(fraction);
  return static_cast<long>(seen.size()) == cancelAt ? 5 : 0;
}

TEST(Checksums, ReportsProgressAfterEachBlock) {
  const std::tuple<std::size_t, long, std::vector<float>> cases[] = {
      {131071, 0, {0, 1}},
      {131072, 0, {0, 0, 1}},
      {3 * 131072 + 5, 0, {0, 0, .25, .5, 1}},
      {3 * 131072 + 5, 4, {0, 0, .25, .5}}};
  for (const auto& [size, cancelAt, progress] : cases) {
    // A 1 in the first byte of each block and of what is left.
    std::string content(size, '\0'), trailer(8, '\0');
    for (std::size_t at = 0; at < size; at += 131072, ++trailer[0])
      content[at] = 1;
    const ForkFile file(content + trailer);
    EXPECT_EQ(confirmChecksum(file.fork, report, cancelAt), cancelAt == 0 ? 1 : -1) << size;
    EXPECT_EQ(std::exchange(seen, {}), progress);
  }
}

}  // namespace
}  // namespace cairnset
