#include "tool/ReferrerIndex.h"

#include <bit>
#include <functional>

#include "tool/LeafIteration.h"

namespace cairnset {

std::uint32_t ReferrerIndex::hashOf(std::string_view name) {
  return static_cast<std::uint32_t>(std::hash<std::string_view>()(name));
}

bool ReferrerIndex::names(const Entry& entry, std::uint32_t hash, std::string_view name) const {
  return entry.hash == hash && _reference.name(*entry.preset) == name;
}

ReferrerIndex::ReferrerIndex(PresetList* list, const PresetReference& reference)
    : _reference(reference), _entries(1) {
  if (list != nullptr) _entries.reserve(static_cast<std::size_t>(list->count()) + 1);
  forEachPreset(list, [this](Preset& preset) {
    _entries.push_back({&preset, hashOf(_reference.name(preset)), 0});
  });
  _chains.resize(std::bit_ceil(_entries.size()));
  // Each goes before those that are there: from the last on, that keeps the order.
  for (std::size_t n = _entries.size() - 1; n > 0; --n) {
    std::uint32_t& chain = _chains[_entries[n].hash & (_chains.size() - 1)];
    _entries[n].next = chain;
    chain = static_cast<std::uint32_t>(n);
  }
}

std::vector<Preset*> ReferrerIndex::takeReferrersOf(std::string_view name) {
  std::vector<Preset*> taken;
  const std::uint32_t hash = hashOf(name);
  for (std::uint32_t* at = &_chains[hash & (_chains.size() - 1)]; *at != 0;) {
    Entry& entry = _entries[*at];
    if (names(entry, hash, name)) {
      taken.push_back(entry.preset);
      *at = entry.next;
    } else {
      at = &entry.next;
    }
  }
  return taken;
}

}  // namespace cairnset
