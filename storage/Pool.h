// Memory for what a library has by the hundred thousand: presets, their names, the links of lists.
#pragma once

#include <cstddef>

namespace cairnset {

/// Small pieces of memory for one thread. They are cut from large blocks in the order in which they
/// are asked for, so that a preset, its name and its links lie side by side. What is given back
/// serves the next piece of its size; no block ever goes back to the system. Larger pieces
/// come from the general heap.
///
/// With AddressSanitizer all pieces do: it watches only what it has handed out itself.
class Pool {
 public:
  /// At least `size` bytes, aligned for any pointer or 64-bit number.
  static void* take(std::size_t size);
  /// Takes back what take() gave for the same `size`; null is nothing.
  static void give(void* piece, std::size_t size) noexcept;
};

}  // namespace cairnset
