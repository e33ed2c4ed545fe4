// Creating, renaming, moving, deleting and flushing, as host/files/FileManager.h has it.
#include <cerrno>
#include <fcntl.h>
#include <string>
#include <string_view>

#include "host/Host.h"
#include "host/files/FileManager.h"
#include "host/files/Location.h"
#include "host/text/Names.h"

namespace cairnset {

namespace {

NodeTable& nodes() {
  return host().nodes;
}

// Whether something is at both places and is one and the same; `info` is then what it is.
bool isOneItem(const Location& a, const Location& b, struct stat& info) {
  struct stat other;
  return host().calls.lstat(b.folder(), b.path(), &other) == 0 &&
         host().calls.lstat(a.folder(), a.path(), &info) == 0 && info.st_dev == other.st_dev &&
         info.st_ino == other.st_ino;
}

std::string sortKeyOf(const Location& place) {
  const std::string_view path = place.path();
  std::string key;
  appendSortKey(path.substr(path.rfind('/') + 1), key);
  return key;
}

FSRef folderOf(const FSRef& ref) {
  FSRef folder;
  placeOf(ref, &folder, nullptr);
  return folder;
}

// One item's way from one place to another.
struct Move {
  FSRef fromFolder, toFolder;
  Location from, to;

  Move(const FSRef& ref, const FSRef& newFolder, std::string_view newName)
      : fromFolder(folderOf(ref)),
        toFolder(newFolder),
        from(ref, Location::For::kChanging),
        to(fromFolder == toFolder ? Location(from, newName)
                                  : Location(toFolder, newName, Location::For::kChanging)) {}
  OSErr status() const { return from.status() != noErr ? from.status() : to.status(); }
};

// Whether both places are one entry of one folder, or might be: the same name but for its case or
// composition, which some volumes take for one. The folder too can be known by two paths.
bool mayBeOneEntry(const Move& move) {
  if (sortKeyOf(move.from) != sortKeyOf(move.to)) return false;
  struct stat a, b;
  return move.fromFolder == move.toFolder || itemInfo(move.fromFolder, a) != noErr ||
         itemInfo(move.toFolder, b) != noErr || (a.st_dev == b.st_dev && a.st_ino == b.st_ino);
}

// Whether the item at `from` has the name at `to` already, as a second one. Names that may be one
// entry are never taken for two: that entry could be the last, and there are volumes whose file
// numbers mean nothing.
bool isSecondName(const Move& move) {
  struct stat info;
  return isOneItem(move.from, move.to, info) && S_ISREG(info.st_mode) && info.st_nlink > 1 &&
         !mayBeOneEntry(move);
}

OSErr plainRename(const Move& move) {
  const Location &from = move.from, &to = move.to;
  return host().calls.rename(from.folder(), from.path(), to.folder(), to.path()) == 0
             ? noErr
             : resultFromErrno(errno);
}

OSErr removeFrom(const Move& move) {
  return host().calls.unlink(move.from.folder(), move.from.path(), 0) == 0 ? noErr
                                                                           : resultFromErrno(errno);
}

OSErr nameIsTaken(const Move& move) {
  // By a move that was stopped between giving the new name and taking the old one away.
  if (isSecondName(move)) return removeFrom(move);
  struct stat info;
  const bool isItself = move.fromFolder == move.toFolder && mayBeOneEntry(move) &&
                        isOneItem(move.from, move.to, info);
  // Two hard links to one file are two names that are both taken, whatever their case.
  return isItself && (S_ISDIR(info.st_mode) || info.st_nlink <= 1) ? plainRename(move) : dupFNErr;
}

// For volumes without a rename that never replaces. A hard link under the new name never
// replaces either; only where there are no links is a check before the rename all that is left.
OSErr renameByLink(const Move& move) {
  const Location &from = move.from, &to = move.to;
  const SystemCalls& calls = host().calls;
  if (calls.link(from.folder(), from.path(), to.folder(), to.path()) == 0) {
    const OSErr removed = removeFrom(move);
    // Over a network a call can be done and yet be answered by an error: the new name goes again
    // only where the old one is seen to be left.
    struct stat info;
    if (removed != noErr && isOneItem(from, to, info)) calls.unlink(to.folder(), to.path(), 0);
    return removed;
  }
  if (errno == EEXIST) return nameIsTaken(move);
  if (errno != EPERM && errno != ENOTSUP && errno != EOPNOTSUPP && errno != ENOSYS &&
      errno != EMLINK) {
    return resultFromErrno(errno);
  }
  struct stat info;
  if (calls.lstat(to.folder(), to.path(), &info) == 0) return nameIsTaken(move);
  if (errno != ENOENT) return resultFromErrno(errno);
  return plainRename(move);
}

OSErr renameWithoutReplacing(const Move& move) {
  const Location &from = move.from, &to = move.to;
  if (host().calls.renameNoReplace(from.folder(), from.path(), to.folder(), to.path()) == 0) {
    return noErr;
  }
  const int error = errno;
  if (error == EEXIST) return nameIsTaken(move);
  if (error == EINVAL || error == ENOSYS || error == ENOTSUP || error == EOPNOTSUPP) {
    return renameByLink(move);
  }
  return resultFromErrno(error);
}

OSErr renameReplacing(const Move& move) {
  // Between two names of one file the system's rename does nothing at all.
  return isSecondName(move) ? removeFrom(move) : plainRename(move);
}

OSErr moveItem(const FSRef& ref, const FSRef& newFolder, const std::string& newName,
               OSErr (*way)(const Move&), FSRef* newRef) {
  const Move move(ref, newFolder, newName);
  if (move.status() != noErr) return move.status();
  const OSErr result = way(move);
  if (result == fnfErr) return failureAt(ref, ENOENT);
  if (result != noErr) return result;
  const FSRef moved{nodes().intern(newFolder.node, newName)};
  if (newRef != nullptr) *newRef = moved;
  return noErr;
}

OSErr moveToFolder(const FSRef& ref, const FSRef& folder, OSErr (*way)(const Move&),
                   FSRef* newRef) {
  if (!placeOf(ref, nullptr, nullptr)) return errFSBadFSRef;
  return moveItem(ref, folder, std::string(nodes().name(ref.node)), way, newRef);
}

// What creating has in common: a real folder, a name that it can hold, a place for the new item.
template <typename Make>
OSErr create(const FSRef& folder, std::size_t length, const UniChar* name, FSRef* ref,
             FSSpec* fsSpec, Make make) {
  std::string volumeName;
  const OSErr named = volumeNameFromUnicode({name, length}, volumeName);
  {
    const Location place(folder, volumeName, Location::For::kChanging);
    if (place.status() != noErr) return place.status();
    if (named != noErr) return named;
    if (const OSErr result = make(place); result != noErr) return result;
  }
  const FSRef made{nodes().intern(folder.node, volumeName)};
  if (ref != nullptr) *ref = made;
  if (fsSpec != nullptr)
    return FSGetCatalogInfo(&made, kFSCatInfoNone, nullptr, nullptr, fsSpec, nullptr);
  return noErr;
}

OSErr makeDirectory(const Location& place) {
  return host().calls.mkdir(place.folder(), place.path(), 0777) == 0 ? noErr
                                                                     : resultFromErrno(errno);
}

}  // namespace

OSErr FSCreateFileUnicode(const FSRef* folder, std::size_t length, const UniChar* name, FSRef* ref,
                          FSSpec* fsSpec) {
  return create(*folder, length, name, ref, fsSpec, [](const Location& place) -> OSErr {
    const int descriptor = host().calls.open(place.folder(), place.path(),
                                             O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (descriptor < 0) return resultFromErrno(errno);
    if (host().calls.close(descriptor) == 0 || errno == EINTR) return noErr;
    const OSErr result = resultFromErrno(errno);
    host().calls.unlink(place.folder(), place.path(), 0);  // what failed has made nothing
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
  return moveItem(*ref, folder, volumeName, renameWithoutReplacing, newRef);
}

OSErr FSAddNameUnicode(const FSRef* ref, std::size_t length, const UniChar* name) {
  std::string volumeName;
  if (const OSErr result = volumeNameFromUnicode({name, length}, volumeName); result != noErr) {
    return result;
  }
  FSRef folder;
  if (!placeOf(*ref, &folder, nullptr)) return errFSBadFSRef;
  const Move move(*ref, folder, volumeName);
  if (move.status() != noErr) return move.status();
  const Location &from = move.from, &to = move.to;
  if (host().calls.link(from.folder(), from.path(), to.folder(), to.path()) == 0) return noErr;
  const int error = errno;
  return error == EEXIST && isSecondName(move) ? noErr : failureAt(*ref, error);
}

OSErr FSMoveObject(const FSRef* ref, const FSRef* folder, FSRef* newRef) {
  return moveToFolder(*ref, *folder, renameWithoutReplacing, newRef);
}

OSErr FSMoveObjectReplacing(const FSRef* ref, const FSRef* folder, FSRef* newRef) {
  return moveToFolder(*ref, *folder, renameReplacing, newRef);
}

OSErr FSDeleteObject(const FSRef* ref) {
  const Location place(*ref, Location::For::kChanging);
  if (place.status() != noErr) return place.status();
  if (host().calls.unlink(place.folder(), place.path(), 0) != 0) {
    const int error = errno;  // EISDIR or EPERM for a folder, by system
    struct stat info;
    const bool isFolder = itemInfo(*ref, info) == noErr && S_ISDIR(info.st_mode);
    if (!isFolder) return failureAt(*ref, error);
    if (host().calls.unlink(place.folder(), place.path(), AT_REMOVEDIR) != 0) {
      // POSIX lets a folder that is not empty be told by EEXIST too.
      return errno == EEXIST ? fBsyErr : failureAt(*ref, errno);
    }
  }
  return noErr;
}

OSErr FSFlushObject(const FSRef* ref) {
  return callOnOpenItem(*ref, [](int descriptor) {
    if (host().calls.flush(descriptor) == 0) return 0;
    const bool hasNone =
        errno == EINVAL || errno == ENOSYS || errno == ENOTSUP || errno == EOPNOTSUPP;
    return hasNone ? 0 : -1;
  });
}

OSErr FSFlushVolume(const FSRef* ref) {
  return callOnOpenItem(*ref, host().calls.flushVolume);
}

}  // namespace cairnset
