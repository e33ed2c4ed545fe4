// Creating, renaming, moving, deleting and flushing, as host/files/FileManager.h has it.
#include <cerrno>
#include <fcntl.h>
#include <optional>
#include <string>
#include <string_view>

#include "host/Host.h"
#include "host/files/FileManager.h"
#include "host/files/Location.h"
#include "host/text/Names.h"

namespace cairnset {

namespace {

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

// An item's move from one place to another.
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

  int by(const SystemCalls::Call<SystemCalls::OnTwoPaths>& call) const {
    for (Retries retries;;) {
      const int result = call(from.folder(), from.path(), to.folder(), to.path());
      const int error = errno;
      if (result == 0 || !retries.wants(error)) return result;
      // It may have been done in spite of the error.
      struct stat info;
      const bool isStillThere = from.lstat(info) == 0;
      errno = error;
      if (!isStillThere) return result;
    }
  }
  // What is at both places, if it is one item.
  std::optional<struct stat> itemAtBoth() const {
    struct stat old, taken;
    if (to.lstat(taken) != 0 || from.lstat(old) != 0 || !isOneItem(old, taken)) return {};
    return old;
  }
};

// Whether both places are or may be one entry of one folder: the names differ in case or
// composition at most, which some volumes ignore. One folder can be known by two paths.
bool mayBeOneEntry(const Move& move) {
  if (sortKeyOf(move.from) != sortKeyOf(move.to)) return false;
  return move.fromFolder == move.toFolder || !areTwoItems(move.fromFolder, move.toFolder);
}

// Whether `to` is already a second name of the item at `from`. Names that may be one entry never
// count as two: that entry could be the last, and some volumes have meaningless file numbers.
bool isSecondName(const Move& move) {
  const auto item = move.itemAtBoth();
  return item && S_ISREG(item->st_mode) && item->st_nlink > 1 && !mayBeOneEntry(move);
}

bool isUnsupported(int error) {
  return error == ENOSYS || error == ENOTSUP || error == EOPNOTSUPP;
}

OSErr plainRename(const Move& move) {
  return resultOf(move.by(host().calls.rename));
}

OSErr removeFrom(const Move& move) {
  return resultOf(move.from.unlink(0));
}

OSErr nameIsTaken(const Move& move) {
  // By a move that was stopped after giving the new name, before taking the old one away.
  if (isSecondName(move)) return removeFrom(move);
  if (move.fromFolder != move.toFolder || !mayBeOneEntry(move)) return dupFNErr;
  const auto item = move.itemAtBoth();
  // Two hard links to one file are two names that are both taken, whatever their case.
  return item && (S_ISDIR(item->st_mode) || item->st_nlink <= 1) ? plainRename(move) : dupFNErr;
}

// For volumes without a rename that never replaces. A hard link under the new name never
// replaces either; only where there are no links is a check before the rename all that is left.
OSErr renameByLink(const Move& move) {
  if (move.by(host().calls.link) == 0) {
    const OSErr removed = removeFrom(move);
    // Over a network a call may succeed and still return an error: remove the new name again only
    // if the old one is still there.
    if (removed != noErr && move.itemAtBoth()) move.to.unlink(0);
    return removed;
  }
  if (errno == EEXIST) return nameIsTaken(move);
  if (errno != EPERM && errno != EMLINK && !isUnsupported(errno)) return resultFromErrno(errno);
  struct stat info;
  if (move.to.lstat(info) == 0) return nameIsTaken(move);
  if (errno != ENOENT) return resultFromErrno(errno);
  return plainRename(move);
}

OSErr renameWithoutReplacing(const Move& move) {
  if (move.by(host().calls.renameNoReplace) == 0) return noErr;
  if (errno == EEXIST) return nameIsTaken(move);
  return errno == EINVAL || isUnsupported(errno) ? renameByLink(move) : resultFromErrno(errno);
}

OSErr renameReplacing(const Move& move) {
  // Between two names of one file the system's rename does nothing.
  return isSecondName(move) ? removeFrom(move) : plainRename(move);
}

OSErr addSecondName(const Move& move) {
  if (move.by(host().calls.link) == 0) return noErr;
  const int error = errno;
  return error == EEXIST && isSecondName(move) ? noErr : resultFromErrno(error);
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

OSErr moveToName(const FSRef& ref, std::u16string_view name, OSErr (*way)(const Move&),
                 FSRef* newRef) {
  const VolumeName volumeName = volumeNameFromUnicode(name);
  if (volumeName.result != noErr) return volumeName.result;
  FSRef folder;
  if (!placeOf(ref, &folder, nullptr)) return errFSBadFSRef;
  return moveItem(ref, folder, volumeName.bytes, way, newRef);
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
  const VolumeName volumeName = volumeNameFromUnicode({name, length});
  {
    const Location place(folder, volumeName.bytes, Location::For::kChanging);
    if (place.status() != noErr) return place.status();
    if (volumeName.result != noErr) return volumeName.result;
    if (const OSErr result = make(place); result != noErr) return result;
  }
  const FSRef made{nodes().intern(folder.node, volumeName.bytes)};
  if (ref != nullptr) *ref = made;
  if (fsSpec == nullptr) return noErr;
  return FSGetCatalogInfo(&made, kFSCatInfoNone, nullptr, nullptr, fsSpec, nullptr);
}

}  // namespace

OSErr FSCreateFileUnicode(const FSRef* folder, std::size_t length, const UniChar* name, FSRef* ref,
                          FSSpec* fsSpec) {
  return create(*folder, length, name, ref, fsSpec, [](const Location& place) -> OSErr {
    const int descriptor = place.open(O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (descriptor < 0) return resultFromErrno(errno);
    const OSErr result = closeFile(host().calls, descriptor);
    if (result != noErr) place.unlink(0);  // a failed call makes nothing
    return result;
  });
}

OSErr FSCreateDirectoryUnicode(const FSRef* folder, std::size_t length, const UniChar* name,
                               FSRef* ref, FSSpec* fsSpec, std::uint32_t* dirID) {
  FSRef made;
  const OSErr result = create(*folder, length, name, &made, fsSpec,
                              [](const Location& place) { return resultOf(place.mkdir(0777)); });
  if (result != noErr) return result;
  if (ref != nullptr) *ref = made;
  if (dirID != nullptr) *dirID = made.node;
  return noErr;
}

OSErr FSRenameUnicode(const FSRef* ref, std::size_t length, const UniChar* name,
                      std::uint32_t /*encodingHint*/, FSRef* newRef) {
  return moveToName(*ref, {name, length}, renameWithoutReplacing, newRef);
}

OSErr FSAddNameUnicode(const FSRef* ref, std::size_t length, const UniChar* name, FSRef* newRef) {
  return moveToName(*ref, {name, length}, addSecondName, newRef);
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
  if (place.unlink(0) == 0) return noErr;
  const int error = errno;  // EISDIR or EPERM for a folder, by system
  if (!itemInfo(*ref).isFolder()) return failureAt(*ref, error);
  if (place.unlink(AT_REMOVEDIR) == 0) return noErr;
  // POSIX allows EEXIST too for a folder that is not empty.
  return errno == EEXIST ? fBsyErr : failureAt(*ref, errno);
}

OSErr FSFlushObject(const FSRef* ref) {
  return callOnOpenItem(*ref, [](int descriptor) {
    const int returned = host().calls.flush(descriptor);
    return returned != 0 && (errno == EINVAL || isUnsupported(errno)) ? 0 : returned;
  });
}

OSErr FSFlushVolume(const FSRef* ref) {
  return callOnOpenItem(*ref, host().calls.flushVolume);
}

}  // namespace cairnset
