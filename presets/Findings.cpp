#include "presets/Findings.h"

#include <algorithm>

namespace cairnset {

void Findings::add(Finding finding) {
  if (++_counts[{finding.sort, finding.kind}] <= kMostKept) _kept.push_back(std::move(finding));
}

void Findings::forgetLoadOf(std::uint32_t kind) {
  const auto isForgotten = [kind](FindingSort sort, std::uint32_t of) {
    return sort < FindingSort::kReplaced && of == kind;
  };
  std::erase_if(_kept, [&](const Finding& f) { return isForgotten(f.sort, f.kind); });
  std::erase_if(_counts, [&](const auto& counted) {
    return isForgotten(counted.first.first, counted.first.second);
  });
}

void Findings::clear() {
  _kept.clear();
  _counts.clear();
}

std::size_t Findings::count(FindingSort sort) const {
  std::size_t all = 0;
  for (const auto& [of, number] : _counts)
    all += of.first == sort ? number : 0;
  return all;
}

std::size_t Findings::count(FindingSort sort, std::uint32_t kind) const {
  const auto found = _counts.find({sort, kind});
  return found != _counts.end() ? found->second : 0;
}

std::size_t Findings::passedOver(std::uint32_t kind) const {
  std::size_t all = 0;
  for (const auto& [of, number] : _counts)
    all += isPassedOver(of.first) && of.second == kind ? number : 0;
  return all;
}

const Finding* Findings::firstPassedOver(std::uint32_t kind) const {
  const auto found = std::find_if(_kept.begin(), _kept.end(), [kind](const Finding& f) {
    return isPassedOver(f.sort) && f.kind == kind;
  });
  return found != _kept.end() ? &*found : nullptr;
}

}  // namespace cairnset
