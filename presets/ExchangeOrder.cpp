#include "presets/ExchangeOrder.h"

#include <algorithm>
#include <list>
#include <numeric>

namespace cairnset {

namespace {

// How it comes out. Take the elements of one key v, and call smaller what has a smaller key. Pass
// by pass the sort brings the least element that is left to the front; there is one pass for each
// smaller element before the turn of v comes. In a pass, the first v is carried behind all elements
// up to the first smaller one; that one in turn is carried behind what follows it, and so on. So
//   - in each pass one smaller element that stood before a given v (if any did) comes to stand
//     behind it. A v with b smaller elements before it has none before it from pass b on, and
//     is then one of the leading v's, behind those that were there already;
//   - in each pass the first of the leading v's becomes their last.
// When the turn of v comes, all v's lead, and they are taken in the order in which they stand.

// For each element how many of those before it are smaller. `rank` counts from 0.
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

// The order of the equal elements `group` (ascending) after `passes` passes, joining the leading
// ones in the pass that `joins` tells of each.
void rotateGroup(std::vector<std::size_t>::iterator group, std::size_t size, std::size_t passes,
                 const std::vector<std::size_t>& joins) {
  std::list<std::size_t> leading;
  auto first = leading.end();  // the list is a ring that begins here
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
    // Behind the last is before the first, wherever the ring begins.
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
