#include "presets/PresetIndexes.h"

#include "host/text/PascalStrings.h"
#include "presets/LimbWalk.h"
#include "presets/Preset.h"
#include "presets/PresetList.h"

namespace cairnset {

std::size_t PresetIndexes::HashOfName::operator()(const char* name) const {
  return fncmpHash(name);
}

bool PresetIndexes::SameName::operator()(const char* a, const char* b) const {
  return fncmp(a, b) == 0;
}

void PresetIndexes::bringUpToDate() {
  if (_revision == _list.revision()) return;
  _by_name = {};
  _by_file = {};
  _by_id = {};
  _revision = _list.revision();
}

// What stands first in the list is put in first, and stays.
void PresetIndexes::put(ByName& index, Preset* preset) const {
  const char* name = preset->getTreeItemName();
  index.try_emplace(name != nullptr ? name : "", preset);
}

void PresetIndexes::put(std::vector<Preset*>& index, Preset* preset) const {
  const std::size_t node = preset->fileRef().node;
  if (node >= index.size()) index.resize(node + 1, nullptr);
  if (index[node] == nullptr) index[node] = preset;
}

Preset* PresetIndexes::presetNamed(const char* name) {
  bringUpToDate();
  if (!_by_name.isMade) {
    _by_name.isMade = true;
    _by_name.presets.reserve(static_cast<std::size_t>(_list.count()));
    for (Preset* preset : _list.presets()) {
      if (preset != nullptr) put(_by_name.presets, preset);
    }
  }
  const auto found = _by_name.presets.find(name);
  return found != _by_name.presets.end() ? found->second : nullptr;
}

Preset* PresetIndexes::presetOf(const FSRef& file) {
  bringUpToDate();
  if (!_by_file.isMade) {
    _by_file.isMade = true;
    for (Preset* preset : _list.presets()) {
      _by_file.endsAtNull = preset == nullptr;
      if (preset == nullptr) break;
      put(_by_file.presets, preset);
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
  if (_by_name.isMade) put(_by_name.presets, preset);
  if (_by_file.isMade && !_by_file.endsAtNull) put(_by_file.presets, preset);
  _revision = _list.revision();
}

void PresetIndexes::add(TreeLimb* limb) {
  // Of two limbs with one ID the place in the tree decides.
  if (_by_id.isMade && !_by_id.limbs.try_emplace(limb->getTreeItemID(), limb).second) _by_id = {};
  _revision = _list.revision();
}

}  // namespace cairnset
