#include "storage/Pool.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <new>
#include <utility>
#include <vector>

namespace cairnset {

namespace {

#ifdef CAIRNSET_SANITIZED
constexpr std::size_t kLargest = 0;
#else
constexpr std::size_t kLargest = 512;
#endif
constexpr std::size_t kLargestSmall = 72;  // most names, and all links
constexpr std::size_t kUnit = std::max(sizeof(void*), sizeof(std::uint64_t));
constexpr std::size_t kBlockSize = 1 << 16;

struct Unused {
  Unused* next;
};

// What was never taken of a block.
struct Fresh {
  unsigned char* bytes = nullptr;
  std::size_t size = 0;
};

std::array<Unused*, kLargest / kUnit + 1> unused;  // by size in units
Fresh small, large;

bool isPooled(std::size_t size) {
  return size > 0 && size <= kLargest;
}

std::size_t unitsOf(std::size_t size) {
  return (size + kUnit - 1) / kUnit;
}

void takeBlock(Fresh& fresh) {
  // Never destroyed: a list that is itself static may outlive whatever else is.
  static auto& blocks = *new std::vector<void*>;
  blocks.push_back(::operator new(kBlockSize));
  fresh = {static_cast<unsigned char*>(blocks.back()), kBlockSize};
}

}  // namespace

void* Pool::take(std::size_t size) {
  if (!isPooled(size)) return ::operator new(size);
  const std::size_t units = unitsOf(size);
  if (unused[units] != nullptr) return std::exchange(unused[units], unused[units]->next);
  Fresh& fresh = size <= kLargestSmall ? small : large;
  if (fresh.size < units * kUnit) takeBlock(fresh);
  fresh.size -= units * kUnit;
  return std::exchange(fresh.bytes, fresh.bytes + units * kUnit);
}

void Pool::give(void* piece, std::size_t size) noexcept {
  if (piece == nullptr) return;
  if (!isPooled(size)) return ::operator delete(piece);
  Unused*& first = unused[unitsOf(size)];
  first = ::new (piece) Unused{first};
}

}  // namespace cairnset
