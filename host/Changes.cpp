// Creating, renaming, moving and deleting, as host/FileManager.h has it.
#include <cerrno>
#include <fcntl.h>
#include <string>
#include <string_view>

#include "host/FileManager.h"
#include "host/Location.h"
#include "host/Names.h"
#include "host/NodeTable.h"
#include "host/SystemCalls.h"

namespace cairnset {

namespace {

NodeTable& nodes() {
  return NodeTable::shared();
}

// Whether something is at both places and is one and the same; `info` is then what it is.
bool isOneItem(const Location& a, const Location& b, struct stat& info) {
  struct stat other;
  return systemCalls().lstat(a.folder(), a.path(), &info) == 0 &&
         systemCalls().lstat(b.folder(), b.path(), &other) == 0 && info.st_dev == other.st_dev &&
         info.st_ino == other.st_ino;
}

std::string sortKeyOf(const Location& place) {
  const std::string_view path = place.path();
  std::string key;
  appendSortKey(path.substr(path.rfind('/') + 1), key);
  return key;
}

// The item itself under another case of its name, on a volume that takes both for one name. The
// names are looked at too, as there are volumes whose file numbers mean nothing.
bool isSameItemInOtherCase(const Location& from, const Location& to) {
  struct stat info;
  if (!isOneItem(from, to, info) || sortKeyOf(from) != sortKeyOf(to)) return false;
  // Two hard links to one file are two names that are both taken, whatever their case.
  return S_ISDIR(info.st_mode) || info.st_nlink <= 1;
}

OSErr plainRename(const Location& from, const Location& to) {
  return systemCalls().rename(from.folder(), from.path(), to.folder(), to.path()) == 0
             ? noErr
             : resultFromErrno(errno);
}

OSErr nameIsTaken(const Location& from, const Location& to) {
  return isSameItemInOtherCase(from, to) ? plainRename(from, to) : dupFNErr;
}

// For volumes without a rename that never replaces. A hard link under the new name never
// replaces either; only where there are no links is a check before the rename all that is left.
OSErr renameByLink(const Location& from, const Location& to) {
  SystemCalls& calls = systemCalls();
  if (calls.link(from.folder(), from.path(), to.folder(), to.path()) == 0) {
    if (calls.unlink(from.folder(), from.path(), 0) == 0) return noErr;
    const int error = errno;
    // Over a network a call can be done and yet be answered by an error: the new name goes again
    // only where the old one is seen to be left.
    struct stat info;
    if (isOneItem(from, to, info)) calls.unlink(to.folder(), to.path(), 0);
    return resultFromErrno(error);
  }
  if (errno == EEXIST) return nameIsTaken(from, to);
  if (errno != EPERM && errno != ENOTSUP && errno != EOPNOTSUPP && errno != ENOSYS &&
      errno != EMLINK) {
    return resultFromErrno(errno);
  }
  struct stat info;
  if (calls.lstat(to.folder(), to.path(), &info) == 0) return nameIsTaken(from, to);
  if (errno != ENOENT) return resultFromErrno(errno);
  return plainRename(from, to);
}

OSErr renameWithoutReplacing(const FSRef& ref, const FSRef& newFolder, const std::string& newName,
                             FSRef* newRef) {
  const Location from(ref);
  const Location to(newFolder, newName);
  if (from.status() != noErr) return from.status();
  if (to.status() != noErr) return to.status();
  OSErr result = noErr;
  if (systemCalls().renameNoReplace(from.folder(), from.path(), to.folder(), to.path()) != 0) {
    const int error = errno;
    if (error == EEXIST) {
      result = nameIsTaken(from, to);
    } else if (error == EINVAL || error == ENOSYS || error == ENOTSUP || error == EOPNOTSUPP) {
      result = renameByLink(from, to);
    } else {
      result = resultFromErrno(error);
    }
  }
  if (result == fnfErr) return failureAt(ref, ENOENT);
  if (result != noErr) return result;
  const FSRef renamed{nodes().intern(newFolder.node, newName)};
  if (renamed != ref) placeChanged(ref);
  if (newRef != nullptr) *newRef = renamed;
  return noErr;
}

// What creating has in common: a real folder, a name that it can hold, a place for the new item.
template <typename Make>
OSErr create(const FSRef& folder, std::size_t length, const UniChar* name, FSRef* ref,
             FSSpec* fsSpec, Make make) {
  std::string volumeName;
  if (const OSErr result = volumeNameIn(folder, length, name, volumeName); result != noErr) {
    return result;
  }
  {
    const Location place(folder, volumeName);
    if (place.status() != noErr) return place.status();
    if (const OSErr result = make(place); result != noErr) return result;
  }
  const FSRef made{nodes().intern(folder.node, volumeName)};
  if (ref != nullptr) *ref = made;
  if (fsSpec != nullptr)
    return FSGetCatalogInfo(&made, kFSCatInfoNone, nullptr, nullptr, fsSpec, nullptr);
  return noErr;
}

OSErr makeDirectory(const Location& place) {
  return systemCalls().mkdir(place.folder(), place.path(), 0777) == 0 ? noErr
                                                                      : resultFromErrno(errno);
}

}  // namespace

OSErr FSCreateFileUnicode(const FSRef* folder, std::size_t length, const UniChar* name, FSRef* ref,
                          FSSpec* fsSpec) {
  return create(*folder, length, name, ref, fsSpec, [](const Location& place) -> OSErr {
    const int descriptor = systemCalls().open(place.folder(), place.path(),
                                              O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (descriptor < 0) return resultFromErrno(errno);
    if (systemCalls().close(descriptor) == 0 || errno == EINTR) return noErr;
    const OSErr result = resultFromErrno(errno);
    systemCalls().unlink(place.folder(), place.path(), 0);  // what failed has made nothing
    return result;
  });
}

OSErr FSCreateDirectoryUnicode(const FSRef* folder, std::size_t length, const UniChar* name,
                               FSRef* ref, FSSpec* fsSpec, std::uint32_t* dirID) {
  FSRef made;
  const OSErr result = create(*folder, length, name, &made, fsSpec, makeDirectory);
  if (result != noErr) return result;
  if (ref != nullptr) *ref = made;
  if (dirID != nullptr) *dirID = made.node;
  return noErr;
}

OSErr FSRenameUnicode(const FSRef* ref, std::size_t length, const UniChar* name,
                      std::uint32_t /*encodingHint*/, FSRef* newRef) {
  std::string volumeName;
  if (const OSErr result = volumeNameFromUnicode({name, length}, volumeName); result != noErr) {
    return result;
  }
  FSRef folder;
  if (!placeOf(*ref, &folder, nullptr)) return errFSBadFSRef;
  return renameWithoutReplacing(*ref, folder, volumeName, newRef);
}

OSErr FSMoveObject(const FSRef* ref, const FSRef* folder, FSRef* newRef) {
  if (!placeOf(*ref, nullptr, nullptr)) return errFSBadFSRef;
  if (const OSErr result = requireFolder(*folder); result != noErr) return result;
  return renameWithoutReplacing(*ref, *folder, std::string(nodes().name(ref->node)), newRef);
}

OSErr FSDeleteObject(const FSRef* ref) {
  const Location place(*ref);
  if (place.status() != noErr) return place.status();
  if (systemCalls().unlink(place.folder(), place.path(), 0) != 0) {
    const int error = errno;  // EISDIR or EPERM for a folder, by system
    struct stat info;
    const bool isFolder = itemInfo(*ref, info) == noErr && S_ISDIR(info.st_mode);
    if (!isFolder) return failureAt(*ref, error);
    if (systemCalls().unlink(place.folder(), place.path(), AT_REMOVEDIR) != 0) {
      // POSIX lets a folder that is not empty be told by EEXIST too.
      return errno == EEXIST ? fBsyErr : failureAt(*ref, errno);
    }
  }
  placeChanged(*ref);
  return noErr;
}

}  // namespace cairnset
