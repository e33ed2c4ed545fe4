#include "storage/Arena.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <new>
#include <utility>
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

constexpr std::size_t kSmall = 72;  // most names, and all links

struct Blocks {
  std::vector<std::unique_ptr<unsigned char[]>> all;
  unsigned char* next = nullptr;  // in the last block
  std::size_t left = 0;
};

struct State {
  Blocks small, large;
  std::size_t piecesOut = 0;
};

// Never destroyed: a static list may be destroyed later.
State& state() {
  static auto& state = *new State;
  return state;
}

}  // namespace

void* Arena::take(std::size_t size) {
  Blocks& blocks = size <= kSmall ? state().small : state().large;
  const std::size_t rounded = (std::max<std::size_t>(size, 1) + kUnit - 1) / kUnit * kUnit;
  if (blocks.left < rounded) {
    blocks.left = std::max(rounded, kBlockSize);
    blocks.next = blocks.all.emplace_back(new unsigned char[blocks.left]).get();
  }
  ++state().piecesOut;
  blocks.left -= rounded;
  return std::exchange(blocks.next, blocks.next + rounded);
}

void Arena::give(void* piece) noexcept {
  if (piece == nullptr || --state().piecesOut > 0) return;
  state().small = {};
  state().large = {};
}

#endif

}  // namespace cairnset
