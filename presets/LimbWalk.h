// Visiting a limb and all limbs below it, parents first.
#pragma once

#include <utility>
#include <vector>

#include "presets/TreeLimb.h"

namespace cairnset {

/// A pre-order walk: the limb itself, then each child limb with its whole subtree. Its stack is on
/// the heap, for trees too deep for recursion. The tree must not change during the walk.
class LimbWalk {
 public:
  /// A const limb gives access to non-const descendants, so next() returns limbs without const.
  explicit LimbWalk(const TreeLimb& top) : _top(const_cast<TreeLimb*>(&top)) {}

  /// The next limb, or null at the end.
  TreeLimb* next() {
    if (_top != nullptr) return enter(std::exchange(_top, nullptr));
    for (; !_levels.empty(); _levels.pop_back()) {
      if (_levels.back().next != _levels.back().end) return enter(*_levels.back().next++);
    }
    return nullptr;
  }

  /// Skips everything below the limb that next() returned last.
  void skipChildren() { _levels.back().next = _levels.back().end; }

  /// The depth of the limb that next() returned last; 0 for the top.
  int depth() const { return static_cast<int>(_levels.size()) - 1; }

 private:
  using Iterator = PtrEntries<TreeLimb>::Iterator;
  struct Level {
    Iterator next, end;
  };

  TreeLimb* enter(TreeLimb* limb) {
    const auto limbs = limb->limbs().entriesAs<TreeLimb>();
    _levels.push_back({limbs.begin(), limbs.end()});
    return limb;
  }

  TreeLimb* _top;
  // The child limbs still to visit, of the limb returned last and of each of its ancestors.
  std::vector<Level> _levels;
};

}  // namespace cairnset
