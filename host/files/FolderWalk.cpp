#include "host/files/FolderWalk.h"

#include <utility>

namespace cairnset {

FolderWalk::FolderWalk(const FSRef& top) : _listed(enter(top)) {}

OSErr FolderWalk::enter(const FSRef& folder) {
  FolderListing listing = listFolder(folder);
  if (listing.result == noErr) _levels.push_back({std::move(listing.items), 0});
  return listing.result;
}

std::optional<FolderWalk::Item> FolderWalk::next() {
  while (!_levels.empty()) {
    Level& level = _levels.back();
    if (level.next == level.items.size()) {
      _levels.pop_back();
      continue;
    }
    const auto [ref, isFolder] = level.items[level.next++];
    const std::size_t depth = _levels.size() - 1;
    return Item{ref, isFolder, depth, isFolder ? enter(ref) : noErr};
  }
  return std::nullopt;
}

}  // namespace cairnset
