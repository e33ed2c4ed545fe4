// The calls of an Overlay (host/files/Overlay.h). Internal to it. Each member function is in one of
//
//   OverlayFinding.cpp   where a path leads, on the disk and in the overlay
//   OverlayFiles.cpp     open files and folders: bytes and attributes
//   OverlayNames.cpp     items by their names: what they are, making, renaming and removing them
//   OverlayListing.cpp   what is in a folder
#pragma once

#include <atomic>
#include <cerrno>
#include <deque>
#include <fcntl.h>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <unistd.h>
#include <utility>
#include <vector>

#include "host/files/Location.h"
#include "host/files/Overlay.h"
#include "host/files/OverlayTree.h"

namespace cairnset {

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

/// Each call has the signature, result and errno of the one in the table. The lock guards all but
/// the public members. It is not held during a real open, read or close: those are what several
/// threads wait for. Threads only read; they get numbers of files that no one else uses.
class Overlay::Calls {
 public:
  explicit Calls(SystemCalls table) : real(std::move(table)) {}

  SystemCalls table();

  const SystemCalls real;
  std::atomic<bool> hasMetReadOnly = false;

 private:
  using Item = OverlayItem;
  using Found = OverlayTree::Found;
  using Lock = std::unique_lock<SpinningMutex>;

  static constexpr int kFirstNumber = 1 << 30;  // far above any that the system gives out
  static constexpr std::size_t kLongestName = 255;

  static int fail(int error) {
    errno = error;
    return -1;
  }

  // --- Finding ---

  // Where a name is, or could be put: in a folder in use.
  struct Spot {
    int error = 0;
    Item* folder = nullptr;
    std::string name = {};
    int real = -1;  // a descriptor of the folder on the disk, if there is one
  };

  char* realpath(const char* path, char* resolved);

  Item* startOf(int folder, const char* path);
  Found find(int folder, const char* path);
  Found findFollowing(int folder, const char* path);
  Spot spotFor(int folder, const char* path);
  Item* itemAt(const Spot& spot);
  void bind(const Spot& spot, Item& item);
  static std::pair<std::string, std::string> split(std::string_view path);

  // Each makes a call for an item on the disk, by a folder's descriptor and a path.
  template <typename Call>
  auto onDisk(const std::string& path, Call call) const;
  template <typename Call>
  auto onDisk(const Spot& spot, Call call) const;
  template <typename Call>
  auto onDisk(const Found& found, int folder, const char* path, Call call);

  // --- Open files and folders ---

  struct Open {
    int real = -1;          // the system's descriptor; -1 for what is only in memory
    Item* item = nullptr;   // what it is, if the overlay has it
    Item* start = nullptr;  // else the folder from which it was opened,
    std::string path;       // and the path. Null and empty for a number that is free.
    bool canRead = false, canWrite = false;

    bool isUsed() const { return item != nullptr || start != nullptr; }
  };
  struct Reading {
    int descriptor;
    bool isOthers;  // the file's owner is another user
  };

  int open(int folder, const char* path, int flags, mode_t mode);
  int close(int number);
  int fstat(int number, struct stat* out);
  ssize_t pread(int number, void* buffer, std::size_t count, off_t offset);
  ssize_t pwrite(int number, const void* buffer, std::size_t count, off_t offset);
  int ftruncate(int number, off_t size);
  ssize_t getAttribute(int number, const char* name, void* value, std::size_t size);
  int setAttribute(int number, const char* name, const void* value, std::size_t size);

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
  Reading openReal(int folder, const char* path, int flags) const;
  int openAndCheck(int folder, const char* path, int flags);
  int openThere(const Found& found, int folder, const char* path, int flags, Lock& lock);
  int openFile(Open file, int folder, int flags, Lock& lock);
  void findLinked(Open& open);
  Item* itemOf(Open& open);
  Item* fileToChange(Open& open);
  bool load(Item& file, int descriptor);
  void changed(Item& file);
  void checkAccess(int folder, const char* path);

  // --- Items by their names ---

  int lstat(int folder, const char* path, struct stat* out);
  ssize_t readlink(int folder, const char* path, char* buffer, std::size_t size);
  int birthTime(int folder, const char* path, struct timespec* out);
  int create(int folder, const char* path, mode_t kind, std::string_view target, int access);
  int rename(int oldFolder, const char* oldPath, int newFolder, const char* newPath, bool replaces);
  int link(int oldFolder, const char* oldPath, int newFolder, const char* newPath);
  int unlink(int folder, const char* path, int flags);

  dev_t deviceOf(const Item& folder) const;
  bool isOneVolume(const Item& a, const Item& b) const {
    return &a == &b || deviceOf(a) == deviceOf(b);
  }
  void checkFolder(const Spot& spot);

  // --- What is in a folder ---

  struct Listing;

  DIR* fdopendir(int number);
  struct dirent* readdir(DIR* handle);
  int closedir(DIR* handle);

  bool isEmpty(const Item& folder);

  SpinningMutex _mutex;
  OverlayTree _tree;
  std::deque<Open> _open;
  std::string _followed;   // the end of the path that was last found by following links
  std::vector<int> _free;  // numbers to be used again
  // Files with several names on the disk that the overlay has, by their numbers there.
  std::map<std::pair<dev_t, ino_t>, Item*> _linked;
  const uid_t _user = ::geteuid();
};

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
auto Overlay::Calls::onDisk(const Found& found, int folder, const char* path, Call call) {
  if (found.isStraight) return call(realNumber(folder), path);
  if (found.item != nullptr) return onDisk(found.item->realPath(), call);
  return onDisk(found.above->realPath().append("/").append(found.rest), call);
}

}  // namespace cairnset
