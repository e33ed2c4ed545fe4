#include "host/files/Overlay.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <dirent.h>
#include <fcntl.h>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unistd.h>
#include <utility>

#include "host/files/Location.h"
#include "host/files/OverlayTree.h"

namespace cairnset {

namespace {

using Item = OverlayItem;

// Far above any that the system gives out.
constexpr int kFirstNumber = 1 << 30;
constexpr int kMostLinks = 40;  // on the way to an item, as on Linux
constexpr std::size_t kLongestName = 255;

int fail(int error) {
  errno = error;
  return -1;
}

// An open file or folder.
struct Open {
  int real = -1;          // the system's descriptor; -1 for what is only in memory
  Item* item = nullptr;   // what it is, if the overlay has it
  Item* start = nullptr;  // else the folder from which it was opened,
  std::string path;       // and the path. Null and empty for a number that is free.
  bool canRead = false, canWrite = false;

  bool isUsed() const { return item != nullptr || start != nullptr; }
};

// A folder that is being listed: first what the disk has, then what the overlay has.
struct Listing {
  int number;
  DIR* real;  // null for a folder that is only in memory
  const Item* folder;
  std::optional<std::vector<std::pair<std::string, const Item*>>> added = {};
  std::size_t next = 0;
  struct dirent entry = {};
};

Listing& listingOf(DIR* handle) {
  return *reinterpret_cast<Listing*>(handle);
}

std::pair<std::string, std::string> split(std::string_view path) {
  const std::size_t slash = path.rfind('/');
  return {std::string(path.substr(0, slash)), std::string(path.substr(slash + 1))};
}

}  // namespace

// Each thread that reads holds it for some 50 ns at a time. Trying again costs less than sleeping:
// with 100,000 presets that is a fifth of a rehearsal.
class SpinningMutex : public std::recursive_mutex {
 public:
  void lock() {
    for (int tries = 0; tries < kMostTries; ++tries) {
      if (try_lock()) return;
    }
    std::recursive_mutex::lock();
  }

 private:
  static constexpr int kMostTries = 200;
};

// The lock guards everything below. It is not held during a real open, read or close: those are
// what several threads wait for. Threads only read; they get numbers of files that no one else
// uses.
class Overlay::Calls {
 public:
  explicit Calls(const SystemCalls& table) : real(table) {}

  SystemCalls table();
  std::vector<FileChange> changes() const { return _tree.changes(); }

  const SystemCalls real;
  std::atomic<bool> hasMetReadOnly = false;

 private:
  using Lock = std::unique_lock<SpinningMutex>;
  using Step = OverlayTree::Step;

  // Where a name is, or could be put: in a folder in use.
  struct Spot {
    int error = 0;
    Item* folder = nullptr;
    std::string name = {};
    int real = -1;  // a descriptor of the folder on the disk, if there is one
  };
  static std::string pathOf(const Spot& spot) { return spot.folder->path() + "/" + spot.name; }

  int open(int folder, const char* path, int flags, mode_t mode);
  int openReal(int folder, const char* path, int flags) const;
  int openThere(const OverlayTree::Found& found, int folder, const char* path, int flags,
                Lock& lock);
  template <typename OpenAndCheck>
  int openFile(Open file, int folder, Lock& lock, OpenAndCheck openAndCheck);
  void findLinked(Open& open);
  int create(int folder, const char* path, mode_t kind, std::string_view target, int access);
  int close(int number);
  int fstat(int number, struct stat* out);
  ssize_t pread(int number, void* buffer, std::size_t count, off_t offset);
  ssize_t pwrite(int number, const void* buffer, std::size_t count, off_t offset);
  int ftruncate(int number, off_t size);
  int lstat(int folder, const char* path, struct stat* out);
  int rename(int oldFolder, const char* oldPath, int newFolder, const char* newPath, bool replaces);
  int link(int oldFolder, const char* oldPath, int newFolder, const char* newPath);
  int unlink(int folder, const char* path, int flags);
  ssize_t readlink(int folder, const char* path, char* buffer, std::size_t size);
  char* realpath(const char* path, char* resolved);
  DIR* fdopendir(int number);
  struct dirent* readdir(DIR* handle);
  int closedir(DIR* handle);
  ssize_t getAttribute(int number, const char* name, void* value, std::size_t size);
  int setAttribute(int number, const char* name, const void* value, std::size_t size);
  int birthTime(int folder, const char* path, struct timespec* out);

