// Finding the presets that name a given one.
#pragma once

#include <string_view>
#include <unordered_map>
#include <vector>

#include "presets/PresetReferences.h"

namespace cairnset {

class PresetList;

/// The presets of one list by what they name in one of their references, exactly. It is right for
/// as long as these references and the list's tree stay as they are.
class ReferrerIndex {
 public:
  /// `list` holds presets of the reference's `from` kind, and may be null.
  ReferrerIndex(PresetList* list, const PresetReference& reference);

  /// Those that name `name`, in the order of the list's leaf walk.
  const std::vector<Preset*>& referrersOf(std::string_view name) const;
  /// The same, which the index forgets: they are about to name something else.
  std::vector<Preset*> takeReferrersOf(std::string_view name);

 private:
  // The names are the references themselves, which is why these must stay as they are.
  std::unordered_map<std::string_view, std::vector<Preset*>> _by_name;
};

}  // namespace cairnset
