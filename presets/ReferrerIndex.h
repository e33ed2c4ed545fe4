// Finding the presets that name a given one.
#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

#include "presets/PresetList.h"
#include "presets/PresetReferences.h"

namespace cairnset {

/// The presets of one list by the exact name in one of their references. Valid while these
/// references and the list's tree are unchanged.
class ReferrerIndex {
 public:
  /// `list` holds presets of the reference's `from` kind, and may be null.
  ReferrerIndex(PresetList* list, const PresetReference& reference) : _reference(reference) {
    forEachPreset(list, [this](Preset& preset) {
      _keys.push_back(firstKey(_reference.name(preset)) + _presets.size());
      _presets.push_back(&preset);
    });
    std::sort(_keys.begin(), _keys.end());
  }

  /// Calls `each(Preset&)` for each preset that refers to `name`, in the leaf walk's order.
  template <typename Each>
  void forEachReferrerOf(std::string_view name, Each each) const {
    const std::uint64_t first = firstKey(name);
    for (auto key = std::lower_bound(_keys.begin(), _keys.end(), first);
         key != _keys.end() && *key >> 32 == first >> 32; ++key) {
      Preset& preset = *_presets[static_cast<std::uint32_t>(*key)];
      if (_reference.name(preset) == name) each(preset);
    }
  }

 private:
  static std::uint64_t firstKey(std::string_view name) {
    return std::uint64_t{static_cast<std::uint32_t>(std::hash<std::string_view>()(name))} << 32;
  }

  const PresetReference& _reference;
  std::vector<Preset*> _presets;     // in the order of the walk
  std::vector<std::uint64_t> _keys;  // the name's hash, then the position in _presets; sorted
};

}  // namespace cairnset
