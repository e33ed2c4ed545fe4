// A limb that stands for one folder of the library.
#pragma once

#include <cstdint>

#include "host/HostTypes.h"
#include "presets/TreeLimb.h"

namespace cairnset {

class PresetLimb : public TreeLimb {
 public:
  const char* getTreeItemTypeName() const override { return "Folder"; }
  /// The folder's node number, so that searches by ID find the limb of a folder.
  unsigned long getTreeItemID() const override { return _folder_id; }
  void printTreeItemInfo(std::ostream& os, unsigned long flags) const override;

  /// Makes this the limb of `folder`. Its name becomes the last part of the folder's path, however
  /// long the path is.
  void setSpec(const FSRef& folder);
  const FSRef& folder() const { return _folder; }
  bool isSameFolder(const FSRef& other) const;
  /// The first of this limb's own child limbs that stands for `folder`; null where none does.
  PresetLimb* findLimb(const FSRef& folder) const;

 private:
  std::uint32_t _folder_id = 0;
  FSRef _folder;
};

}  // namespace cairnset
