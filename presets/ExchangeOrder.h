// The sort order of preset lists, equal keys included.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace cairnset {

/// The result of an exchange sort of `keys`: for each position i from the front and each later
/// position j, the two are exchanged if the key at j is less than the key at i. Returns, for each
/// position of the result, the index of its input.
///
/// The sort is not stable, and users know the order that it gives equal keys. So that order is
/// computed without making the exchanges: in n log n steps, or at most n times the square root of n
/// if keys repeat.
[[nodiscard]] std::vector<std::size_t> exchangeOrder(const std::vector<std::int64_t>& keys);

/// The key of a preset in its list: ROM before RAM, each by ascending index.
[[nodiscard]] constexpr std::int64_t orderKey(bool isROM, std::int32_t index) {
  constexpr std::int64_t kBehindAllROM = std::int64_t{1} << 33;
  return index + (isROM ? 0 : kBehindAllROM);
}

}  // namespace cairnset
