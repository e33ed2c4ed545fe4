#include <algorithm>
#include <cstring>

#include "host/files/OverlayCalls.h"

namespace cairnset {

int Overlay::Calls::add(Open open) {
  if (_free.empty()) {
    _open.emplace_back();
    _free.push_back(kFirstNumber + static_cast<int>(_open.size()) - 1);
  }
  const int number = _free.back();
  _free.pop_back();
  _open[static_cast<std::size_t>(number - kFirstNumber)] = std::move(open);
  return number;
}

// Never to write, and if possible without a new time of the last access.
Overlay::Calls::Reading Overlay::Calls::openReal(int folder, const char* path, int flags) const {
  flags = (flags & ~(O_ACCMODE | O_CREAT | O_TRUNC)) | O_RDONLY;
#if defined(O_NOATIME)
  if ((flags & O_PATH) == 0) {
    const int descriptor = real.open(folder, path, flags | O_NOATIME, 0);
    if (descriptor >= 0 || errno != EPERM) return {descriptor, false};
    return {real.open(folder, path, flags, 0), true};
  }
#endif
  return {real.open(folder, path, flags, 0), false};
}

// Remembers what could not be written. For a file that its owner may write, fstat says enough;
// root may write all that is not on a volume that nobody may write, as its folder tells.
int Overlay::Calls::openAndCheck(int folder, const char* path, int flags) {
  const auto [descriptor, isOthers] = openReal(folder, path, flags);
  if (descriptor < 0 || hasMetReadOnly) return descriptor;
  if ((flags & O_DIRECTORY) != 0) return checkAccess(descriptor, "."), descriptor;
  if (_user == 0 || (flags & O_ACCMODE) == O_RDONLY) return descriptor;
  struct stat info;
  const bool isOwn = !isOthers && real.fstat(descriptor, &info) == 0 && info.st_uid == _user;
  if (!isOwn || (info.st_mode & S_IWUSR) == 0) checkAccess(folder, path);
  return descriptor;
}

void Overlay::Calls::checkAccess(int folder, const char* path) {
  if (::faccessat(folder, path, W_OK, AT_EACCESS) != 0 && (errno == EROFS || errno == EACCES))
    hasMetReadOnly = true;
}

int Overlay::Calls::open(int folder, const char* path, int flags, mode_t mode) {
  Lock lock(_mutex);
  Found found = find(folder, path);
  if ((flags & O_CREAT) != 0 && (found.error == ENOENT || found.error == 0)) {
    if (found.item == nullptr) {
      const int number = create(folder, path, S_IFREG | (mode & 0777), {}, flags & O_ACCMODE);
      if (number >= 0 || errno != EEXIST || (flags & O_EXCL) != 0) return number;
      found = find(folder, path);
    } else if ((flags & O_EXCL) != 0) {
      return fail(EEXIST);
    }
  }
  if (found.error != 0) return fail(found.error);
  if (found.item != nullptr) {
    if (found.item->isLink()) return fail((flags & O_DIRECTORY) != 0 ? ENOTDIR : ELOOP);
    if (!found.item->isFolder() && (flags & O_DIRECTORY) != 0) return fail(ENOTDIR);
    if (found.item->isFolder() && (flags & O_ACCMODE) != O_RDONLY) return fail(EISDIR);
  }
  return openThere(found, folder, path, flags, lock);
}

int Overlay::Calls::openThere(const Found& found, int folder, const char* path, int flags,
                              Lock& lock) {
  const int access = flags & O_ACCMODE;
  Open result;
  result.item = found.item;
  result.canRead = access != O_WRONLY;
  result.canWrite = access != O_RDONLY;
  if (found.item != nullptr && (found.item->hasBytes || !found.item->isReal())) {
    return add(std::move(result));
  }
  result.start = startOf(folder, path);
  result.path = path;
  if (found.isStraight && result.start != nullptr && (flags & O_DIRECTORY) == 0) {
    return openFile(std::move(result), folder, flags, lock);
  }
  const int base = realNumber(folder);
  if (found.isStraight) lock.unlock();
  result.real = found.isStraight ? openAndCheck(base, path, flags)
                                 : onDisk(found, folder, path, [=, this](int at, const char* way) {
                                     return openAndCheck(at, way, flags);
                                   });
  if (result.real < 0 || result.start == nullptr) return result.real;
  if (!lock.owns_lock()) lock.lock();
  if (result.item == nullptr && (flags & O_DIRECTORY) != 0) {
    result.item = &_tree.folderAt(*result.start, path);
  } else {
    findLinked(result);
  }
  return add(std::move(result));
}

// The way of nearly all files: the lock is taken once. The number is known before the file is open,
// but nobody else uses it.
int Overlay::Calls::openFile(Open file, int folder, int flags, Lock& lock) {
  const int base = realNumber(folder);
  const int number = add(std::move(file));
  Open& open = *opened(number);
  const bool mayBeLinked = !_linked.empty();
  lock.unlock();
  open.real = openAndCheck(base, open.path.c_str(), flags);
  if (open.real >= 0 && !mayBeLinked) return number;
  const int error = errno;
  lock.lock();
  if (open.real < 0) return free(number), fail(error);
  findLinked(open);
  return number;
}

// The file may be known by another of its names.
void Overlay::Calls::findLinked(Open& open) {
  struct stat info;
  if (open.item != nullptr || _linked.empty() || real.fstat(open.real, &info) != 0) return;
  const auto known = _linked.find({info.st_dev, info.st_ino});
  if (info.st_nlink > 1 && known != _linked.end()) open.item = known->second;
}

int Overlay::Calls::close(int number) {
  Lock lock(_mutex);
  if (number < kFirstNumber) return real.close(number);
  Open* const open = opened(number);
  if (open == nullptr) return fail(EBADF);
  const int descriptor = open->real;
  free(number);
  lock.unlock();
  return descriptor >= 0 ? real.close(descriptor) : 0;
}

int Overlay::Calls::fstat(int number, struct stat* out) {
  Lock lock(_mutex);
  const Open* const open = opened(number);
  if (open != nullptr && open->item != nullptr &&
      (!open->item->isFolder() || !open->item->isReal())) {
    *out = open->item->info;
    return 0;
  }
  const int descriptor = realNumber(number);
  lock.unlock();
  return real.fstat(descriptor, out);
}

ssize_t Overlay::Calls::pread(int number, void* buffer, std::size_t count, off_t offset) {
  Lock lock(_mutex);
  const Open* const open = opened(number);
  if (open != nullptr && !open->canRead) return fail(EBADF);
  if (open == nullptr || open->item == nullptr || !open->item->hasBytes) {
    const int descriptor = realNumber(number);
    lock.unlock();
    return real.pread(descriptor, buffer, count, offset);
  }
  if (offset < 0) return fail(EINVAL);
  const std::string& bytes = open->item->bytes;
  const auto start = std::min(static_cast<std::size_t>(offset), bytes.size());
  return static_cast<ssize_t>(bytes.copy(static_cast<char*>(buffer), count, start));
}

// Null with errno where it is not open for writing, or gone from the disk in the meantime.
OverlayItem* Overlay::Calls::fileToChange(Open& open) {
  if (open.item == nullptr) {
    const auto [above, name] = split(open.path);
    const bool isBelow = open.path.find('/') != std::string::npos;
    open.item = itemAt({0, isBelow ? &_tree.folderAt(*open.start, above) : open.start, name});
  }
  return open.item;
}

// Reads what the disk has of the file, before its first change.
bool Overlay::Calls::load(Item& file, int descriptor) {
  if (file.hasBytes) return true;
  std::string bytes;
  char buffer[4096];
  for (;;) {
    const ssize_t got =
        real.pread(descriptor, buffer, sizeof buffer, static_cast<off_t>(bytes.size()));
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return false;
    if (got == 0) break;
    bytes.append(buffer, static_cast<std::size_t>(got));
  }
  file.bytes = std::move(bytes);
  file.hasBytes = true;
  return true;
}

void Overlay::Calls::changed(Item& file) {
  file.info.st_size = static_cast<off_t>(file.bytes.size());
  file.touch(true);
}

ssize_t Overlay::Calls::pwrite(int number, const void* buffer, std::size_t count, off_t offset) {
  const Lock lock(_mutex);
  Open* const open = opened(number);
  if (open == nullptr || !open->canWrite) return fail(EBADF);
  if (offset < 0) return fail(EINVAL);
  Item* const file = fileToChange(*open);
  if (file == nullptr || !load(*file, open->real)) return -1;
  if (count == 0) return 0;
  const auto start = static_cast<std::size_t>(offset);
  file->bytes.resize(std::max(file->bytes.size(), start + count));
  std::memcpy(file->bytes.data() + start, buffer, count);
  changed(*file);
  return static_cast<ssize_t>(count);
}

int Overlay::Calls::ftruncate(int number, off_t size) {
  const Lock lock(_mutex);
  Open* const open = opened(number);
  if (open == nullptr || !open->canWrite || size < 0) return fail(EINVAL);
  Item* const file = fileToChange(*open);
  if (file == nullptr || !load(*file, open->real)) return -1;
  file->bytes.resize(static_cast<std::size_t>(size));
  changed(*file);
  return 0;
}

ssize_t Overlay::Calls::getAttribute(int number, const char* name, void* value, std::size_t size) {
  const Lock lock(_mutex);
  const Open* const open = opened(number);
  if (open != nullptr && open->item != nullptr) {
    const auto known = open->item->attributes.find(name);
    if (known != open->item->attributes.end()) {
      if (size == 0) return static_cast<ssize_t>(known->second.size());
      if (known->second.size() > size) return fail(ERANGE);
      return static_cast<ssize_t>(known->second.copy(static_cast<char*>(value), size));
    }
    if (open->real < 0 && !open->item->isReal()) return fail(ENODATA);
  }
  return real.getAttribute(realNumber(number), name, value, size);
}

int Overlay::Calls::setAttribute(int number, const char* name, const void* value,
                                 std::size_t size) {
  const Lock lock(_mutex);
  Open* const open = opened(number);
  if (open == nullptr) return fail(EBADF);
  Item* const item = fileToChange(*open);
  if (item == nullptr) return -1;
  if (open->real >= 0 && real.getAttribute(open->real, name, nullptr, 0) < 0 && errno == ENOTSUP)
    return -1;
  item->attributes[name] = std::string(static_cast<const char*>(value), size);
  item->touch(false);
  return 0;
}

}  // namespace cairnset
