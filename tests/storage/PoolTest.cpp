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

}  // namespace
}  // namespace cairnset
