#include "host/files/OverlayCalls.h"

namespace cairnset {

int Overlay::Calls::lstat(int folder, const char* path, struct stat* out) {
  const Lock lock(_mutex);
  const Found found = findFollowing(folder, path);
  if (found.error != 0) return fail(found.error);
  if (found.item != nullptr && (!found.item->isFolder() || !found.item->isReal())) {
    *out = found.item->info;
    return 0;
  }
  const int result = onDisk(found, folder, path,
                            [&](int at, const char* way) { return real.lstat(at, way, out); });
  if (result == 0 && !_linked.empty() && !S_ISDIR(out->st_mode)) {
    const auto known = _linked.find({out->st_dev, out->st_ino});
    if (known != _linked.end()) *out = known->second->info;
  }
  return result;
}

ssize_t Overlay::Calls::readlink(int folder, const char* path, char* buffer, std::size_t size) {
  const Lock lock(_mutex);
  const Found found = findFollowing(folder, path);
  if (found.error != 0) return fail(found.error);
  if (found.item == nullptr || (found.item->isLink() && found.item->isReal())) {
    return onDisk(found, folder, path,
                  [&](int at, const char* way) { return real.readlink(at, way, buffer, size); });
  }
  if (!found.item->isLink()) return fail(EINVAL);
  return static_cast<ssize_t>(found.item->bytes.copy(buffer, size));
}

int Overlay::Calls::birthTime(int folder, const char* path, struct timespec* out) {
  const Lock lock(_mutex);
  const Found found = findFollowing(folder, path);
  if (found.error != 0) return fail(found.error);
  if (found.item != nullptr && !found.item->isReal()) return fail(ENOTSUP);
  return onDisk(found, folder, path,
                [&](int at, const char* way) { return real.birthTime(at, way, out); });
}

int Overlay::Calls::create(int folder, const char* path, mode_t kind, std::string_view target,
                           int access) {
  const Spot spot = spotFor(folder, path);
  if (spot.error != 0) return fail(spot.error);
  if (itemAt(spot) != nullptr) return fail(EEXIST);
  if (errno != ENOENT) return -1;
  checkFolder(spot);
  Item& item = _tree.add(kind);
  item.info.st_dev = deviceOf(*spot.folder);
  item.info.st_uid = _user;
  item.info.st_gid = ::getegid();
  item.info.st_size = static_cast<off_t>(target.size());
  item.bytes = target;
  item.hasBytes = true;
  _tree.setName(*spot.folder, spot.name, item);
  if (!S_ISREG(kind)) return 0;
  Open open;
  open.item = &item;
  open.canRead = access != O_WRONLY;
  open.canWrite = access != O_RDONLY;
  return add(std::move(open));
}

int Overlay::Calls::rename(int oldFolder, const char* oldPath, int newFolder, const char* newPath,
                           bool replaces) {
  const Lock lock(_mutex);
  const Spot from = spotFor(oldFolder, oldPath), to = spotFor(newFolder, newPath);
  if (from.error != 0 || to.error != 0) return fail(from.error != 0 ? from.error : to.error);
  Item* const item = itemAt(from);
  if (item == nullptr) return -1;
  Item* const there = itemAt(to);
  if (there == nullptr && errno != ENOENT) return -1;
  if (there != nullptr && !replaces) return fail(EEXIST);
  if (there == item) return 0;  // also by two names
  for (const Item* above = to.folder; above != nullptr; above = above->parent) {
    if (above == item) return fail(EINVAL);
  }
  if (there != nullptr) {
    if (there->isFolder() != item->isFolder()) return fail(there->isFolder() ? EISDIR : ENOTDIR);
    if (there->isFolder() && !isEmpty(*there)) return fail(ENOTEMPTY);
  }
  if (!isOneVolume(*from.folder, *to.folder)) return fail(EXDEV);
  checkFolder(from);
  checkFolder(to);
  if (there != nullptr) _tree.removeName(*to.folder, to.name, *there);
  _tree.setName(*to.folder, to.name, *item);
  _tree.removeName(*from.folder, from.name, *item);
  return 0;
}

int Overlay::Calls::link(int oldFolder, const char* oldPath, int newFolder, const char* newPath) {
  const Lock lock(_mutex);
  const Spot from = spotFor(oldFolder, oldPath), to = spotFor(newFolder, newPath);
  if (from.error != 0 || to.error != 0) return fail(from.error != 0 ? from.error : to.error);
  Item* const item = itemAt(from);
  if (item == nullptr) return -1;
  if (itemAt(to) != nullptr) return fail(EEXIST);
  if (errno != ENOENT) return -1;
  if (!isOneVolume(*from.folder, *to.folder)) return fail(EXDEV);
  if (item->isFolder()) return fail(EPERM);
  checkFolder(to);
  _tree.setName(*to.folder, to.name, *item);
  return 0;
}

int Overlay::Calls::unlink(int folder, const char* path, int flags) {
  const Lock lock(_mutex);
  const Spot spot = spotFor(folder, path);
  if (spot.error != 0) return fail(spot.error);
  Item* const item = itemAt(spot);
  if (item == nullptr) return -1;
  const bool isForFolders = (flags & AT_REMOVEDIR) != 0;
  if (item->isFolder() != isForFolders) return fail(isForFolders ? ENOTDIR : EISDIR);
  if (isForFolders && !isEmpty(*item)) return fail(ENOTEMPTY);
  checkFolder(spot);
  _tree.removeName(*spot.folder, spot.name, *item);
  return 0;
}

void Overlay::Calls::checkFolder(const Spot& spot) {
  if (hasMetReadOnly || !spot.folder->isReal()) return;
  const auto check = [this](int at, const char* path) { return checkAccess(at, path), 0; };
  spot.real >= 0 ? check(spot.real, ".") : onDisk(spot.folder->realPath(), check);
}

}  // namespace cairnset
