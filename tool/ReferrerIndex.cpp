#include "tool/ReferrerIndex.h"

#include <algorithm>

#include "tool/LeafIteration.h"

namespace cairnset {

ReferrerIndex::ReferrerIndex(PresetList* list, const PresetReference& reference)
    : _reference(reference) {
  std::size_t place = 0;
  forEachPreset(list, [&](Preset& preset) {
    _by_name[_reference.name(preset)].push_back({place++, &preset});
  });
}

std::vector<Preset*> ReferrerIndex::referrersOf(const std::string& name) const {
  std::vector<Preset*> result;
  const auto found = _by_name.find(name);
  if (found == _by_name.end()) return result;
  for (const Referrer& referrer : found->second)
    result.push_back(referrer.preset);
  return result;
}

std::vector<Preset*> ReferrerIndex::relink(const std::string& from, const char* to) {
  std::vector<Preset*> result = referrersOf(from);
  if (result.empty()) return result;
  const std::vector<Referrer> moved = std::move(_by_name.extract(from).mapped());
  for (Preset* preset : result)
    _reference.setName(*preset, to);
  std::vector<Referrer>& now = _by_name[_reference.name(*result.front())];
  const auto middle = static_cast<std::ptrdiff_t>(now.size());
  now.insert(now.end(), moved.begin(), moved.end());
  std::inplace_merge(now.begin(), now.begin() + middle, now.end(),
                     [](const Referrer& a, const Referrer& b) { return a.place < b.place; });
  return result;
}

}  // namespace cairnset
