#include "presets/TreeItem.h"

#include <cstring>
#include <ostream>

#include "host/terminal/ReportText.h"

namespace cairnset {

std::uint32_t TreeItem::_current_index = 0;
unsigned long TreeItem::_changes = 0;

TreeItem::~TreeItem() {
  freeName();
}

void TreeItem::setTreeItemID(unsigned long id) {
  _id = static_cast<std::uint32_t>(id);
  noteChange();
}

void TreeItem::setTreeItemName(const char* name) {
  takeTreeItemName(name);
  noteChange();
}

void TreeItem::takeTreeItemName(const char* name) {
  char* copy = nullptr;
  if (name != nullptr) {
    const std::size_t size = std::strlen(name) + 1;
    copy = static_cast<char*>(Pool::take(size));
    std::memcpy(copy, name, size);
  }
  freeName();
  _name = copy;
}

void TreeItem::freeName() {
  if (_name != nullptr) Pool::give(_name, std::strlen(_name) + 1);
}

void TreeItem::printTreeItemInfo(std::ostream& os, unsigned long /*flags*/) const {
  os << getTreeItemTypeName() << " [index: " << getTreeItemIndex() << "; id: " << getTreeItemID()
     << "] ";
  if (const char* name = getTreeItemName(); name != nullptr) writeHeldName(os, name);
}

}  // namespace cairnset
