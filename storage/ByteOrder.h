// The one place that asks which way round this machine keeps its numbers.
#pragma once

#include <bit>

namespace cairnset {

/// The swap flag for the binary reads and writes of a VirtualFile that holds a preset. Preset files
/// are big-endian on every host. VirtualFile converts nothing by itself: it stores a value as
/// it lies in memory, so its callers pass this, which is true exactly on a little-endian machine.
inline constexpr bool kSwapToFileOrder = std::endian::native == std::endian::little;

}  // namespace cairnset
