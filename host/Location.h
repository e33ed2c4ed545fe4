// Where a place is, as the system calls take it. Internal to the host layer.
#pragma once

#include <climits>
#include <cstdint>
#include <dirent.h>
#include <functional>
#include <string>
#include <string_view>
#include <sys/stat.h>

#include "host/HostTypes.h"
#include "host/ResultCodes.h"

namespace cairnset {

/// A place as the pair (folder descriptor, path) that the ...at calls take. Almost always that is
/// the absolute path alone; where it is longer than the system takes, the folders on the way are
/// opened one stretch after the other, and the last one stays open as long as this object lives.
class Location {
 public:
  /// How a place may be given.
  enum class By {
    kPath,        // the absolute path wherever the system takes it
    kKeptFolder,  // by the name alone where the folder that the place is in is kept open
    // By the name alone, in its folder, which this object opens. For every change by another call
    // than open: those follow the links that somebody may have swapped the folders above for.
    kOwnFolder,
  };

  /// The place of a node.
  explicit Location(const FSRef& ref, By by = By::kPath);
  /// The place called `volumeName` in a folder; interns nothing.
  Location(const FSRef& folder, std::string_view volumeName, By by);
  /// The place called `volumeName` beside one that has a folder of its own, which serves both and
  /// must live as long.
  Location(const Location& sibling, std::string_view volumeName);
  ~Location();
  Location(const Location&) = delete;
  Location& operator=(const Location&) = delete;

  /// errFSBadFSRef for a reference that was never a place, or what kept a folder on the way from
  /// being opened; nothing else may be asked then.
  OSErr status() const { return _status; }
  int folder() const { return _folder; }
  const char* path() const { return _path; }
  /// Whether path() is absolute, so that calls which take no folder can be made too.
  bool isAbsolute() const { return _path[0] == '/'; }

 private:
  void locate(std::uint32_t folder, std::string_view name, By by);
  void putName(std::size_t start, std::string_view name);
  void openStretches(std::string_view folderPath);

  OSErr _status = noErr;
  int _folder;
  int _descriptor = -1;
  char _path[PATH_MAX];
};

/// Keeps one folder open while its files are gone through, so that the path to it is not walked
/// again for each of them. Only Locations that ask for it use it, and only as long as nothing has
/// been renamed, moved or deleted: then it may no longer be the folder of its place. Where it
/// cannot be opened, paths do.
void keepFolderOpen(const FSRef& folder);
/// The same of a folder that is open already; takes the listing over.
void keepFolderOpen(const FSRef& folder, DIR* listing);
void closeKeptFolder();

/// What the volume says of the item itself, links not followed.
OSErr itemInfo(const FSRef& ref, struct stat& info);

/// noErr where `folder` is a real folder; dirNFErr where it is missing or is anything else, an
/// alias to a folder included, so that nothing is ever made or looked for behind one.
OSErr requireFolder(const FSRef& folder);

/// The volume name of `name` for an item in `folder`. dirNFErr where that is no real folder,
/// bdNamErr where it can hold no such name.
OSErr volumeNameIn(const FSRef& folder, std::size_t length, const UniChar* name,
                   std::string& volumeName);

/// The result code of a failed call on the item at `ref`, telling a missing item (fnfErr) from a
/// missing folder (dirNFErr).
OSErr failureAt(const FSRef& ref, int error);

/// Opens the item for one call on its descriptor, which answers -1 and errno where it fails.
OSErr callOnOpenItem(const FSRef& ref, const std::function<int(int descriptor)>& call);

/// For after a place was renamed, moved or deleted. The forks that are open on it, or on any place
/// within it, become strangers to it: whoever opens the place again must not be handed the old
/// file. The folder that is kept open is closed.
void placeChanged(const FSRef& ref);

}  // namespace cairnset
