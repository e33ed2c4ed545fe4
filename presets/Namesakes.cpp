#include "presets/Namesakes.h"

#include <algorithm>
#include <cstdint>

#include "host/files/FileSystemHelpers.h"
#include "host/files/FolderWalk.h"
#include "host/text/PascalStrings.h"
#include "presets/ExchangeOrder.h"
#include "presets/PresetList.h"

namespace cairnset {

Namesakes::Namesakes(const PresetList& list) {
  for (const Preset* preset : list.presets()) {
    const Preset* first = preset != nullptr ? list.findPreset(preset->getTreeItemName()) : nullptr;
    if (first == nullptr || first == preset) continue;
    const auto [known, isNew] = _group_of.try_emplace(first, _groups.size());
    if (isNew) _groups.push_back({first});
    _groups[known->second].push_back(preset);
    _group_of[preset] = known->second;
  }
  if (_groups.empty()) return;
  for (const Preset* preset : list.presets()) {
    if (preset != nullptr)
      _loaded.push_back({preset->fileRef(), preset, preset->getTreeItemName()});
  }
  std::sort(_loaded.begin(), _loaded.end(), [](const Loaded& a, const Loaded& b) {
    return a.preset->getTreeItemIndex() < b.preset->getTreeItemIndex();
  });
  // This load has made a "Default" last, and -z may have given other names.
  if (!std::is_sorted(_loaded.begin(), _loaded.end(), isLoadedBefore))
    std::sort(_loaded.begin(), _loaded.end(), isLoadedBefore);
}

const Preset* Namesakes::rename(const Preset& preset, const std::string& newName) {
  if (_groups.empty()) return nullptr;
  if (const auto member = _group_of.find(&preset); member != _group_of.end()) {
    std::erase(_groups[member->second], &preset);
    _group_of.erase(member);
  }
  const auto old = std::find_if(_loaded.begin(), _loaded.end(),
                                [&](const Loaded& loaded) { return loaded.preset == &preset; });
  if (old == _loaded.end()) return nullptr;
  const FSRef folder{static_cast<std::uint32_t>(preset.getParentFolderID())};
  const Loaded renamed{placeOfName(folder, newName.c_str()), &preset, newName};
  _loaded.erase(old);
  _loaded.insert(std::lower_bound(_loaded.begin(), _loaded.end(), renamed, isLoadedBefore),
                 renamed);
  return firstMisled();
}

bool Namesakes::isLoadedBefore(const Loaded& a, const Loaded& b) {
  return isWalkedBefore(a.place, b.place);
}

const Preset* Namesakes::firstMisled() const {
  std::vector<std::int64_t> keys;
  bool isDefaultFound = false;  // the first one will be ROM with index 0
  for (const auto& [place, preset, name] : _loaded) {
    const bool isDefault =
        !isDefaultFound && fncmp(name.c_str(), Preset::_default_preset_name) == 0;
    isDefaultFound = isDefaultFound || isDefault;
    const std::int32_t index = preset->isROM() ? preset->index() : preset->fileIndex();
    keys.push_back(isDefault ? orderKey(true, 0) : orderKey(preset->isROM(), index));
  }
  std::vector<bool> isDecided(_groups.size());
  for (const std::size_t i : exchangeOrder(keys)) {
    const Preset* preset = _loaded[i].preset;
    const auto member = _group_of.find(preset);
    if (member == _group_of.end() || isDecided[member->second]) continue;
    if (preset != _groups[member->second].front()) return preset;
    isDecided[member->second] = true;
  }
  return nullptr;
}

}  // namespace cairnset
