#include <memory>
#include <random>
#include <sstream>
#include <vector>

#include <gtest/gtest.h>

#include "presets/TreeLeaf.h"
#include "presets/TreeLimb.h"

namespace cairnset {
namespace {

TreeLimb* newLimb(TreeLimb& parent, const char* name, unsigned long id = 0) {
  auto* limb = new TreeLimb;
  limb->setTreeItemName(name);
  limb->setTreeItemID(id);
  parent.addLimb(limb);
  return limb;
}

class ItemTree : public testing::Test {
 protected:
  TreeLeaf* newLeaf(TreeLimb& parent, const char* name, unsigned long id = 0) {
    TreeLeaf* leaf = _leaves.emplace_back(std::make_unique<TreeLeaf>()).get();
    leaf->setTreeItemName(name);
    leaf->setTreeItemID(id);
    parent.addLeaf(leaf);
    return leaf;
  }

  // The leaves in the order of the plain definition.
  static void collect(const TreeLimb& limb, std::vector<TreeLeaf*>& out) {
    for (TreeLeaf* leaf : limb.leaves().entriesAs<TreeLeaf>())
      out.push_back(leaf);
    for (const TreeLimb* child : limb.limbs().entriesAs<TreeLimb>())
      collect(*child, out);
  }

  static std::string walk(TreeLimb& limb) {
    std::string names;
    limb.setLeafCursor(0);
    while (const TreeLeaf* leaf = limb.recursiveLeafIterNext())
      names += leaf->getTreeItemName();
    return names;
  }

  TreeLimb root;

 private:
  std::vector<std::unique_ptr<TreeLeaf>> _leaves;
};

TEST_F(ItemTree, ListsAndWalksAFoldersLeavesBeforeItsLimbs) {
  TreeItem::_current_index = 100;
  TreeLimb* child = newLimb(root, "x", 7);
  newLeaf(root, "A", 1);
  newLeaf(root, "B", 2);
  newLeaf(*newLimb(*child, "y"), "D");
  newLeaf(*child, "C");
  EXPECT_EQ(walk(root), "ABCD");
  EXPECT_EQ(root.recursiveLeafIterNext(), nullptr) << "once past the end it stays there";
  EXPECT_EQ(root.countItemsRecursively(), 6);
  EXPECT_EQ(root.countLimbsRecursively(), 2);
  EXPECT_EQ(root.countLeafsRecursively(), 4);
  std::ostringstream os;
  child->listRecursively(os, 0, 1);
  EXPECT_EQ(os.str(),
            "\tTreeLimb [index: 101; id: 7] x\n\t\tFile [index: 106; id: 0] C\n"
            "\t\tTreeLimb [index: 104; id: 0] y\n\t\t\tFile [index: 105; id: 0] D\n");
}

TEST_F(ItemTree, SearchesAnswerTheFirstMatchOfTheirOrder) {
  root.setTreeItemName("r");
  TreeLimb* a = newLimb(root, "a", 5);
  TreeLimb* deep = newLimb(*a, "same", 9);
  TreeLimb* shallow = newLimb(root, "same", 9);
  TreeLeaf* deepLeaf = newLeaf(*deep, "same", 9);
  TreeLeaf* leaf = newLeaf(*shallow, "same", 9);
  newLimb(root, nullptr);
  // Limbs: each with all its own before the next. Items: children before grandchildren.
  EXPECT_EQ(root.findLimbWithNameRecursively("same"), deep);
  EXPECT_EQ(root.findItemWithNameRecursively("same"), shallow);
  EXPECT_EQ(root.findLeafWithNameRecursively("same"), deepLeaf);
  EXPECT_EQ(root.findLimbWithIDRecursively(9), deep);
  EXPECT_EQ(root.findItemWithIDRecursively(9), shallow);
  EXPECT_EQ(root.findLeafWithIDRecursively(9), deepLeaf);
  EXPECT_EQ(root.findLeafWithIndexRecursively(leaf->getTreeItemIndex()), leaf);
  EXPECT_EQ(root.findItemWithIndexRecursively(a->getTreeItemIndex()), a);
  EXPECT_EQ(root.findLimbWithNameRecursively("r"), &root);
  EXPECT_EQ(root.findLeafWithNameRecursively("r"), nullptr);
  EXPECT_EQ(root.findItemWithNameRecursively(nullptr), nullptr);
  EXPECT_EQ(root.findLimbWithNameRecursively(""), nullptr) << "no name matches no name";
}

TEST_F(ItemTree, RemovingLeavesItemAndParentAsTheyWere) {
  TreeLeaf* a = newLeaf(root, "a");
  TreeLeaf* b = newLeaf(root, "b");
  TreeLimb* limb = newLimb(root, "l");
  TreeLeaf stranger;
  root.removeItem(&stranger);
  root.removeItem(nullptr);
  EXPECT_TRUE(root.getItem(1) == b && root.getItem(2) == limb && root.getItem(3) == nullptr);
  TreeLimb::removeItemFromParent(a);
  EXPECT_EQ(a->parent(), &root);
  EXPECT_TRUE(root.getItem(0) == b && root.getItem(1) == limb);
}

TEST_F(ItemTree, TheWalkFollowsItsCursorThroughRandomChanges) {
  std::mt19937 random(1);
  std::vector<TreeLimb*> limbs{&root};
  for (int step = 0; step < 5000; ++step) {
    TreeLimb& limb = *limbs[random() % limbs.size()];
    switch (random() % 16) {
      case 0:
        limbs.push_back(newLimb(limb, "l"));
        break;
      case 1:
      case 2:
        newLeaf(limb, "x");
        break;
      case 3:
        limb.removeItem(limb.leaves().count() > 0 ? limb.getItem(0) : nullptr);
        break;
      case 4:
        root.setLeafCursor(static_cast<std::uint32_t>(random() % 40));
        break;
      case 5:
        if (random() % 8 != 0) break;
        limb.deleteItemsRecursively();
        limbs = {&root};
        for (std::size_t i = 0; i < limbs.size(); ++i) {
          for (TreeLimb* child : limbs[i]->limbs().entriesAs<TreeLimb>())
            limbs.push_back(child);
        }
        break;
      default: {
        std::vector<TreeLeaf*> expected;
        collect(root, expected);
        const std::size_t cursor = root.leafCursor();
        ASSERT_EQ(root.recursiveLeafIterNext(),
                  cursor < expected.size() ? expected[cursor] : nullptr);
        ASSERT_EQ(root.leafCursor(), cursor + 1);
      }
    }
  }
}

TEST_F(ItemTree, IsAsDeepAsFoldersCanBe) {
  constexpr int kDepth = 200'000;
  TreeLimb* limb = &root;
  for (int i = 0; i < kDepth; ++i)
    limb = newLimb(*limb, "");
  TreeLeaf* leaf = newLeaf(*limb, "end");
  EXPECT_EQ(root.countItemsRecursively(), kDepth + 1);
  EXPECT_EQ(root.findItemWithNameRecursively("end"), leaf);
  EXPECT_EQ(walk(root), "end");
  root.deleteItemsRecursively();
  EXPECT_EQ(root.countItemsRecursively(), 0);
}

}  // namespace
}  // namespace cairnset
