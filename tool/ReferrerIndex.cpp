#include "tool/ReferrerIndex.h"

#include "tool/LeafIteration.h"

namespace cairnset {

ReferrerIndex::ReferrerIndex(PresetList* list, const PresetReference& reference) {
  forEachPreset(list, [&](Preset& preset) { _by_name[reference.name(preset)].push_back(&preset); });
}

const std::vector<Preset*>& ReferrerIndex::referrersOf(const std::string& name) const {
  static const std::vector<Preset*> kNone;
  const auto found = _by_name.find(name);
  return found != _by_name.end() ? found->second : kNone;
}

std::vector<Preset*> ReferrerIndex::takeReferrersOf(const std::string& name) {
  const auto entry = _by_name.extract(name);
  return entry.empty() ? std::vector<Preset*>() : std::move(entry.mapped());
}

}  // namespace cairnset
