#include "presets/TreeItem.h"

#include <cstring>
#include <ostream>

#include "host/ReportText.h"

namespace cairnset {

std::uint32_t TreeItem::_current_index = 0;
unsigned long TreeItem::_name_changes = 0;
unsigned long TreeItem::_id_changes = 0;

TreeItem::~TreeItem() {
  if (_name_owned) delete[] _name;
}

void TreeItem::setTreeItemID(unsigned long id) {
  _id = static_cast<std::uint32_t>(id);
  noteIDChange();
}

void TreeItem::setTreeItemName(const char* name) {
  takeTreeItemName(name);
  ++_name_changes;
}

void TreeItem::takeTreeItemName(const char* name) {
  char* copy = nullptr;
  if (name != nullptr) {
    const std::size_t size = std::strlen(name) + 1;
    copy = new char[size];
    std::memcpy(copy, name, size);
  }
  if (_name_owned) delete[] _name;
  _name = copy;
  _name_owned = copy != nullptr;
}

void TreeItem::printTreeItemInfo(std::ostream& os, unsigned long /*flags*/) const {
  os << getTreeItemTypeName() << " [index: " << getTreeItemIndex() << "; id: " << getTreeItemID()
     << "] ";
  if (const char* name = getTreeItemName(); name != nullptr) writeHeldName(os, name);
}

}  // namespace cairnset
