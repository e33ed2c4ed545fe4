#include "presets/PresetLimb.h"

#include <cstring>
#include <ostream>
#include <utility>

#include "host/files/FileSystemHelpers.h"
#include "host/terminal/ReportText.h"
#include "host/text/PathStrings.h"

namespace cairnset {

void PresetLimb::printTreeItemInfo(std::ostream& os, unsigned long /*flags*/) const {
  os << getTreeItemTypeName() << ": ";
  if (const char* name = getTreeItemName(); name != nullptr) writeHeldName(os, name);
}

void PresetLimb::setSpec(const FSRef& folder) {
  char held[256];
  char name[256];
  getPlaceName(folder, held, sizeof held);
  // The name is taken as a path, so a "/" in it (":" on the volume) or a "\" cuts off what precedes
  // it. On purpose: reports have always shown such folders this way.
  extractFilename(held, name);
  if (const char* own = getTreeItemName(); own == nullptr || std::strcmp(own, name) != 0) {
    setTreeItemName(name);
  }
  _folder = folder;
  if (std::exchange(_folder_id, folder.node) != folder.node) noteChange();
}

bool PresetLimb::isSameFolder(const FSRef& other) const {
  return cairnset::isSameFolder(&_folder, &other);
}

PresetLimb* PresetLimb::findLimb(const FSRef& folder) const {
  for (TreeLimb* child : limbs().entriesAs<TreeLimb>()) {
    auto* limb = dynamic_cast<PresetLimb*>(child);
    if (limb != nullptr && limb->isSameFolder(folder)) return limb;
  }
  return nullptr;
}

}  // namespace cairnset
