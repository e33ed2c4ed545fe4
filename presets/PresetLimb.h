// A limb that represents one folder of the library.
#pragma once

#include <cstdint>

#include "host/HostTypes.h"
#include "presets/TreeLimb.h"

#pragma GCC visibility push(default)
namespace cairnset {

class PresetLimb : public TreeLimb {
 public:
  const char* getTreeItemTypeName() const override { return "Folder"; }
  /// The folder's node number, so that searches by ID find the limb of a folder.
  unsigned long getTreeItemID() const override { return _folder_id; }
  void printTreeItemInfo(std::ostream& os, unsigned long flags) const override;

  /// Makes this the limb of `folder`, named as the last part of the folder's path, of any length.
  /// Does not check that it is a folder: if that failed once, its presets would be in no limb.
  void setSpec(const FSRef& folder);
  const FSRef& folder() const { return _folder; }
  bool isSameFolder(const FSRef& other) const;
  /// The first direct child limb for `folder`, or null.
  PresetLimb* findLimb(const FSRef& folder) const;

 private:
  std::uint32_t _folder_id = 0;
  FSRef _folder;
};

}  // namespace cairnset
#pragma GCC visibility pop
