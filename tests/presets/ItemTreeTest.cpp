#include <deque>

#include "presets/TreeLeaf.h"
#include "presets/TreeLimb.h"
#include "tests/Testing.h"

namespace cairnset {

struct ItemTree : testing::Test {
  template <typename Item>
  static Item* add(TreeLimb& parent, Item* item, const char* name, unsigned long id = 0) {
    item->setTreeItemName(name);
    item->setTreeItemID(id);
    parent.addItem(item);
    return item;
  }
  static TreeLimb* newLimb(TreeLimb& parent, const char* name, unsigned long id = 0) {
    return add(parent, new TreeLimb, name, id);
  }
  TreeLeaf* newLeaf(TreeLimb& parent, const char* name, unsigned long id = 0) {
    return add(parent, &_leaves.emplace_back(), name, id);
  }
  // The leaves in the order of the plain definition.
  static void collect(const TreeLimb& limb, std::vector<TreeLeaf*>& out) {
    for (TreeLeaf* leaf : limb.leaves().entriesAs<TreeLeaf>())
      out.push_back(leaf);
    for (const TreeLimb* child : limb.limbs().entriesAs<TreeLimb>())
      collect(*child, out);
  }

  TreeLimb root;
  std::deque<TreeLeaf> _leaves;
};

TEST_F(ItemTree, ListsAndSearchesInTheirOrder) {
  TreeItem::_current_index = 100;
  root.setTreeItemName("r");
  TreeLimb* limb = newLimb(root, "a", 5);
  TreeLimb* deep = newLimb(*limb, "same", 9);
  TreeLimb* shallow = newLimb(root, "same", 9);
  TreeLeaf* deepLeaf = newLeaf(*deep, "same", 9);
  TreeLeaf* leaf = newLeaf(*shallow, "same", 9);
  newLeaf(*limb, "B");
  newLimb(root, nullptr);
  TreeLeaf* loose = newLeaf(root, "C");
  EXPECT_EQ(root.countItemsRecursively(), 8);
  std::ostringstream os;
  limb->listRecursively(os, 0, 1);
  EXPECT_EQ(os.str(),
            "\tTreeLimb [index: 101; id: 5] a\n\t\tFile [index: 106; id: 0] B\n"
            "\t\tTreeLimb [index: 102; id: 9] same\n\t\t\tFile [index: 104; id: 9] same\n");
  // Limbs: each with all its own before the next. Items: children before grandchildren.
  EXPECT_EQ(root.findLimbWithNameRecursively("same"), deep);
  EXPECT_EQ(root.findItemWithIDRecursively(9), shallow);
  EXPECT_EQ(root.findLeafWithNameRecursively("same"), deepLeaf);
  EXPECT_EQ(root.findLeafWithIndexRecursively(leaf->getTreeItemIndex()), leaf);
  EXPECT_TRUE(root.findLimbWithNameRecursively("r") == &root &&
              !root.findItemWithNameRecursively(nullptr));
  EXPECT_EQ(root.findLimbWithNameRecursively(""), nullptr) << "no name matches no name";
  TreeLeaf stranger;
  root.removeItem(&stranger), root.removeItem(nullptr);
  EXPECT_TRUE(root.getItem(0) == loose && root.getItem(1) == limb && root.getItem(4) == nullptr);
  TreeLimb::removeItemFromParent(loose);
  EXPECT_TRUE(root.getItem(0) == limb && loose->parent() == &root);
}

TEST_F(ItemTree, AChildLimbMayListItselfInItsOwnWay) {
  struct Own : TreeLimb {
    void listRecursively(std::ostream& os, unsigned long flags, int depth) const override {
      os << depth << flags << getTreeItemName() << '\n';
    }
  };
  newLimb(*add(*newLimb(root, "a"), new Own, "own"), "not shown");
  std::ostringstream os;
  root.listRecursively(os, 7, 0);
  EXPECT_TRUE(os.str().ends_with(" a\n27own\n")) << os.str();
}

TEST_F(ItemTree, TheWalkFollowsItsCursorThroughRandomChanges) {
  std::mt19937 random(1);
  std::vector<TreeLimb*> limbs{&root};
  for (int step = 0; step < 5000; ++step) {
    TreeLimb& limb = *limbs[random() % limbs.size()];
    const auto change = random() % 16;
    if (change == 0) limbs.push_back(newLimb(limb, "l"));
    if (change == 1 || change == 2) newLeaf(limb, "x");
    if (change == 3) limb.removeItem(limb.leaves().count() > 0 ? limb.getItem(0) : nullptr);
    if (change == 4) root.setLeafCursor(static_cast<std::uint32_t>(random() % 40));
    if (change == 5 && step % 8 == 0) {
      root.deleteItemsRecursively();
      limbs = {&root};
    }
    std::vector<TreeLeaf*> all;
    collect(root, all);
    const std::size_t cursor = root.leafCursor();
    ASSERT_EQ(root.recursiveLeafIterNext(), cursor < all.size() ? all[cursor] : nullptr);
    ASSERT_EQ(root.leafCursor(), cursor + 1);
  }
}

TEST_F(ItemTree, IsAsDeepAsFoldersCanBe) {
  constexpr int kDepth = 200'000;
  TreeLimb* limb = &root;
  for (int i = 0; i < kDepth; ++i)
    limb = newLimb(*limb, "");
  TreeLeaf* leaf = newLeaf(*limb, "end");
  EXPECT_EQ(root.countItemsRecursively(), kDepth + 1);
  EXPECT_TRUE(root.findItemWithNameRecursively("end") == leaf &&
              root.recursiveLeafIterNext() == leaf);
  root.deleteItemsRecursively();
  EXPECT_EQ(root.countItemsRecursively(), 0);
}

}  // namespace cairnset
