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

// The leaf after the one that was answered last, for as long as nothing has changed.
class TreeLimb::LeafWalk {
 public:
  LeafWalk(TreeLimb& top, std::uint32_t cursor)
      : _limbs(top), _tree_changes(TreeLimb::_tree_changes), _cursor(cursor) {
    std::uint32_t toPass = cursor;
    while (nextLimb()) {
      const auto here = static_cast<std::uint32_t>(_limb->leaves().count());
      if (toPass < here) break;
      toPass -= here;
      _next = _end;
    }
    for (; toPass > 0 && _next != _end; --toPass)
      ++_next;
  }

  bool standsAt(std::uint32_t cursor) const {
    return _cursor == cursor && _tree_changes == TreeLimb::_tree_changes;
  }

  TreeLeaf* step() {
    ++_cursor;
    while (_limb != nullptr && _next == _end)
      nextLimb();
    if (_limb == nullptr) return nullptr;
    TreeLeaf* leaf = *_next;
    ++_next;
    return leaf;
  }

 private:
  bool nextLimb() {
    _limb = _limbs.next();
    if (_limb == nullptr) return false;
    const auto leaves = _limb->leaves().entriesAs<TreeLeaf>();
    _next = leaves.begin();
    _end = leaves.end();
    return true;
  }

  LimbWalk _limbs;
  TreeLimb* _limb = nullptr;
  PtrEntries<TreeLeaf>::Iterator _next, _end;
  unsigned long _tree_changes;
  std::uint32_t _cursor;
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
  if (item->type() == kTreeLeaf) {
    _leaves.removePtr(static_cast<TreeLeaf*>(item));
    ++_tree_changes;
  } else {
    _limbs.removePtr(static_cast<TreeLimb*>(item));
    ++_tree_changes;
  }
}

void TreeLimb::removeItemFromParent(TreeItem* item) {
  if (item != nullptr && item->_parent != nullptr) item->_parent->removeItem(item);
}

TreeItem* TreeLimb::getItem(long i) const {
  if (i < _leaves.count()) return static_cast<TreeLeaf*>(_leaves.getPtrCheckRange(i));
  return static_cast<TreeLimb*>(_limbs.getPtrCheckRange(i - _leaves.count()));
}

void TreeLimb::deleteItemsRecursively() {
  // Emptying the limbs level by level keeps their destructors from recursing.
  std::vector<TreeLimb*> below;
  for (TreeLimb* limb : _limbs.entriesAs<TreeLimb>())
    below.push_back(limb);
  for (std::size_t i = 0; i < below.size(); ++i) {
    for (TreeLimb* limb : below[i]->_limbs.entriesAs<TreeLimb>())
      below.push_back(limb);
    below[i]->_limbs.removeAll();
    below[i]->_leaves.removeAll();
  }
  for (TreeLimb* limb : below)
    delete limb;
  _limbs.removeAll();
  _leaves.removeAll();
  ++_tree_changes;
}

long TreeLimb::countItemsRecursively() const {
  return countLeafsRecursively() + countLimbsRecursively();
}

long TreeLimb::countLimbsRecursively() const {
  long count = 0;
  LimbWalk walk(*this);
  while (const TreeLimb* limb = walk.next())
    count += limb->_limbs.count();
  return count;
}

long TreeLimb::countLeafsRecursively() const {
  long count = 0;
  LimbWalk walk(*this);
  while (const TreeLimb* limb = walk.next())
    count += limb->_leaves.count();
  return count;
}

// --- Searches ------------------------------------------------------------------------------------

namespace {

auto hasIndex(unsigned long index) {
  return [index](const TreeItem& item) { return item.getTreeItemIndex() == index; };
}

auto hasID(unsigned long id) {
  return [id](const TreeItem& item) { return item.getTreeItemID() == id; };
}

auto hasName(const char* name) {
  return [name](const TreeItem& item) {
    const char* own = item.getTreeItemName();
    return name != nullptr && own != nullptr && std::strcmp(own, name) == 0;
  };
}

}  // namespace

template <typename Matches>
TreeLimb* TreeLimb::findLimb(Matches matches) {
  LimbWalk walk(*this);
  while (TreeLimb* limb = walk.next()) {
    if (matches(*limb)) return limb;
  }
  return nullptr;
}

template <typename Matches>
TreeItem* TreeLimb::findItem(Matches matches) {
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

template <typename Matches>
TreeLeaf* TreeLimb::findLeaf(Matches matches) {
  LimbWalk walk(*this);
  while (TreeLimb* limb = walk.next()) {
    for (TreeLeaf* leaf : limb->_leaves.entriesAs<TreeLeaf>()) {
      if (matches(*leaf)) return leaf;
    }
  }
  return nullptr;
}

TreeLimb* TreeLimb::findLimbWithIndexRecursively(unsigned long i) {
  return findLimb(hasIndex(i));
}
TreeLimb* TreeLimb::findLimbWithIDRecursively(unsigned long id) {
  return findLimb(hasID(id));
}
TreeLimb* TreeLimb::findLimbWithNameRecursively(const char* n) {
  return findLimb(hasName(n));
}
TreeItem* TreeLimb::findItemWithIndexRecursively(unsigned long i) {
  return findItem(hasIndex(i));
}
TreeItem* TreeLimb::findItemWithIDRecursively(unsigned long id) {
  return findItem(hasID(id));
}
TreeItem* TreeLimb::findItemWithNameRecursively(const char* n) {
  return findItem(hasName(n));
}
TreeLeaf* TreeLimb::findLeafWithIndexRecursively(unsigned long i) {
  return findLeaf(hasIndex(i));
}
TreeLeaf* TreeLimb::findLeafWithIDRecursively(unsigned long id) {
  return findLeaf(hasID(id));
}
TreeLeaf* TreeLimb::findLeafWithNameRecursively(const char* n) {
  return findLeaf(hasName(n));
}

// --- Walks ---------------------------------------------------------------------------------------

namespace {

// Whether a limb's class may override listRecursively. Calling it for these two, which do not,
// would need a stack as deep as the tree.
bool mayListItself(const TreeLimb& limb) {
  return typeid(limb) != typeid(TreeLimb) && typeid(limb) != typeid(PresetLimb);
}

}  // namespace

TreeLeaf* TreeLimb::recursiveLeafIterNext() {
  if (_leaf_walk == nullptr || !_leaf_walk->standsAt(_leaf_cursor)) {
    _leaf_walk = std::make_unique<LeafWalk>(*this, _leaf_cursor);
  }
  ++_leaf_cursor;
  return _leaf_walk->step();
}

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
