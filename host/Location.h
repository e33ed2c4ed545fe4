// Where a place is, as the system calls take it. Internal to the host layer.
#pragma once

#include <climits>
#include <cstdint>
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
  /// The place of a node.
  explicit Location(const FSRef& ref);
  /// The place called `volumeName` in a folder; interns nothing.
  Location(const FSRef& folder, std::string_view volumeName);
  ~Location();
  Location(const Location&) = delete;
  Location& operator=(const Location&) = delete;

  /// errFSBadFSRef for a reference that was never a place, or what kept a folder on the way from
  /// being opened; nothing else may be asked then.
  OSErr status() const { return _status; }
  int folder() const { return _folder; }
  const char* path() const { return _path; }
  /// Whether path() is absolute, so that calls which take no folder can be made too.
  bool isAbsolute() const { return _descriptor < 0; }

 private:
  void locate(std::uint32_t folder, std::string_view name);
  void openStretches(std::string_view folderPath);

  OSErr _status = noErr;
  int _folder;
  int _descriptor = -1;
  char _path[PATH_MAX];
};

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

/// Makes the forks that are open on a place, or on any place within it, strangers to it, after it
/// was renamed, moved or deleted: whoever opens the place again must not be handed the old file.
void forgetOpenForks(const FSRef& ref);

}  // namespace cairnset
