#include "host/files/FolderPaths.h"

#include <algorithm>
#include <utility>

#include "host/files/Location.h"

namespace cairnset {

const FolderPath& FolderPaths::of(std::uint32_t folder) {
  if (folder != _last_folder) {
    _last = find(folder);
    _last_folder = _last.result == noErr ? folder : 0;
  }
  return _last;
}

OSErr FolderPaths::hold(std::uint32_t folder) {
  _last_folder = _held_node = 0;
  _last = {};
  _bases.clear();
  _identities.clear();
  _held.reset();
  if (folder == 0) return noErr;
  const std::string path = _nodes.path(folder);
  Opened opened = openFolder(_calls, AT_FDCWD, path, O_RDONLY);
  if (opened.result == permErr) opened = openFolder(_calls, AT_FDCWD, path);
  if (opened.result != noErr) return opened.result;
  _held = std::make_shared<OpenFolder>(_calls, opened.descriptor);
  _held_node = folder;
  return noErr;
}

FolderPath FolderPaths::find(std::uint32_t folder) {
  const std::uint32_t top = _nodes.depth(_held_node);
  if (_held != nullptr && _nodes.depth(folder) >= top) {
    const std::uint32_t levels = _nodes.depth(folder) - top;
    const std::uint32_t base = _nodes.ancestor(folder, levels % kStep);
    FolderPath place;
    if (base == _held_node) {
      place.base = _held->descriptor();
    } else if (levels >= kStep) {
      place = openBase(base);
    }
    if (place.result != noErr) return place;
    if (place.base != AT_FDCWD) {
      place.path = _nodes.path(folder, base);
      return place;
    }
  }
  return {noErr, AT_FDCWD, _nodes.path(folder), {}};
}

FolderPaths::Folder FolderPaths::knownBase(std::uint32_t node) {
  if (node == _held_node) return _held;
  const auto found = std::find_if(_bases.begin(), _bases.end(),
                                  [node](const Base& base) { return base.node == node; });
  if (found == _bases.end()) return nullptr;
  std::rotate(found, found + 1, _bases.end());
  return _bases.back().folder;
}

FolderPath FolderPaths::use(std::uint32_t node, Folder folder) {
  if (_bases.size() == kMostOpen) _bases.erase(_bases.begin());
  _bases.push_back({node, folder});
  const int descriptor = folder->descriptor();
  return {noErr, descriptor, {}, std::move(folder)};
}

// By way of a base below: on the way up out of deep folders, each from the top would cost more and
// more. Somebody may have moved the one below, so this must be the folder that was opened before.
FolderPaths::Folder FolderPaths::openBaseAbove(std::uint32_t node) {
  const auto known = _identities.find(node);
  if (known == _identities.end()) return nullptr;
  for (const Base& base : _bases) {
    if (_nodes.ancestor(base.node, kStep) != node) continue;
    std::string path = "..";
    for (std::uint32_t level = 1; level < kStep; ++level)
      path += "/..";
    const Opened opened = openFolder(_calls, base.folder->descriptor(), path);
    if (opened.result != noErr) return nullptr;
    auto folder = std::make_shared<OpenFolder>(_calls, opened.descriptor);
    struct stat info;
    const bool isSame = retried([&] { return _calls.fstat(opened.descriptor, &info); }) == 0 &&
                        info.st_dev == known->second.device && info.st_ino == known->second.inode;
    return isSame ? folder : nullptr;
  }
  return nullptr;
}

// Without a base where the node is not below the held folder.
FolderPath FolderPaths::openBase(std::uint32_t node) {
  if (Folder known = knownBase(node); known != nullptr) {
    const int descriptor = known->descriptor();
    return {noErr, descriptor, {}, std::move(known)};
  }
  if (Folder above = openBaseAbove(node); above != nullptr) return use(node, std::move(above));
  // From the nearest base above that is open, one step after the other.
  std::vector<std::uint32_t> steps{node};
  Folder folder;
  while (folder == nullptr) {
    const std::uint32_t above = _nodes.ancestor(steps.back(), kStep);
    folder = knownBase(above);
    if (folder == nullptr && _nodes.depth(above) <= _nodes.depth(_held_node)) return {};
    steps.push_back(above);
  }
  for (std::size_t i = steps.size() - 1; i-- > 0;) {
    const Opened opened =
        openFolder(_calls, folder->descriptor(), _nodes.path(steps[i], steps[i + 1]));
    if (opened.result != noErr) return {opened.result, AT_FDCWD, {}, {}};
    folder = std::make_shared<OpenFolder>(_calls, opened.descriptor);
    struct stat info;
    if (retried([&] { return _calls.fstat(opened.descriptor, &info); }) == 0)
      _identities[steps[i]] = {info.st_dev, info.st_ino};
  }
  return use(node, std::move(folder));
}

}  // namespace cairnset
