// Finding the presets that name a given one.
#pragma once

#include <string>
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
  const std::vector<Preset*>& referrersOf(const std::string& name) const;
  /// The same, which the index forgets: they are about to name something else.
  std::vector<Preset*> takeReferrersOf(const std::string& name);

 private:
  std::unordered_map<std::string, std::vector<Preset*>> _by_name;
};

}  // namespace cairnset
