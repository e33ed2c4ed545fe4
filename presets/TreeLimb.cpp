#include "presets/TreeLimb.h"

#include <cstring>
#include <ostream>
#include <string>
#include <typeinfo>

#include "presets/LimbWalk.h"
#include "presets/PresetLimb.h"
#include "presets/TreeLeaf.h"

namespace cairnset {

unsigned long TreeLimb::_tree_changes = 0;

// The leaf cursor's position; valid while no tree has changed.
struct TreeLimb::LeafWalk {
  explicit LeafWalk(const TreeLimb& top) : limbs(top) {}

  TreeLeaf* step() {
    ++cursor;
    while (next == end) {
      const TreeLimb* limb = limbs.next();
      if (limb == nullptr) return nullptr;
      const auto leaves = limb->leaves().entriesAs<TreeLeaf>();
      next = leaves.begin();
      end = leaves.end();
    }
    return *next++;
  }

  LimbWalk limbs;
  PtrEntries<TreeLeaf>::Iterator next, end;
  unsigned long treeChanges = _tree_changes;
  std::uint32_t cursor = 0;
};

TreeLimb::TreeLimb() : TreeItem(kTreeLimb) {}

TreeLimb::~TreeLimb() {
  deleteItemsRecursively();
}

// --- Children ------------------------------------------------------------------------------------

void TreeLimb::addLimb(TreeLimb* limb) {
  _limbs.addPtr(limb);
  limb->_parent = this;
  ++_tree_changes;
}

void TreeLimb::addLeaf(TreeLeaf* leaf) {
  _leaves.addPtr(leaf);
  static_cast<TreeItem*>(leaf)->_parent = this;
  ++_tree_changes;
}

void TreeLimb::addItem(TreeItem* item) {
  if (item == nullptr) return;
  if (item->type() == kTreeLimb) addLimb(static_cast<TreeLimb*>(item));
  if (item->type() == kTreeLeaf) addLeaf(static_cast<TreeLeaf*>(item));
}

void TreeLimb::removeItem(TreeItem* item) {
  if (item == nullptr) return;
  if (item->type() == kTreeLeaf) _leaves.removePtr(static_cast<TreeLeaf*>(item));
  if (item->type() == kTreeLimb) _limbs.removePtr(static_cast<TreeLimb*>(item));
  ++_tree_changes;
}

void TreeLimb::removeItemFromParent(TreeItem* item) {
  if (item != nullptr && item->_parent != nullptr) item->_parent->removeItem(item);
}

TreeItem* TreeLimb::getItem(long i) const {
  if (i < _leaves.count()) return static_cast<TreeLeaf*>(_leaves.getPtrCheckRange(i));
  return static_cast<TreeLimb*>(_limbs.getPtrCheckRange(i - _leaves.count()));
}

void TreeLimb::deleteItemsRecursively() {
  // Without recursion, which a deep tree would take too far, and without memory of its own:
  // destructors call this.
  TreeLimb* limb = this;
  for (;;) {
    if (limb->_limbs.count() > 0) {
      auto* const below = static_cast<TreeLimb*>(limb->_limbs.getPtr(0));
      below->_parent = limb;
      limb = below;
      continue;
    }
    limb->_leaves.removeAll();
    if (limb == this) break;
    TreeLimb* const above = limb->_parent;
    above->_limbs.removePtr(limb);
    delete limb;
    limb = above;
  }
  ++_tree_changes;
}

long TreeLimb::countBelow(PtrManager TreeLimb::*children) const {
  long count = 0;
  LimbWalk walk(*this);
  while (const TreeLimb* limb = walk.next())
    count += (limb->*children).count();
  return count;
}

// --- Searches ------------------------------------------------------------------------------------

TreeLimb::Matches TreeLimb::hasIndex(unsigned long index) {
  return [index](const TreeItem& item) { return item.getTreeItemIndex() == index; };
}

TreeLimb::Matches TreeLimb::hasID(unsigned long id) {
  return [id](const TreeItem& item) { return item.getTreeItemID() == id; };
}

TreeLimb::Matches TreeLimb::hasName(const char* name) {
  return [name](const TreeItem& item) {
    const char* own = item.getTreeItemName();
    return name != nullptr && own != nullptr && std::strcmp(own, name) == 0;
  };
}

TreeLimb* TreeLimb::findLimb(const Matches& matches) {
  LimbWalk walk(*this);
  while (TreeLimb* limb = walk.next()) {
    if (matches(*limb)) return limb;
  }
  return nullptr;
}

TreeItem* TreeLimb::findItem(const Matches& matches) {
  if (matches(*this)) return this;
  LimbWalk walk(*this);
  while (TreeLimb* limb = walk.next()) {
    for (TreeLeaf* leaf : limb->_leaves.entriesAs<TreeLeaf>()) {
      if (matches(*leaf)) return leaf;
    }
    for (TreeLimb* child : limb->_limbs.entriesAs<TreeLimb>()) {
      if (matches(*child)) return child;
    }
  }
  return nullptr;
}

TreeLeaf* TreeLimb::findLeaf(const Matches& matches) {
  LimbWalk walk(*this);
  while (const TreeLimb* limb = walk.next()) {
    for (TreeLeaf* leaf : limb->_leaves.entriesAs<TreeLeaf>()) {
      if (matches(*leaf)) return leaf;
    }
  }
  return nullptr;
}

// --- Walks ---------------------------------------------------------------------------------------

namespace {

// Whether a limb's class may override listRecursively. Calling it for these two, which do not,
// would recurse to the depth of the tree.
bool mayListItself(const TreeLimb& limb) {
  return typeid(limb) != typeid(TreeLimb) && typeid(limb) != typeid(PresetLimb);
}

}  // namespace

TreeLeaf* TreeLimb::recursiveLeafIterNext() {
  if (_leaf_walk == nullptr || _leaf_walk->cursor != _leaf_cursor ||
      _leaf_walk->treeChanges != _tree_changes) {
    _leaf_walk = std::make_unique<LeafWalk>(*this);
    while (_leaf_walk->cursor < _leaf_cursor && _leaf_walk->step() != nullptr) {
    }
    _leaf_walk->cursor = _leaf_cursor;
  }
  ++_leaf_cursor;
  return _leaf_walk->step();
}

// NOLINTNEXTLINE(misc-no-recursion)
void TreeLimb::listRecursively(std::ostream& os, unsigned long flags, int depth) const {
  LimbWalk walk(*this);
  std::string tabs;
  while (const TreeLimb* limb = walk.next()) {
    const int limbDepth = depth + walk.depth();
    if (limb != this && mayListItself(*limb)) {
      limb->listRecursively(os, flags, limbDepth);
      walk.skipChildren();
      continue;
    }
    tabs.assign(static_cast<std::size_t>(limbDepth), '\t');
    os << tabs;
    limb->printTreeItemInfo(os, flags);
    os << '\n';
    for (const TreeLeaf* leaf : limb->_leaves.entriesAs<TreeLeaf>()) {
      os << tabs << '\t';
      leaf->printTreeItemInfo(os, flags);
      os << '\n';
    }
  }
}

}  // namespace cairnset
