// Where a place is, as the system calls take it, and how what lies there is opened: no link is
// followed, and nothing is waited for. Internal to the host layer.
#pragma once

#include <climits>
#include <cstddef>
#include <cstdint>
#include <fcntl.h>
#include <functional>
#include <memory>
#include <string_view>
#include <sys/stat.h>

#include "host/HostTypes.h"
#include "host/ResultCodes.h"
#include "host/files/FolderPaths.h"
#include "host/files/Retries.h"
#include "host/files/SystemCalls.h"
#include "host/text/Names.h"

namespace cairnset {

/// A place as the pair (folder descriptor, path) that the ...at calls take: the path from the held
/// folder or, outside it, the absolute path (host/files/FolderPaths.h). Where that is longer than
/// the system takes, or the place is for a change, its folder is open as long as this object lives.
class Location {
 public:
  enum class For {
    kLooking,  // or for open, which follows no link by itself
    // Any other call that changes something: by name, in a folder opened without following links.
    // Otherwise a folder swapped for a link would redirect the change.
    kChanging,
  };

  /// The place of a node.
  explicit Location(const FSRef& ref, For purpose = For::kLooking);
  /// The place called `volumeName` in a folder; interns nothing.
  Location(const FSRef& folder, std::string_view volumeName, For purpose);
  /// The place called `volumeName` beside one that is for a change. Both use its folder, so it must
  /// live as long.
  Location(const Location& sibling, std::string_view volumeName);
  /// A place by its folder's path from a base, for any thread.
  Location(const SystemCalls& calls, int base, std::string_view folderPath,
           std::string_view volumeName);
  ~Location();
  Location(const Location&) = delete;
  Location& operator=(const Location&) = delete;

  /// errFSBadFSRef for a reference that was never a place, or why the folder could not be opened.
  /// Nothing else may be used unless it is noErr.
  OSErr status() const { return _status; }
  int folder() const { return _folder; }
  const char* path() const { return _path; }

  // The system calls of these names, repeated where they fail for a moment.
  [[nodiscard]] int lstat(struct stat& out) const {
    return retried([&] { return _calls.lstat(_folder, _path, &out); });
  }
  [[nodiscard]] int open(int flags, mode_t mode) const {
    return retried([=, this] { return _calls.open(_folder, _path, flags, mode); });
  }
  [[nodiscard]] int mkdir(mode_t mode) const {
    return retried([=, this] { return _calls.mkdir(_folder, _path, mode); }, EEXIST);
  }
  int unlink(int flags) const {
    return retried([=, this] { return _calls.unlink(_folder, _path, flags); }, ENOENT);
  }

 private:
  void locateIn(std::uint32_t folder, std::string_view name, For purpose);
  void locate(int base, std::string_view folderPath, std::string_view name, For purpose);
  void putName(std::size_t start, std::string_view name);

  const SystemCalls& _calls;
  OSErr _status = noErr;
  int _folder = AT_FDCWD;
  int _descriptor = -1;  // to close
  std::shared_ptr<const OpenFolder> _deep;
  char _path[PATH_MAX];
};

/// What the volume says of the item itself, links not followed.
struct ItemInfo {
  OSErr result;
  struct stat info;  // only after noErr

  bool isFolder() const { return result == noErr && S_ISDIR(info.st_mode); }
};
[[nodiscard]] ItemInfo itemInfo(const FSRef& ref);
inline bool isOneItem(const struct stat& a, const struct stat& b) {
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

/// The volume name of `name` for an item in `folder`. dirNFErr where that is no real folder,
/// bdNamErr where it can hold no such name.
[[nodiscard]] VolumeName volumeNameIn(const FSRef& folder, std::u16string_view name);

/// The result code of a failed call on the item at `ref`. A missing item is fnfErr, a missing
/// folder dirNFErr; a folder that is a link counts as missing, so that nothing is found behind one.
[[nodiscard]] OSErr failureAt(const FSRef& ref, int error);

// --- Opening; but for callOnOpenItem for any thread ----------------------------------------------

/// A descriptor that is the caller's to close.
struct Opened {
  int descriptor = -1;    // -1 where it could not be opened
  OSErr result = noErr;   // why not: fnfErr, permErr ...
  std::int64_t size = 0;  // of a file, in bytes
};

/// Opens a regular file with the permissions (fsRdPerm ...) of a fork; ioErr at once where there is
/// a FIFO, a socket, a device or a folder. `folder` and `path` as for openat.
[[nodiscard]] Opened openFile(const SystemCalls& calls, int folder, const char* path,
                              std::int8_t permissions);

/// Its two steps. The first does not wait either, whatever took the file's place. The second closes
/// the descriptor unless it is that of a regular file.
[[nodiscard]] Opened openListedFile(const SystemCalls& calls, int folder, const char* path,
                                    std::int8_t permissions);
[[nodiscard]] Opened checkedFile(const SystemCalls& calls, int descriptor);

/// Closes it. A close that fails is a write that may be lost.
[[nodiscard]] OSErr closeFile(const SystemCalls& calls, int descriptor);

/// The result code for a folder that could not be opened or listed; dirNFErr where it is missing,
/// or a link is on the way.
[[nodiscard]] OSErr folderFailure(int error);
/// Opens a folder to find things in, or with the access O_RDONLY.
[[nodiscard]] Opened openFolderAt(const SystemCalls& calls, int folder, const char* path,
                                  int access = kToFindIn);
/// The same by a path of any length, which must not be empty; the folders above are only to find
/// things in.
[[nodiscard]] Opened openFolder(const SystemCalls& calls, int folder, std::string_view path,
                                int access = kToFindIn);

/// Opens the item for one call on its descriptor, which returns -1 and sets errno where it fails.
[[nodiscard]] OSErr callOnOpenItem(const FSRef& ref,
                                   const std::function<int(int descriptor)>& call);

}  // namespace cairnset