  Open* opened(int number) {
    const auto index = static_cast<std::size_t>(number - kFirstNumber);
    if (number < kFirstNumber || index >= _open.size() || !_open[index].isUsed()) return nullptr;
    return &_open[index];
  }
  // The descriptor by which the system knows it.
  int realNumber(int number) {
    if (number < kFirstNumber) return number;
    const Open* const open = opened(number);
    return open != nullptr ? open->real : -1;
  }
  int add(Open open);
  void free(int number) {
    *opened(number) = {};
    _free.push_back(number);
  }
  Item* startOf(int folder, const char* path);
  Item* itemOf(Open& open);

  OverlayTree::Found find(int folder, const char* path);
  OverlayTree::Found findFollowing(int folder, const char* path);
  template <typename Call>
  auto onDisk(const OverlayTree::Found& found, int folder, const char* path, Call call);
  template <typename Call>
  auto onDisk(const std::string& path, Call call) const;
  template <typename Call>
  auto onDisk(const Spot& spot, Call call) const;

  Spot spotFor(int folder, const char* path);
  Item* itemAt(const Spot& spot);
  Item* fileToChange(Open& open);
  bool isEmpty(const Item& folder);
  dev_t deviceOf(const Item& folder) const;
  bool isOneVolume(const Item& a, const Item& b) const {
    return &a == &b || deviceOf(a) == deviceOf(b);
  }
  void bind(const Spot& spot, Item& item);
  bool load(Item& file, int descriptor);
  void changed(Item& file);
  void checkFolder(const Spot& spot);
  void checkOpened(int descriptor, int folder, const char* path, int flags);
  void checkAccess(int folder, const char* path);

