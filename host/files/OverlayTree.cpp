#include "host/files/OverlayTree.h"

#include <algorithm>
#include <cerrno>

namespace cairnset {

namespace {

// Takes the first name off a path.
std::string_view takeName(std::string_view& path) {
  path.remove_prefix(std::min(path.find_first_not_of('/'), path.size()));
  const std::string_view name = path.substr(0, path.find('/'));
  path.remove_prefix(name.size());
  path.remove_prefix(std::min(path.find_first_not_of('/'), path.size()));
  return name;
}

}  // namespace

void OverlayItem::touch(bool bytesToo) {
  struct timespec now;
  ::clock_gettime(CLOCK_REALTIME, &now);
#if defined(__APPLE__)
  info.st_ctimespec = now;
  if (bytesToo) info.st_mtimespec = now;
#else
  info.st_ctim = now;
  if (bytesToo) info.st_mtim = now;
#endif
}

std::string OverlayItem::realPath() const {
  if (!isInPlace) return real;
  // From the innermost folder outwards; there may be thousands.
  std::string reversed;
  const OverlayItem* folder = this;
  for (; folder->isInPlace && folder->parent != nullptr; folder = folder->parent)
    reversed.append(folder->name.rbegin(), folder->name.rend()) += '/';
  std::string path = folder->isInPlace ? "" : folder->real;
  return path.append(reversed.rbegin(), reversed.rend());
}

std::string OverlayItem::path() const {
  std::string reversed;
  for (const OverlayItem* folder = this; folder->parent != nullptr; folder = folder->parent)
    reversed.append(folder->name.rbegin(), folder->name.rend()) += '/';
  return {reversed.rbegin(), reversed.rend()};
}

OverlayTree::OverlayTree() {
  add(S_IFDIR).isInPlace = true;
}

OverlayItem& OverlayTree::add(mode_t kind) {
  OverlayItem& item = _items.emplace_back();
  item.info.st_mode = kind;
  item.info.st_ino = --_last_number;  // from the far end, which no volume reaches
  item.touch(true);
  return item;
}

OverlayItem& OverlayTree::folderAt(OverlayItem& start, std::string_view path) {
  OverlayItem* folder = &start;
  while (!path.empty()) {
    const std::string_view name = takeName(path);
    if (name.empty() || name == ".") continue;
    if (name == "..") {
      if (folder->parent != nullptr) folder = folder->parent;
      continue;
    }
    auto known = folder->entries.find(name);
    if (known == folder->entries.end()) {
      OverlayItem& child = add(S_IFDIR);
      child.parent = folder;
      child.name = name;
      child.isInPlace = true;
      known = folder->entries.emplace(child.name, &child).first;
    }
    folder = known->second;
  }
  return *folder;
}

OverlayTree::Found OverlayTree::find(OverlayItem& start, std::string_view path) {
  Found found;
  OverlayItem* folder = &start;
  std::string_view rest = path;
  while (!rest.empty()) {
    std::string_view after = rest;
    const std::string_view name = takeName(after);
    if (name.empty() || name == "." || name == "..") {
      if (name == "..") found.isStraight &= folder->isInPlace;
      if (name == ".." && folder->parent != nullptr) folder = folder->parent;
      rest = after;
      continue;
    }
    const auto known = folder->entries.find(name);
    if (known == folder->entries.end()) break;
    OverlayItem* const item = known->second;
    found.isStraight &= item != nullptr && item->isInPlace;
    if (item == nullptr) {
      found.error = ENOENT;
    } else if (item->isFolder()) {
      folder = item;
      rest = after;
      continue;
    } else if (after.empty()) {
      found.item = item;
    } else {
      found.error = item->isLink() ? ELOOP : ENOTDIR;
    }
    return found;
  }
  while (!rest.empty() && rest.front() == '/')
    rest.remove_prefix(1);
  if (rest.empty()) {
    found.item = folder;
  } else if (!folder->isReal()) {
    found.error = ENOENT;
  } else {
    found.above = folder;
    found.rest = rest;
  }
  return found;
}

void OverlayTree::setName(OverlayItem& folder, const std::string& name, OverlayItem& item) {
  folder.entries[name] = &item;
  ++item.info.st_nlink;
  item.touch(false);
  item.real = item.realPath();
  item.isInPlace = false;
  item.parent = &folder;
  item.name = name;
}

void OverlayTree::removeName(OverlayItem& folder, const std::string& name, OverlayItem& item) {
  folder.entries[name] = nullptr;
  --item.info.st_nlink;
  item.touch(false);
}

}  // namespace cairnset
