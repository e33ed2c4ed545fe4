#include <cstdint>
#include <cstring>
#include <vector>

#include <gtest/gtest.h>

#include "storage/Pool.h"

namespace cairnset {
namespace {

// Pieces of many sizes, some given back in between: none may overlap another.
TEST(PoolTest, PiecesLieApart) {
  struct Piece {
    unsigned char* bytes;
    std::size_t size;
    int filled;
  };
  std::vector<Piece> pieces;
  for (int n = 0; n < 20'000; ++n) {
    const std::size_t size = static_cast<std::size_t>(n) * 7 % 530;
    auto* bytes = static_cast<unsigned char*>(Pool::take(size));
    ASSERT_EQ(reinterpret_cast<std::uintptr_t>(bytes) % alignof(std::uint64_t), 0u);
    pieces.push_back({static_cast<unsigned char*>(std::memset(bytes, n % 256, size)), size, n});
    if (n % 3 != 2) continue;
    std::swap(pieces[pieces.size() / 2], pieces.back());
    Pool::give(pieces.back().bytes, pieces.back().size);
    pieces.pop_back();
  }
  for (const auto& [bytes, size, filled] : pieces) {
    for (std::size_t i = 0; i < size; ++i)
      ASSERT_EQ(bytes[i], filled % 256);
    Pool::give(bytes, size);
  }
}

// A library that is loaded again must not lie scattered over what the first one gave back.
TEST(PoolTest, OnceAllIsGivenBackMemoryIsInOrderAgain) {
#ifdef CAIRNSET_SANITIZED
  GTEST_SKIP() << "every piece is the heap's";
#endif
  const auto sizeOf = [](std::size_t n) { return n % 2 == 0 ? std::size_t{40} : std::size_t{300}; };
  std::vector<void*> first, second;
  for (std::size_t n = 0; n < 3'000; ++n)  // several blocks of both sorts
    first.push_back(Pool::take(sizeOf(n)));
  for (std::size_t n = 0; n < first.size(); ++n) {
    const std::size_t scattered = n * 7 % first.size();
    Pool::give(first[scattered], sizeOf(scattered));
  }
  for (std::size_t n = 0; n < first.size(); ++n)
    second.push_back(Pool::take(sizeOf(n)));
  EXPECT_EQ(first, second);
  for (std::size_t n = 0; n < second.size(); ++n)
    Pool::give(second[n], sizeOf(n));
}

}  // namespace
}  // namespace cairnset
