#include "tool/ReferrerIndex.h"

#include "tool/LeafIteration.h"

namespace cairnset {

ReferrerIndex::ReferrerIndex(PresetList* list, const PresetReference& reference) {
  if (list != nullptr) _by_name.reserve(static_cast<std::size_t>(list->count()));
  forEachPreset(list, [&](Preset& preset) { _by_name[reference.name(preset)].push_back(&preset); });
}

const std::vector<Preset*>& ReferrerIndex::referrersOf(std::string_view name) const {
  static const std::vector<Preset*> kNone;
  const auto found = _by_name.find(name);
  return found != _by_name.end() ? found->second : kNone;
}

std::vector<Preset*> ReferrerIndex::takeReferrersOf(std::string_view name) {
  const auto entry = _by_name.extract(name);
  return entry.empty() ? std::vector<Preset*>() : std::move(entry.mapped());
}

}  // namespace cairnset
