// A leaf of a preset tree: a file.
#pragma once

#include "presets/TreeItem.h"

#pragma GCC visibility push(default)
namespace cairnset {

class TreeLeaf : public TreeItem {
 public:
  TreeLeaf() : TreeItem(kTreeLeaf) {}
  /// For the memberwise copy of a preset.
  TreeLeaf(const TreeLeaf&) = default;

  const char* getTreeItemTypeName() const override { return "File"; }
};

}  // namespace cairnset
#pragma GCC visibility pop
