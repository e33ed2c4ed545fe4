// An inner node of a preset tree: a folder with its sub-folders and files.
#pragma once

#include <cstdint>
#include <functional>
#include <iosfwd>
#include <memory>

#include "presets/TreeItem.h"
#include "storage/PtrManager.h"

#pragma GCC visibility push(default)
namespace cairnset {

class TreeLeaf;

/// A node with two ordered lists of children. It owns its limbs but not its leaves. No walk of the
/// tree recurses, so that it may be as deep as folders can be nested.
class TreeLimb : public TreeItem {
 public:
  TreeLimb();
  ~TreeLimb() override;
  TreeLimb(const TreeLimb&) = delete;

  const char* getTreeItemTypeName() const override { return "TreeLimb"; }
  /// Lists this limb and all below it, a line each, indented by `depth` tabs and one more a level:
  /// the limb, its leaves, then each child limb in the same way, or as its class overrides it.
  virtual void listRecursively(std::ostream& os, unsigned long flags, int depth) const;

  // --- Children ---

  void addLimb(TreeLimb* limb);
  void addLeaf(TreeLeaf* leaf);
  /// Adds a limb or a leaf by its type; ignores null.
  void addItem(TreeItem* item);
  /// Removes the item from this limb's direct children, if it is one. It is not deleted, and its
  /// parent() is unchanged.
  void removeItem(TreeItem* item);
  static void removeItemFromParent(TreeItem* item);
  /// The direct child at a position, leaves before limbs; null past the end.
  TreeItem* getItem(long i) const;
  const PtrManager& limbs() const { return _limbs; }
  const PtrManager& leaves() const { return _leaves; }
  /// Deletes all limbs below, and removes all leaves without deleting them.
  void deleteItemsRecursively();

  /// The items below this limb, at any depth.
  long countItemsRecursively() const { return countLeafsRecursively() + countLimbsRecursively(); }
  long countLimbsRecursively() const { return countBelow(&TreeLimb::_limbs); }
  long countLeafsRecursively() const { return countBelow(&TreeLimb::_leaves); }

  // --- Searches: the first match, or null. An item without a name matches no name. ---

  /// Pre-order: this limb, then each child limb with its whole subtree.
  TreeLimb* findLimbWithIndexRecursively(unsigned long index) { return findLimb(hasIndex(index)); }
  TreeLimb* findLimbWithIDRecursively(unsigned long id) { return findLimb(hasID(id)); }
  TreeLimb* findLimbWithNameRecursively(const char* name) { return findLimb(hasName(name)); }
  /// This limb, then its direct children (leaves before limbs), then the same in each child limb:
  /// all children of a limb come before any grandchild.
  TreeItem* findItemWithIndexRecursively(unsigned long index) { return findItem(hasIndex(index)); }
  TreeItem* findItemWithIDRecursively(unsigned long id) { return findItem(hasID(id)); }
  TreeItem* findItemWithNameRecursively(const char* name) { return findItem(hasName(name)); }
  /// The leaves of this limb, then those of each child limb; never a limb.
  TreeLeaf* findLeafWithIndexRecursively(unsigned long index) { return findLeaf(hasIndex(index)); }
  TreeLeaf* findLeafWithIDRecursively(unsigned long id) { return findLeaf(hasID(id)); }
  TreeLeaf* findLeafWithNameRecursively(const char* name) { return findLeaf(hasName(name)); }

  // --- The leaf walk ---

  /// The position in the walk: the number of leaves passed. Set it to 0 to start one.
  void setLeafCursor(std::uint32_t cursor) { _leaf_cursor = cursor; }
  std::uint32_t leafCursor() const { return _leaf_cursor; }
  /// The next of all leaves below, each folder's own before those of its sub-folders; null at the
  /// end. The cursor is only a count: adding or removing a leaf during the walk shifts what comes
  /// after it. While no tree changes, a step does not walk from the top again.
  TreeLeaf* recursiveLeafIterNext();

  void debugRecursively(int /*depth*/) const {}

  /// Grows with every limb or leaf added to or removed from any tree.
  static unsigned long treeChanges() { return _tree_changes; }

 private:
  struct LeafWalk;
  using Matches = std::function<bool(const TreeItem&)>;

  long countBelow(PtrManager TreeLimb::*children) const;
  static Matches hasIndex(unsigned long index);
  static Matches hasID(unsigned long id);
  static Matches hasName(const char* name);
  TreeLimb* findLimb(const Matches& matches);
  TreeItem* findItem(const Matches& matches);
  TreeLeaf* findLeaf(const Matches& matches);

  static unsigned long _tree_changes;

  PtrManager _limbs;   // of TreeLimb*, owned
  PtrManager _leaves;  // of TreeLeaf*
  std::uint32_t _leaf_cursor = 0;
  std::unique_ptr<LeafWalk> _leaf_walk;  // the cursor's position; may be out of date
};

}  // namespace cairnset
#pragma GCC visibility pop
