// Finding the presets that name a given one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
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

  /// Calls `each(Preset&)` for those that name `name`, in the order of the list's leaf walk.
  template <typename Each>
  void forEachReferrerOf(std::string_view name, Each each) const {
    const std::uint32_t hash = hashOf(name);
    for (std::uint32_t n = _chains[hash & (_chains.size() - 1)]; n != 0; n = _entries[n].next) {
      if (names(_entries[n], hash, name)) each(*_entries[n].preset);
    }
  }
  /// Those that name `name`, which the index forgets: they are about to name something else.
  std::vector<Preset*> takeReferrersOf(std::string_view name);

 private:
  struct Entry {
    Preset* preset;
    std::uint32_t hash;
    std::uint32_t next;  // of the same chain; 0 at its end
  };

  static std::uint32_t hashOf(std::string_view name);
  bool names(const Entry& entry, std::uint32_t hash, std::string_view name) const;

  const PresetReference& _reference;
  std::vector<Entry> _entries;         // in the order of the walk; the first is none
  std::vector<std::uint32_t> _chains;  // by hash, a power of two of them: where each begins
};

}  // namespace cairnset
