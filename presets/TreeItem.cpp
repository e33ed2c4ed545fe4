#include "presets/TreeItem.h"

#include <cstring>
#include <new>
#include <ostream>

#include "host/terminal/ReportText.h"

namespace cairnset {

std::uint32_t TreeItem::_current_index = 0;
unsigned long TreeItem::_changes = 0;

TreeItem::SharedName::SharedName(const char* name) {
  if (name == nullptr) return;
  const std::size_t size = std::strlen(name) + 1;
  _owners = ::new (Arena::take(sizeof *_owners + size)) std::uint32_t{1};
  std::memcpy(_owners + 1, name, size);
}

void TreeItem::printTreeItemInfo(std::ostream& os, unsigned long /*flags*/) const {
  os << getTreeItemTypeName() << " [index: " << getTreeItemIndex() << "; id: " << getTreeItemID()
     << "] ";
  if (const char* name = getTreeItemName(); name != nullptr) writeHeldName(os, name);
}

}  // namespace cairnset
