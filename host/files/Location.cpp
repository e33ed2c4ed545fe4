#include "host/files/Location.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>

#include "host/Host.h"
#include "host/files/Opening.h"
#include "host/text/Names.h"

namespace cairnset {

Location::Location(const FSRef& ref, For purpose) : _calls(host().calls), _folder(AT_FDCWD) {
  const NodeTable& nodes = host().nodes;
  if (!nodes.contains(ref.node)) {
    _status = errFSBadFSRef;
  } else if (ref.node == NodeTable::kRoot) {
    std::strcpy(_path, "/");
  } else {
    locate(host().folderPath(nodes.folder(ref.node)), nodes.name(ref.node), purpose);
  }
}

Location::Location(const FSRef& folder, std::string_view volumeName, For purpose)
    : _calls(host().calls), _folder(AT_FDCWD) {
  if (!host().nodes.contains(folder.node)) {
    _status = errFSBadFSRef;
  } else {
    locate(host().folderPath(folder.node), volumeName, purpose);
  }
}

Location::Location(const Location& sibling, std::string_view volumeName)
    : _calls(sibling._calls), _status(sibling._status), _folder(sibling._folder) {
  putName(0, volumeName);
}

Location::Location(const SystemCalls& calls, std::string_view folderPath,
                   std::string_view volumeName, For purpose)
    : _calls(calls), _folder(AT_FDCWD) {
  locate(folderPath, volumeName, purpose);
}

Location::~Location() {
  if (_descriptor >= 0) _calls.close(_descriptor);
}

void Location::locate(std::string_view folderPath, std::string_view name, For purpose) {
  std::size_t start = 0;
  if (purpose == For::kChanging || folderPath.size() + name.size() + 2 > sizeof _path) {
    const Opened folder = openFolder(_calls, folderPath);
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

OSErr itemInfo(const FSRef& ref, struct stat& info) {
  const Location place(ref);
  if (place.status() != noErr) return place.status();
  if (host().calls.lstat(place.folder(), place.path(), &info) != 0) return failureAt(ref, errno);
  return noErr;
}

OSErr requireFolder(const FSRef& folder) {
  const Location place(folder);
  if (place.status() != noErr) return place.status();
  struct stat info;
  if (host().calls.lstat(place.folder(), place.path(), &info) != 0) {
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
  const FSRef folder{host().nodes.folder(ref.node)};
  return requireFolder(folder) == noErr ? fnfErr : dirNFErr;
}

OSErr callOnOpenItem(const FSRef& ref, const std::function<int(int descriptor)>& call) {
  const Location place(ref);
  if (place.status() != noErr) return place.status();
  const SystemCalls& calls = host().calls;
  const int descriptor =
      calls.open(place.folder(), place.path(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0);
  if (descriptor < 0) return failureAt(ref, errno);
  const OSErr result = call(descriptor) == 0 ? noErr : resultFromErrno(errno);
  calls.close(descriptor);
  return result;
}

}  // namespace cairnset