  SpinningMutex _mutex;
  OverlayTree _tree;
  std::deque<Open> _open;
  std::string _followed;   // the end of the path that was last found by following links
  std::vector<int> _free;  // numbers to be used again
  // Files with several names on the disk that the overlay has, by their numbers there.
  std::map<std::pair<dev_t, ino_t>, Item*> _linked;
  const uid_t _user = ::geteuid();
};

// --- Finding -------------------------------------------------------------------------------------

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

// Null for a descriptor of the system's, or one that is none.
Item* Overlay::Calls::startOf(int folder, const char* path) {
  if (*path == '/') return &_tree.root();
  if (folder == AT_FDCWD) {
    char text[PATH_MAX];
    return ::getcwd(text, sizeof text) != nullptr ? &_tree.folderAt(_tree.root(), text) : nullptr;
  }
  Open* const open = opened(folder);
  return open != nullptr ? itemOf(*open) : nullptr;
}

// Null for a file that is as on the disk.
Item* Overlay::Calls::itemOf(Open& open) {
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
  const OverlayTree::Found found = find(folder, path);
  if (found.error != ELOOP) return found;
  const Spot spot = spotFor(folder, path);
  if (spot.error != 0) return {spot.error};
  OverlayTree::Found followed = _tree.find(*spot.folder, _followed = spot.name);
  followed.isStraight = false;
  return followed;
}

// Calls for an item on the disk by a folder's descriptor and a path.
template <typename Call>
auto Overlay::Calls::onDisk(const std::string& path, Call call) const {
  if (path.empty()) return call(AT_FDCWD, "/");
  const auto [folder, name] = split(path);
  const Location place(real, AT_FDCWD, folder.empty() ? "/" : folder, name);
  if (place.status() == noErr) return call(place.folder(), place.path());
  errno = ENOENT;
  return decltype(call(0, ""))(-1);
}

template <typename Call>
auto Overlay::Calls::onDisk(const Spot& spot, Call call) const {
  if (spot.real >= 0) return call(spot.real, spot.name.c_str());
  return onDisk(spot.folder->realPath() + "/" + spot.name, call);
}

// As given, wherever that leads to the right place.
template <typename Call>
auto Overlay::Calls::onDisk(const OverlayTree::Found& found, int folder, const char* path,
                            Call call) {
  if (found.isStraight) return call(realNumber(folder), path);
  if (found.item != nullptr) return onDisk(found.item->realPath(), call);
  return onDisk(found.above->realPath().append("/").append(found.rest), call);
}

// --- Reading -------------------------------------------------------------------------------------

// Never to write, and if possible without a new time of the last access.
int Overlay::Calls::openReal(int folder, const char* path, int flags) const {
  flags = (flags & ~(O_ACCMODE | O_CREAT | O_TRUNC)) | O_RDONLY;
#if defined(O_NOATIME)
  if ((flags & O_PATH) == 0) {
    const int descriptor = real.open(folder, path, flags | O_NOATIME, 0);
    if (descriptor >= 0 || errno != EPERM) return descriptor;  // EPERM: another user's file
  }
#endif
  return real.open(folder, path, flags, 0);
}

int Overlay::Calls::open(int folder, const char* path, int flags, mode_t mode) {
  Lock lock(_mutex);
  OverlayTree::Found found = find(folder, path);
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

int Overlay::Calls::openThere(const OverlayTree::Found& found, int folder, const char* path,
                              int flags, Lock& lock) {
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
  const auto openAndCheck = [=, this](int at, const char* way) {
    const int descriptor = openReal(at, way, flags);
    if (descriptor >= 0) checkOpened(descriptor, at, way, flags);
    return descriptor;
  };
  if (found.isStraight && result.start != nullptr && (flags & O_DIRECTORY) == 0) {
    return openFile(std::move(result), folder, lock, openAndCheck);
  }
  const int base = realNumber(folder);
  if (found.isStraight) lock.unlock();
  result.real =
      found.isStraight ? openAndCheck(base, path) : onDisk(found, folder, path, openAndCheck);
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
template <typename OpenAndCheck>
int Overlay::Calls::openFile(Open file, int folder, Lock& lock, OpenAndCheck openAndCheck) {
  const int base = realNumber(folder);
  const int number = add(std::move(file));
  Open& open = *opened(number);
  const bool mayBeLinked = !_linked.empty();
  lock.unlock();
  open.real = openAndCheck(base, open.path.c_str());
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

int Overlay::Calls::lstat(int folder, const char* path, struct stat* out) {
  const Lock lock(_mutex);
  const OverlayTree::Found found = findFollowing(folder, path);
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
  const OverlayTree::Found found = findFollowing(folder, path);
  if (found.error != 0) return fail(found.error);
  if (found.item == nullptr || (found.item->isLink() && found.item->isReal())) {
    return onDisk(found, folder, path,
                  [&](int at, const char* way) { return real.readlink(at, way, buffer, size); });
  }
  if (!found.item->isLink()) return fail(EINVAL);
  return static_cast<ssize_t>(found.item->bytes.copy(buffer, size));
}

// Component by component, since a link on the disk can lead to what is only in memory.
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
    const std::string place = done + "/" + name;
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
  return std::strcpy(resolved, done.c_str());
}

DIR* Overlay::Calls::fdopendir(int number) {
  const Lock lock(_mutex);
  Open* const open = opened(number);
  if (open == nullptr) return fail(EBADF), nullptr;
  if (itemOf(*open) == nullptr || !open->item->isFolder()) return fail(ENOTDIR), nullptr;
  DIR* folder = nullptr;
  if (open->real >= 0 && (folder = real.fdopendir(open->real)) == nullptr) return nullptr;
  return reinterpret_cast<DIR*>(new Listing{number, folder, open->item});
}

struct dirent* Overlay::Calls::readdir(DIR* handle) {
  Listing& listing = listingOf(handle);
  const Lock lock(_mutex);
  if (!listing.added) {
    struct dirent* entry = nullptr;
    errno = 0;
    while (listing.real != nullptr && (entry = real.readdir(listing.real)) != nullptr) {
      const auto known = listing.folder->entries.find(std::string_view(entry->d_name));
      if (known == listing.folder->entries.end()) return entry;
      if (known->second != nullptr && known->second->isInPlace) return entry;
    }
    if (listing.real != nullptr && errno != 0) return nullptr;
    listing.added.emplace();
    for (const auto& [name, item] : listing.folder->entries) {
      if (item != nullptr && !item->isInPlace) listing.added->emplace_back(name, item);
    }
  }
  errno = 0;
  if (listing.next == listing.added->size()) return nullptr;
  const auto& [name, item] = (*listing.added)[listing.next++];
  listing.entry.d_ino = item->info.st_ino;
  listing.entry.d_type = static_cast<unsigned char>(IFTODT(item->info.st_mode));
  listing.entry.d_name[name.copy(listing.entry.d_name, kLongestName)] = '\0';
  return &listing.entry;
}

int Overlay::Calls::closedir(DIR* handle) {
  const std::unique_ptr<Listing> listing(&listingOf(handle));
  const Lock lock(_mutex);
  free(listing->number);
  return listing->real != nullptr ? real.closedir(listing->real) : 0;
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

int Overlay::Calls::birthTime(int folder, const char* path, struct timespec* out) {
  const Lock lock(_mutex);
  const OverlayTree::Found found = findFollowing(folder, path);
  if (found.error != 0) return fail(found.error);
  if (found.item != nullptr && !found.item->isReal()) return fail(ENOTSUP);
  return onDisk(found, folder, path,
                [&](int at, const char* way) { return real.birthTime(at, way, out); });
}

// --- Changing ------------------------------------------------------------------------------------

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
Item* Overlay::Calls::itemAt(const Spot& spot) {
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
    const OverlayTree::Found found =
        isBelow ? _tree.find(*open.start, above) : OverlayTree::Found{0, open.start};
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

bool Overlay::Calls::isEmpty(const Item& folder) {
  for (const auto& [name, item] : folder.entries) {
    if (item != nullptr) return false;
  }
  if (!folder.isReal()) return true;
  const int descriptor = onDisk(folder.realPath(), [this](int at, const char* way) {
    return openReal(at, way, O_DIRECTORY | O_CLOEXEC);
  });
  DIR* const listing = descriptor >= 0 ? real.fdopendir(descriptor) : nullptr;
  if (listing == nullptr) {
    if (descriptor >= 0) real.close(descriptor);
    return false;
  }
  bool isEmpty = true;
  while (const struct dirent* entry = real.readdir(listing)) {
    const std::string_view name = entry->d_name;
    if (name != "." && name != ".." && !folder.entries.contains(name)) isEmpty = false;
  }
  real.closedir(listing);
  return isEmpty;
}

// Remembers what could not be written. For a file that its owner may write, fstat says enough;
// root may write all that is not on a volume that nobody may write, as its folder tells.
void Overlay::Calls::checkOpened(int descriptor, int folder, const char* path, int flags) {
  if (hasMetReadOnly) return;
  if ((flags & O_DIRECTORY) != 0) return checkAccess(descriptor, ".");
  struct stat info;
  if (_user == 0 || (flags & O_ACCMODE) == O_RDONLY || real.fstat(descriptor, &info) != 0) return;
  if (info.st_uid != _user || (info.st_mode & S_IWUSR) == 0) checkAccess(folder, path);
}

void Overlay::Calls::checkAccess(int folder, const char* path) {
  if (::faccessat(folder, path, W_OK, AT_EACCESS) != 0 && (errno == EROFS || errno == EACCES))
    hasMetReadOnly = true;
}

void Overlay::Calls::checkFolder(const Spot& spot) {
  if (hasMetReadOnly || !spot.folder->isReal()) return;
  const auto check = [this](int at, const char* path) { return checkAccess(at, path), 0; };
  spot.real >= 0 ? check(spot.real, ".") : onDisk(spot.folder->realPath(), check);
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
  item.hasBytes = item.isTold = true;
  _tree.setName(*spot.folder, spot.name, item);
  _tree.note(S_ISDIR(kind) ? Step::kMakeFolder : Step::kMake, item, pathOf(spot));
  if (!S_ISREG(kind)) return 0;
  Open open;
  open.item = &item;
  open.canRead = access != O_WRONLY;
  open.canWrite = access != O_RDONLY;
  return add(std::move(open));
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

// Null with errno where it is not open for writing, or gone from the disk in the meantime.
Item* Overlay::Calls::fileToChange(Open& open) {
  if (open.item == nullptr) {
    const auto [above, name] = split(open.path);
    const bool isBelow = open.path.find('/') != std::string::npos;
    open.item = itemAt({0, isBelow ? &_tree.folderAt(*open.start, above) : open.start, name});
  }
  return open.item;
}

void Overlay::Calls::changed(Item& file) {
  file.info.st_size = static_cast<off_t>(file.bytes.size());
  file.touch(true);
  if (!std::exchange(file.isTold, true)) _tree.note(Step::kRewrite, file, file.path());
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
  _tree.note(there != nullptr ? Step::kReplace : Step::kRename, *item, pathOf(from), pathOf(to));
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
  _tree.note(Step::kLink, *item, pathOf(from), pathOf(to));
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
  _tree.note(Step::kRemove, *item, pathOf(spot));
  _tree.removeName(*spot.folder, spot.name, *item);
  return 0;
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

// --- The table -----------------------------------------------------------------------------------

SystemCalls Overlay::Calls::table() {
  SystemCalls t = real;
  t.open = [this](auto... args) { return open(args...); };
  t.close = [this](auto... args) { return close(args...); };
  t.fstat = [this](auto... args) { return fstat(args...); };
  t.pread = [this](auto... args) { return pread(args...); };
  t.pwrite = [this](auto... args) { return pwrite(args...); };
  t.ftruncate = [this](auto... args) { return ftruncate(args...); };
  t.lstat = [this](auto... args) { return lstat(args...); };
  t.mkdir = [this](int folder, const char* path, mode_t mode) {
    return create(folder, path, S_IFDIR | (mode & 0777), {}, 0);
  };
  t.renameNoReplace = [this](auto... args) { return rename(args..., false); };
  t.rename = [this](auto... args) { return rename(args..., true); };
  t.link = [this](auto... args) { return link(args...); };
  t.unlink = [this](auto... args) { return unlink(args...); };
  t.symlink = [this](const char* target, int folder, const char* path) {
    return create(folder, path, S_IFLNK | 0777, target, 0);
  };
  t.readlink = [this](auto... args) { return readlink(args...); };
  t.realpath = [this](auto... args) { return realpath(args...); };
  t.fdopendir = [this](auto... args) { return fdopendir(args...); };
  t.readdir = [this](auto... args) { return readdir(args...); };
  t.closedir = [this](auto... args) { return closedir(args...); };
  t.getAttribute = [this](auto... args) { return getAttribute(args...); };
  t.setAttribute = [this](auto... args) { return setAttribute(args...); };
  t.birthTime = [this](auto... args) { return birthTime(args...); };
  t.flush = t.flushVolume = [](int) { return 0; };
  t.flock = [this](int number, int operation) {
    const Lock lock(_mutex);
    return real.flock(realNumber(number), operation);
  };
  return t;
}

Overlay::Overlay(const SystemCalls& real)
    : _implementation(std::make_unique<Calls>(real)), _calls(_implementation->table()) {}

Overlay::~Overlay() = default;

const SystemCalls& Overlay::calls() const {
  return _calls;
}

const SystemCalls& Overlay::real() const {
  return _implementation->real;
}

std::vector<FileChange> Overlay::changes() const {
  return _implementation->changes();
}

bool Overlay::hasMetReadOnly() const {
  return _implementation->hasMetReadOnly;
}

}  // namespace cairnset
