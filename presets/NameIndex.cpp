#include "presets/NameIndex.h"

#include <utility>

#include "host/PascalStrings.h"
#include "presets/Preset.h"

namespace cairnset {

namespace {

const char* nameOf(const Preset& preset) {
  const char* name = preset.getTreeItemName();
  return name != nullptr ? name : "";
}

}  // namespace

void NameIndex::clear() {
  _slots.clear();
  _count = 0;
}

// The slot that the name is in, or the empty one where it would be put.
std::size_t NameIndex::slotOf(const char* name, std::uint32_t hash) const {
  std::size_t slot = hash & (_slots.size() - 1);
  while (_slots[slot].preset != nullptr &&
         (_slots[slot].hash != hash || fncmp(_slots[slot].name, name) != 0)) {
    slot = (slot + 1) & (_slots.size() - 1);
  }
  return slot;
}

void NameIndex::reserve(std::size_t count) {
  std::size_t size = 16;
  while (size < count + count / 4)
    size *= 2;
  if (size <= _slots.size()) return;
  const std::vector<Slot> before = std::exchange(_slots, std::vector<Slot>(size));
  for (const Slot& moved : before) {
    if (moved.preset == nullptr) continue;
    std::size_t slot = moved.hash & (size - 1);
    while (_slots[slot].preset != nullptr)
      slot = (slot + 1) & (size - 1);
    _slots[slot] = moved;
  }
}

void NameIndex::add(Preset* preset) {
  reserve(_count + 1);
  const char* name = nameOf(*preset);
  const std::uint32_t hash = fncmpHash(name);
  Slot& slot = _slots[slotOf(name, hash)];
  if (slot.preset != nullptr) return;
  slot = {hash, preset, name};
  ++_count;
}

Preset* NameIndex::find(const char* name) const {
  return _slots.empty() ? nullptr : _slots[slotOf(name, fncmpHash(name))].preset;
}

}  // namespace cairnset
