// Going through all presets of a list in the order of its tree.
#pragma once

#include "presets/Preset.h"
#include "presets/PresetList.h"

namespace cairnset {

/// Calls `each(Preset&)` for every preset in the list's tree, restarting its leaf walk; for a null
/// list, never.
template <typename Each>
void forEachPreset(PresetList* list, Each each) {
  if (list == nullptr) return;
  list->setLeafCursor(0);
  while (TreeLeaf* leaf = list->recursiveLeafIterNext())
    each(static_cast<Preset&>(*leaf));
}

}  // namespace cairnset
