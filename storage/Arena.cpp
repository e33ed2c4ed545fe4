#include "storage/Arena.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <new>
#include <vector>

namespace cairnset {

#ifdef CAIRNSET_SANITIZED

void* Arena::take(std::size_t size) {
  return ::operator new(size);
}

void Arena::give(void* piece) noexcept {
  ::operator delete(piece);
}

#else

namespace {

constexpr std::size_t kUnit = std::max(sizeof(void*), sizeof(std::uint64_t));
constexpr std::size_t kBlockSize = 1 << 16;

struct Blocks {
  std::vector<std::unique_ptr<unsigned char[]>> all;
  std::size_t left = 0;  // at the start of the last
  std::size_t piecesOut = 0;
};

// Never destroyed: a list that is itself static may outlive whatever else is.
Blocks& theBlocks() {
  static auto& blocks = *new Blocks;
  return blocks;
}

}  // namespace

void* Arena::take(std::size_t size) {
  Blocks& blocks = theBlocks();
  const std::size_t rounded = (std::max<std::size_t>(size, 1) + kUnit - 1) / kUnit * kUnit;
  if (blocks.left < rounded) {
    blocks.left = std::max(rounded, kBlockSize);
    blocks.all.emplace_back(new unsigned char[blocks.left]);
  }
  ++blocks.piecesOut;
  blocks.left -= rounded;
  return blocks.all.back().get() + blocks.left;
}

void Arena::give(void* piece) noexcept {
  Blocks& blocks = theBlocks();
  if (piece == nullptr || --blocks.piecesOut > 0) return;
  blocks.all.clear();
  blocks.left = 0;
}

#endif

}  // namespace cairnset
