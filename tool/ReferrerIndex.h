// Finding the presets that name a given one.
#pragma once

#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>

#include "presets/PresetReferences.h"

namespace cairnset {

class PresetList;

/// The presets of one list by what they name in one of their references, exactly. It is right for
/// as long as nothing but relink() changes these references and the list's tree stays as it is.
class ReferrerIndex {
 public:
  /// `list` holds presets of the reference's `from` kind, and may be null.
  ReferrerIndex(PresetList* list, const PresetReference& reference);

  /// Those that name `name`, in the order of the list's leaf walk.
  std::vector<Preset*> referrersOf(const std::string& name) const;
  /// Makes all that name `from` name `to` instead, in memory only, and answers them in the same
  /// order.
  std::vector<Preset*> relink(const std::string& from, const char* to);

 private:
  struct Referrer {
    std::size_t place;  // in the leaf walk
    Preset* preset;
  };

  const PresetReference& _reference;
  std::unordered_map<std::string, std::vector<Referrer>> _by_name;  // each by rising place
};

}  // namespace cairnset
