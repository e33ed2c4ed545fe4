#include "host/Location.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <string>

#include "host/Names.h"
#include "host/NodeTable.h"
#include "host/SystemCalls.h"

namespace cairnset {

namespace {

// The path of the folder last asked for. A node's path never changes, so this cannot go stale; it
// saves a whole folder's files from walking up to the root each.
const std::string& folderPath(std::uint32_t folder) {
  static std::uint32_t lastFolder = 0;
  static std::string lastPath;
  if (folder != lastFolder) {
    lastPath = NodeTable::shared().path(folder);
    lastFolder = folder;
  }
  return lastPath;
}

struct KeptFolder {
  std::uint32_t node = 0;  // 0 where none is kept
  int descriptor = -1;     // -1 too where the folder could not be opened
  DIR* listing = nullptr;  // whose descriptor it is; null where it is nobody's
};
KeptFolder kept;

int openFolder(int folder, const char* path) {
  return systemCalls().open(folder, path, kToFindIn | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC, 0);
}

}  // namespace

void keepFolderOpen(const FSRef& folder) {
  if (folder.node == kept.node) return;
  closeKeptFolder();
  const Location place(folder);
  if (place.status() != noErr) return;
  kept = {folder.node, openFolder(place.folder(), place.path()), nullptr};
}

void keepFolderOpen(const FSRef& folder, DIR* listing) {
  closeKeptFolder();
  kept = {folder.node, ::dirfd(listing), listing};
}

void closeKeptFolder() {
  if (kept.listing != nullptr) {
    systemCalls().closedir(kept.listing);
  } else if (kept.descriptor >= 0) {
    systemCalls().close(kept.descriptor);
  }
  kept = {};
}

Location::Location(const FSRef& ref, By by) : _folder(AT_FDCWD) {
  const NodeTable& table = NodeTable::shared();
  if (!table.contains(ref.node)) {
    _status = errFSBadFSRef;
  } else if (ref.node == NodeTable::kRoot) {
    std::strcpy(_path, "/");
  } else {
    locate(table.folder(ref.node), table.name(ref.node), by);
  }
}

Location::Location(const FSRef& folder, std::string_view volumeName, By by) : _folder(AT_FDCWD) {
  if (!NodeTable::shared().contains(folder.node)) {
    _status = errFSBadFSRef;
  } else {
    locate(folder.node, volumeName, by);
  }
}

Location::Location(const Location& sibling, std::string_view volumeName)
    : _status(sibling._status), _folder(sibling._folder) {
  putName(0, volumeName);
}

Location::~Location() {
  if (_descriptor >= 0) systemCalls().close(_descriptor);
}

void Location::locate(std::uint32_t folder, std::string_view name, By by) {
  std::size_t start = 0;
  if (by == By::kKeptFolder && folder == kept.node && kept.descriptor >= 0) {
    _folder = kept.descriptor;
  } else if (const std::string& path = folderPath(folder);
             by == By::kOwnFolder || path.size() + name.size() + 2 > sizeof _path) {
    openStretches(path);
    if (_status != noErr) return;
  } else {
    if (folder != NodeTable::kRoot) {
      std::memcpy(_path, path.data(), path.size());
      start = path.size();
    }
    _path[start++] = '/';
  }
  putName(start, name);
}

void Location::putName(std::size_t start, std::string_view name) {
  std::memcpy(_path + start, name.data(), name.size());
  _path[start + name.size()] = '\0';
}

void Location::openStretches(std::string_view folderPath) {
  while (!folderPath.empty()) {
    std::string_view stretch = folderPath;
    if (stretch.size() >= sizeof _path) {
      stretch = stretch.substr(0, stretch.substr(0, sizeof _path - 1).rfind('/'));
    }
    putName(0, stretch);
    const int next = openFolder(_folder, _path);
    const int error = errno;
    if (_descriptor >= 0) systemCalls().close(_descriptor);
    _descriptor = next;
    if (next < 0) {
      _status = error == ENOENT || error == ELOOP ? dirNFErr : resultFromErrno(error);
      return;
    }
    _folder = next;
    folderPath.remove_prefix(stretch.size());
    while (!folderPath.empty() && folderPath.front() == '/')
      folderPath.remove_prefix(1);
  }
}

OSErr itemInfo(const FSRef& ref, struct stat& info) {
  const Location place(ref);
  if (place.status() != noErr) return place.status();
  if (systemCalls().lstat(place.folder(), place.path(), &info) != 0) return failureAt(ref, errno);
  return noErr;
}

OSErr requireFolder(const FSRef& folder) {
  const Location place(folder);
  if (place.status() != noErr) return place.status();
  struct stat info;
  if (systemCalls().lstat(place.folder(), place.path(), &info) != 0) {
    return errno == ENOENT ? dirNFErr : resultFromErrno(errno);
  }
  return S_ISDIR(info.st_mode) ? noErr : dirNFErr;
}

OSErr volumeNameIn(const FSRef& folder, std::size_t length, const UniChar* name,
                   std::string& volumeName) {
  const OSErr result = requireFolder(folder);
  return result == noErr ? volumeNameFromUnicode({name, length}, volumeName) : result;
}

OSErr failureAt(const FSRef& ref, int error) {
  if (error != ENOENT) return resultFromErrno(error);
  const FSRef folder{NodeTable::shared().folder(ref.node)};
  return requireFolder(folder) == noErr ? fnfErr : dirNFErr;
}

OSErr callOnOpenItem(const FSRef& ref, const std::function<int(int descriptor)>& call) {
  const Location place(ref);
  if (place.status() != noErr) return place.status();
  SystemCalls& calls = systemCalls();
  const int descriptor =
      calls.open(place.folder(), place.path(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0);
  if (descriptor < 0) return failureAt(ref, errno);
  const OSErr result = call(descriptor) == 0 ? noErr : resultFromErrno(errno);
  calls.close(descriptor);
  return result;
}

}  // namespace cairnset
