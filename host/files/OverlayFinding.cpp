#include <algorithm>
#include <climits>
#include <cstring>

#include "host/files/OverlayCalls.h"

namespace cairnset {

namespace {

constexpr int kMostLinks = 40;  // on the way to an item, as on Linux

}  // namespace

std::pair<std::string, std::string> Overlay::Calls::split(std::string_view path) {
  const std::size_t slash = path.rfind('/');
  return {std::string(path.substr(0, slash)), std::string(path.substr(slash + 1))};
}

// Null for a descriptor of the system's, or one that is none.
OverlayItem* Overlay::Calls::startOf(int folder, const char* path) {
  if (*path == '/') return &_tree.root();
  if (folder == AT_FDCWD) {
    char text[PATH_MAX];
    return ::getcwd(text, sizeof text) != nullptr ? &_tree.folderAt(_tree.root(), text) : nullptr;
  }
  Open* const open = opened(folder);
  return open != nullptr ? itemOf(*open) : nullptr;
}

// Null for a file that is as on the disk.
OverlayItem* Overlay::Calls::itemOf(Open& open) {
  struct stat info;
  if (open.item == nullptr && real.fstat(open.real, &info) == 0 && S_ISDIR(info.st_mode))
    open.item = &_tree.folderAt(*open.start, open.path);
  return open.item;
}

OverlayTree::Found Overlay::Calls::find(int folder, const char* path) {
  Item* const start = startOf(folder, path);
  if (start == nullptr) return {folder < kFirstNumber ? 0 : opened(folder) ? ENOTDIR : EBADF};
  if (!start->isFolder()) return {ENOTDIR};
  if (*path == '\0') return {ENOENT};
  return _tree.find(*start, path);
}

// All calls but open follow links on the way.
OverlayTree::Found Overlay::Calls::findFollowing(int folder, const char* path) {
  const Found found = find(folder, path);
  if (found.error != ELOOP) return found;
  const Spot spot = spotFor(folder, path);
  if (spot.error != 0) return {spot.error};
  Found followed = _tree.find(*spot.folder, _followed = spot.name);
  followed.isStraight = false;
  return followed;
}

// Component by component, since a link on the disk can lead to what is only in memory.
// NOLINTNEXTLINE(readability-function-cognitive-complexity): one loop over the components
char* Overlay::Calls::realpath(const char* path, char* resolved) {
  if (*path == '\0') return fail(ENOENT), nullptr;
  char text[PATH_MAX];
  std::string done, rest = path;
  if (*path != '/') {
    if (::getcwd(text, sizeof text) == nullptr) return nullptr;
    if (std::strcmp(text, "/") != 0) done = text;
  }
  for (int links = 0; !rest.empty();) {
    rest.erase(0, std::min(rest.find_first_not_of('/'), rest.size()));
    const std::string name = rest.substr(0, rest.find('/'));
    rest.erase(0, name.size());
    if (name.empty() || name == ".") continue;
    if (name == "..") {
      done.resize(done.empty() ? 0 : done.rfind('/'));
      continue;
    }
    std::string place = done;
    place.append("/").append(name);
    struct stat info;
    if (lstat(AT_FDCWD, place.c_str(), &info) != 0) return nullptr;
    if (S_ISLNK(info.st_mode)) {
      if (++links > kMostLinks) return fail(ELOOP), nullptr;
      const ssize_t size = readlink(AT_FDCWD, place.c_str(), text, sizeof text);
      if (size < 0) return nullptr;
      rest.insert(0, text, static_cast<std::size_t>(size));
      if (rest.front() == '/') done.clear();
      continue;
    }
    if (!S_ISDIR(info.st_mode) && !rest.empty()) return fail(ENOTDIR), nullptr;
    done = place;
  }
  if (done.empty()) done = "/";
  if (done.size() >= PATH_MAX) return fail(ENAMETOOLONG), nullptr;
  resolved[done.copy(resolved, PATH_MAX - 1)] = '\0';
  return resolved;
}

// The folder above is resolved, links and all, as the system does for every call but open.
Overlay::Calls::Spot Overlay::Calls::spotFor(int folder, const char* path) {
  Spot spot;
  const std::size_t length = std::strlen(path);
  if (std::strchr(path, '/') == nullptr) {
    spot.folder = startOf(folder, path);
    spot.name = path;
    spot.real = realNumber(folder);
  } else {
    std::string whole(path, length);
    while (whole.size() > 1 && whole.back() == '/')
      whole.pop_back();
    Item* const start = startOf(folder, path);
    if (start == nullptr) return {EBADF};
    if (*path != '/') whole.insert(0, start->path() + "/");
    auto [above, name] = split(whole);
    char resolved[PATH_MAX] = "/";
    if (!above.empty()) {
      if (realpath(above.c_str(), resolved) == nullptr) return {errno};
    }
    spot.folder = &_tree.folderAt(_tree.root(), resolved);
    spot.name = name;
  }
  if (spot.folder == nullptr) return {EBADF};
  if (!spot.folder->isFolder()) return {ENOTDIR};
  if (spot.name.empty() || spot.name == "." || spot.name == "..") return {EEXIST};
  if (spot.name.size() > kLongestName) return {ENAMETOOLONG};
  return spot;
}

// What is at the spot, from now on with the overlay; null with errno where there is nothing.
OverlayItem* Overlay::Calls::itemAt(const Spot& spot) {
  const auto known = spot.folder->entries.find(spot.name);
  if (known != spot.folder->entries.end()) {
    if (known->second == nullptr) errno = ENOENT;
    return known->second;
  }
  if (!spot.folder->isReal()) return fail(ENOENT), nullptr;
  struct stat info;
  if (onDisk(spot, [&](int at, const char* path) { return real.lstat(at, path, &info); }) != 0) {
    return nullptr;
  }
  if (S_ISDIR(info.st_mode)) return &_tree.folderAt(*spot.folder, spot.name);
  Item* item = nullptr;
  const std::pair number(info.st_dev, info.st_ino);
  const auto linked = _linked.find(number);
  if (linked != _linked.end()) {
    item = linked->second;
  } else {
    item = &_tree.add(0);
    item->info = info;
    item->real = spot.folder->realPath() + "/" + spot.name;
    if (info.st_nlink > 1) _linked[number] = item;
  }
  item->parent = spot.folder;
  item->name = spot.name;
  spot.folder->entries[spot.name] = item;
  bind(spot, *item);
  return item;
}

// A file that is open already stays the same one, whatever becomes of its name.
void Overlay::Calls::bind(const Spot& spot, Item& item) {
  for (Open& open : _open) {
    if (open.item != nullptr || open.start == nullptr || !open.path.ends_with(spot.name)) continue;
    const auto [above, name] = split(open.path);
    const bool isBelow = open.path.find('/') != std::string::npos;
    if (name != spot.name) continue;
    const Found found = isBelow ? _tree.find(*open.start, above) : Found{0, open.start};
    if (found.item == spot.folder) open.item = &item;
  }
}

dev_t Overlay::Calls::deviceOf(const Item& folder) const {
  struct stat info = folder.info;
  if (folder.isReal()) {
    onDisk(folder.realPath(), [&](int at, const char* way) { return real.lstat(at, way, &info); });
  }
  return info.st_dev;
}

}  // namespace cairnset
