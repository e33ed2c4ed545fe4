#include "presets/PresetIndexes.h"

#include <bit>

#include "host/text/PascalStrings.h"
#include "presets/LimbWalk.h"
#include "presets/Preset.h"
#include "presets/PresetList.h"

namespace cairnset {

void PresetIndexes::bringUpToDate() {
  if (_revision == _list.revision()) return;
  _by_name = {};
  _by_file = {};
  _by_id = {};
  _revision = _list.revision();
}

// The slot that the name is in, or the empty one where it would be put.
PresetIndexes::NameSlot& PresetIndexes::slotOf(const char* name, std::uint32_t hash) {
  std::vector<NameSlot>& slots = _by_name.slots;
  std::size_t slot = hash & (slots.size() - 1);
  while (slots[slot].preset != nullptr &&
         (slots[slot].hash != hash || fncmp(slots[slot].name, name) != 0)) {
    slot = (slot + 1) & (slots.size() - 1);
  }
  return slots[slot];
}

bool PresetIndexes::isRoomForNames() const {
  return static_cast<std::size_t>(_list.count()) * 5 < _by_name.slots.size() * 4;
}

// What stands first in the list is put in first, and stays.
void PresetIndexes::putByName(Preset* preset) {
  if (preset == nullptr) return;
  const char* own = preset->getTreeItemName();
  const char* name = own != nullptr ? own : "";
  const std::uint32_t hash = fncmpHash(name);
  NameSlot& slot = slotOf(name, hash);
  if (slot.preset == nullptr) slot = {hash, preset, name};
}

void PresetIndexes::putByFile(Preset* preset) {
  std::vector<Preset*>& index = _by_file.presets;
  const std::size_t node = preset->fileRef().node;
  if (node >= index.size()) index.resize(node + 1, nullptr);
  if (index[node] == nullptr) index[node] = preset;
}

Preset* PresetIndexes::presetNamed(const char* name) {
  bringUpToDate();
  if (!_by_name.isMade) {
    _by_name.isMade = true;
    _by_name.slots.resize(std::bit_ceil(static_cast<std::size_t>(_list.count()) * 2 + 1));
    for (Preset* preset : _list.presets())
      putByName(preset);
  }
  return slotOf(name, fncmpHash(name)).preset;
}

Preset* PresetIndexes::presetOf(const FSRef& file) {
  bringUpToDate();
  if (!_by_file.isMade) {
    _by_file.isMade = true;
    for (Preset* preset : _list.presets()) {
      _by_file.endsAtNull = preset == nullptr;
      if (preset == nullptr) break;
      putByFile(preset);
    }
  }
  const bool isKnown = file.node != 0 && file.node < _by_file.presets.size();
  return isKnown ? _by_file.presets[file.node] : nullptr;
}

TreeLimb* PresetIndexes::limbWithID(unsigned long id) {
  bringUpToDate();
  if (!_by_id.isMade) {
    _by_id.isMade = true;
    LimbWalk walk(_list);
    while (TreeLimb* limb = walk.next())
      _by_id.limbs.try_emplace(limb->getTreeItemID(), limb);
  }
  const auto found = _by_id.limbs.find(id);
  return found != _by_id.limbs.end() ? found->second : nullptr;
}

void PresetIndexes::add(Preset* preset) {
  if (_by_name.isMade) isRoomForNames() ? putByName(preset) : void(_by_name = {});
  if (_by_file.isMade && !_by_file.endsAtNull) putByFile(preset);
  _revision = _list.revision();
}

void PresetIndexes::add(TreeLimb* limb) {
  // Of two limbs with one ID the place in the tree decides.
  if (_by_id.isMade && !_by_id.limbs.try_emplace(limb->getTreeItemID(), limb).second) _by_id = {};
  _revision = _list.revision();
}

}  // namespace cairnset
