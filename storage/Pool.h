// Memory for what a library has by the hundred thousand: presets, their names, the links of lists.
#pragma once

#include <cstddef>

namespace cairnset {

/// Small pieces of memory for one thread, cut from large blocks in the order in which they are
/// asked for; those of a name's or a link's size from blocks of their own, so that to look names up
/// touches little memory. What is given back serves the next piece of its size; once all is given
/// back, cutting begins anew, so that a library that is loaded again lies in order again. No block
/// ever goes back to the system. Pieces of more than 512 bytes come from the general heap.
///
/// With sanitizers all pieces do: they watch only what they have handed out themselves.
class Pool {
 public:
  /// At least `size` bytes, aligned for any pointer or 64-bit number.
  static void* take(std::size_t size);
  /// Takes back what take() gave for the same `size`; null is nothing.
  static void give(void* piece, std::size_t size) noexcept;
};

}  // namespace cairnset
