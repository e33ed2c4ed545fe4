// Visiting a limb and all limbs below it, parents first.
#pragma once

#include <utility>
#include <vector>

#include "presets/TreeLimb.h"

namespace cairnset {

/// A pre-order walk: the limb itself, then each child limb with all its own before the next. Its
/// memory is on the heap, for trees that are too deep for recursion. The tree must not change
/// meanwhile.
class LimbWalk {
 public:
  /// Whoever may look at a limb may change what hangs below it, so the limbs come without const.
  explicit LimbWalk(const TreeLimb& top) : _top(const_cast<TreeLimb*>(&top)) {}

  /// The next limb, or null at the end.
  TreeLimb* next() {
    if (_top != nullptr) return enter(std::exchange(_top, nullptr));
    for (; !_levels.empty(); _levels.pop_back()) {
      if (_levels.back().next != _levels.back().end) return enter(*_levels.back().next++);
    }
    return nullptr;
  }

  /// Leaves out all that is below the limb that next() returned.
  void skipChildren() { _levels.back().next = _levels.back().end; }

  /// How far the limb that next() answered lies below the top.
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
  // The child limbs yet to come, of the limb that was returned last and of all above it.
  std::vector<Level> _levels;
};

}  // namespace cairnset
