#include "storage/Pool.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <new>
#include <utility>

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

struct Block {
  Block* next = nullptr;
  alignas(kUnit) unsigned char bytes[kBlockSize - kUnit];
};

// Memory that was never taken, or was all given back.
class Fresh {
 public:
  void* take(std::size_t size) {
    if (_left < size) nextBlock();
    _left -= size;
    return std::exchange(_bytes, _bytes + size);
  }
  void beginAnew() {
    _current = nullptr;
    _left = 0;
  }

 private:
  void nextBlock() {
    Block*& next = _current != nullptr ? _current->next : _first;
    if (next == nullptr) next = new Block;
    _current = next;
    _bytes = next->bytes;
    _left = sizeof next->bytes;
  }

  // Blocks go back to nobody: a list that is itself static may outlive whatever else is.
  Block* _first = nullptr;
  Block* _current = nullptr;  // none yet, or what _bytes are in
  unsigned char* _bytes = nullptr;
  std::size_t _left = 0;
};

std::array<Unused*, kLargest / kUnit + 1> unused;  // by size in units
Fresh small, large;
std::size_t piecesOut = 0;

bool isPooled(std::size_t size) {
  return size > 0 && size <= kLargest;
}

std::size_t unitsOf(std::size_t size) {
  return (size + kUnit - 1) / kUnit;
}

}  // namespace

void* Pool::take(std::size_t size) {
  if (!isPooled(size)) return ::operator new(size);
  const std::size_t units = unitsOf(size);
  void* const piece = unused[units] != nullptr
                          ? std::exchange(unused[units], unused[units]->next)
                          : (size <= kLargestSmall ? small : large).take(units * kUnit);
  ++piecesOut;
  return piece;
}

void Pool::give(void* piece, std::size_t size) noexcept {
  if (piece == nullptr) return;
  if (!isPooled(size)) return ::operator delete(piece);
  if (--piecesOut > 0) {
    Unused*& first = unused[unitsOf(size)];
    first = ::new (piece) Unused{first};
    return;
  }
  unused = {};
  small.beginAnew();
  large.beginAnew();
}

}  // namespace cairnset
