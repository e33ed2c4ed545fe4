// The order in which a preset list has always stood.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace cairnset {

/// What an exchange sort makes of `keys`: for each position i from the front and each later
/// position j, the two are exchanged where the key at j is less than the key at i. Answers for
/// each place of the result which of the inputs ends there.
///
/// Distinct keys end in ascending order, as from any sort. Equal keys do not keep their order, and
/// users know the order that came of it; so the outcome is computed instead of the exchanges made:
/// in n log n steps, and where keys repeat in at most n times the square root of n.
[[nodiscard]] std::vector<std::size_t> exchangeOrder(const std::vector<std::int64_t>& keys);

}  // namespace cairnset
