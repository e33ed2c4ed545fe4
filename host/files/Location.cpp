#include "host/files/Location.h"

#include <cerrno>
#include <cstring>

#include "host/Host.h"
#include "host/files/FileManager.h"

namespace cairnset {

Location::Location(const FSRef& ref, For purpose) : _calls(host().calls) {
  const NodeTable& table = nodes();
  if (!table.contains(ref.node)) {
    _status = errFSBadFSRef;
  } else if (ref.node == NodeTable::kRoot) {
    std::strcpy(_path, "/");
  } else if (ref.node == host().folders.held() && purpose == For::kLooking) {
    _folder = host().folders.descriptor();
    std::strcpy(_path, ".");
  } else {
    locateIn(table.folder(ref.node), table.name(ref.node), purpose);
  }
}

Location::Location(const FSRef& folder, std::string_view volumeName, For purpose)
    : _calls(host().calls) {
  if (!nodes().contains(folder.node)) {
    _status = errFSBadFSRef;
  } else {
    locateIn(folder.node, volumeName, purpose);
  }
}

Location::Location(const Location& sibling, std::string_view volumeName)
    : _calls(sibling._calls), _status(sibling._status), _folder(sibling._folder) {
  putName(0, volumeName);
}

Location::Location(const SystemCalls& calls, int base, std::string_view folderPath,
                   std::string_view volumeName)
    : _calls(calls) {
  locate(base, folderPath, volumeName, For::kLooking);
}

Location::~Location() {
  if (_descriptor >= 0) _calls.close(_descriptor);
}

void Location::locateIn(std::uint32_t folder, std::string_view name, For purpose) {
  const FolderPath& place = host().folders.of(folder);
  _status = place.result;
  _deep = place.deep;
  if (_status == noErr) locate(place.base, place.path, name, purpose);
}

void Location::locate(int base, std::string_view folderPath, std::string_view name, For purpose) {
  std::size_t start = 0;
  _folder = base;
  if (folderPath.empty()) {
    // in the base itself
  } else if (purpose == For::kChanging || folderPath.size() + name.size() + 2 > sizeof _path) {
    const Opened folder = openFolder(_calls, base, folderPath);
    _status = folder.result;
    _folder = _descriptor = folder.descriptor;
    if (_status != noErr) return;
  } else {
    if (folderPath != "/") start = folderPath.copy(_path, sizeof _path);
    _path[start++] = '/';
  }
  putName(start, name);
}

void Location::putName(std::size_t start, std::string_view name) {
  _path[start + name.copy(_path + start, sizeof _path - start - 1)] = '\0';
}

namespace {

// noErr where `folder` is a real folder; dirNFErr where it is missing or anything else, even an
// alias to a folder.
OSErr requireFolder(const FSRef& folder) {
  const Location place(folder);
  if (place.status() != noErr) return place.status();
  struct stat info;
  if (place.lstat(info) != 0) return errno == ENOENT ? dirNFErr : resultFromErrno(errno);
  return S_ISDIR(info.st_mode) ? noErr : dirNFErr;
}

}  // namespace

ItemInfo itemInfo(const FSRef& ref) {
  const Location place(ref);
  ItemInfo item;
  item.result = place.status();
  if (item.result == noErr && place.lstat(item.info) != 0) item.result = failureAt(ref, errno);
  return item;
}

VolumeName volumeNameIn(const FSRef& folder, std::u16string_view name) {
  const OSErr result = requireFolder(folder);
  return result == noErr ? volumeNameFromUnicode(name) : VolumeName{result, {}};
}

OSErr failureAt(const FSRef& ref, int error) {
  if (error != ENOENT) return resultFromErrno(error);
  return requireFolder({nodes().folder(ref.node)}) == noErr ? fnfErr : dirNFErr;
}

Opened openListedFile(const SystemCalls& calls, int folder, const char* path,
                      std::int8_t permissions) {
  const int access = permissions == fsRdPerm   ? O_RDONLY
                     : permissions == fsWrPerm ? O_WRONLY
                                               : O_RDWR;
  // O_NONBLOCK: what was a file when it was listed may be a FIFO by now, and must not hang us.
  const int flags = access | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
  const int descriptor = retried([&] { return calls.open(folder, path, flags, 0); });
  return {descriptor, descriptor < 0 ? resultFromErrno(errno) : OSErr{noErr}};
}

Opened checkedFile(const SystemCalls& calls, int descriptor) {
  struct stat info;
  OSErr result = ioErr;
  if (retried([&] { return calls.fstat(descriptor, &info); }) != 0) {
    result = resultFromErrno(errno);
  } else if (S_ISREG(info.st_mode)) {
    return {descriptor, noErr, info.st_size};
  }
  calls.close(descriptor);
  return {-1, result};
}

Opened openFile(const SystemCalls& calls, int folder, const char* path, std::int8_t permissions) {
  const Opened file = openListedFile(calls, folder, path, permissions);
  return file.result == noErr ? checkedFile(calls, file.descriptor) : file;
}

OSErr closeFile(const SystemCalls& calls, int descriptor) {
  // After EINTR the descriptor is gone all the same; closing again could hit another's.
  return calls.close(descriptor) == 0 || errno == EINTR ? noErr : resultFromErrno(errno);
}

OSErr folderFailure(int error) {
  return error == ENOENT || error == ELOOP ? OSErr{dirNFErr} : resultFromErrno(error);
}

Opened openFolderAt(const SystemCalls& calls, int folder, const char* path, int access) {
  const int flags = access | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
  const int descriptor = retried([&] { return calls.open(folder, path, flags, 0); });
  return {descriptor, descriptor < 0 ? folderFailure(errno) : OSErr{noErr}};
}

// A path that is longer than the system takes is opened one stretch after the other.
Opened openFolder(const SystemCalls& calls, int base, std::string_view path, int access) {
  Opened folder{base};
  while (!path.empty() && folder.result == noErr) {
    std::string_view stretch = path;
    if (stretch.size() >= PATH_MAX) {
      stretch = stretch.substr(0, stretch.substr(0, PATH_MAX - 1).rfind('/'));
    }
    char text[PATH_MAX];
    text[stretch.copy(text, sizeof text - 1)] = '\0';
    path.remove_prefix(stretch.size());
    while (!path.empty() && path.front() == '/')
      path.remove_prefix(1);
    const int before = folder.descriptor;
    folder = openFolderAt(calls, before, text, path.empty() ? access : kToFindIn);
    if (before != base) calls.close(before);
  }
  return folder;
}

OSErr callOnOpenItem(const FSRef& ref, const std::function<int(int descriptor)>& call) {
  const Location place(ref);
  if (place.status() != noErr) return place.status();
  const int descriptor = place.open(O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0);
  if (descriptor < 0) return failureAt(ref, errno);
  const OSErr result = resultOf(call(descriptor));
  host().calls.close(descriptor);
  return result;
}

}  // namespace cairnset
