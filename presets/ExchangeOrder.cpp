#include "presets/ExchangeOrder.h"

#include <algorithm>
#include <list>
#include <numeric>

namespace cairnset {

namespace {

// Why this gives the same order. Consider the elements with one key v; "smaller" means with a
// smaller key, and a v leads if no smaller element is before it. Each pass brings the least
// remaining element to the front, so the v's come after as many passes as there are smaller
// elements. In a pass, the first leading v moves to the place of the first smaller element, which
// moves to the place of the first one smaller than itself, and so on. So
//   - each pass removes one smaller element, if there is any, from before a given v. A v with b
//     smaller elements before it leads from pass b on, and joins as the last of the leading v's;
//   - each pass makes the first of the leading v's their last.
// In the end all v's lead, and their order is the result.

// For each element, how many before it are smaller. `rank` counts from 0.
std::vector<std::size_t> smallerBefore(const std::vector<std::size_t>& rank) {
  std::vector<std::size_t> tree(rank.size() + 1, 0);  // Fenwick: how often each rank came so far
  std::vector<std::size_t> result(rank.size());
  for (std::size_t i = 0; i < rank.size(); ++i) {
    std::size_t count = 0;
    for (std::size_t r = rank[i]; r > 0; r -= r & (~r + 1))
      count += tree[r];
    result[i] = count;
    for (std::size_t r = rank[i] + 1; r < tree.size(); r += r & (~r + 1))
      ++tree[r];
  }
  return result;
}

// Puts the equal elements `group` (ascending) into their order after `passes` passes. Each joins
// the leading ones in the pass that `joins` has for it.
void rotateGroup(std::vector<std::size_t>::iterator group, std::size_t size, std::size_t passes,
                 const std::vector<std::size_t>& joins) {
  std::list<std::size_t> leading;
  auto first = leading.end();  // the ring's first element
  std::size_t pass = 0;
  const auto rotateUntil = [&](std::size_t end) {
    if (leading.size() > 1 && end > pass) {
      for (std::size_t steps = (end - pass) % leading.size(); steps > 0; --steps) {
        if (++first == leading.end()) first = leading.begin();
      }
    }
    pass = std::max(pass, end);
  };
  for (std::size_t i = 0; i < size; ++i) {
    rotateUntil(std::min(joins[group[static_cast<std::ptrdiff_t>(i)]], passes));
    // Inserting before the first of a ring appends to it.
    const auto joined = leading.insert(first, group[static_cast<std::ptrdiff_t>(i)]);
    if (leading.size() == 1) first = joined;
  }
  rotateUntil(passes);
  for (std::size_t i = 0; i < size; ++i) {
    *group++ = *first;
    if (++first == leading.end()) first = leading.begin();
  }
}

}  // namespace

std::vector<std::size_t> exchangeOrder(const std::vector<std::int64_t>& keys) {
  std::vector<std::size_t> order(keys.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  if (std::is_sorted(keys.begin(), keys.end())) return order;  // nothing is ever exchanged
  std::stable_sort(order.begin(), order.end(),
                   [&keys](std::size_t a, std::size_t b) { return keys[a] < keys[b]; });
  std::vector<std::size_t> rank(keys.size());
  bool repeats = false;
  for (std::size_t i = 0; i < order.size(); ++i) {
    const bool equal = i > 0 && keys[order[i]] == keys[order[i - 1]];
    repeats = repeats || equal;
    rank[order[i]] = equal ? rank[order[i - 1]] : i;
  }
  if (!repeats) return order;
  const std::vector<std::size_t> joins = smallerBefore(rank);
  for (std::size_t start = 0, end = 0; start < order.size(); start = end) {
    while (end < order.size() && keys[order[end]] == keys[order[start]])
      ++end;
    if (end - start > 1 && start > 0) {
      rotateGroup(order.begin() + static_cast<std::ptrdiff_t>(start), end - start, start, joins);
    }
  }
  return order;
}

}  // namespace cairnset
