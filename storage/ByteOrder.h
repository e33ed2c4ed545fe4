// The one place that depends on this machine's byte order.
#pragma once

#include <bit>

#pragma GCC visibility push(default)
namespace cairnset {

/// The swap flag for binary reads and writes of a VirtualFile that holds a preset. Preset files are
/// big-endian on every host, while a VirtualFile stores a value as it is in memory.
inline constexpr bool kSwapToFileOrder = std::endian::native == std::endian::little;

}  // namespace cairnset
#pragma GCC visibility pop
