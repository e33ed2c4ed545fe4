// Where a place is, as the system calls take it. Internal to the host layer.
#pragma once

#include <climits>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <sys/stat.h>

#include "host/HostTypes.h"
#include "host/ResultCodes.h"

namespace cairnset {

struct SystemCalls;

/// A place as the pair (folder descriptor, path) that the ...at calls take. Almost always that is
/// the absolute path alone. Where that is longer than the system takes, or the place is for a
/// change, its folder is open as long as this object lives.
class Location {
 public:
  enum class For {
    kLooking,  // or opening, which follows no link on the way by itself
    // Any other call that changes something: by the name, in a folder that was opened without
    // following links. Else a folder that is swapped for a link would lead the change elsewhere.
    kChanging,
  };

  /// The place of a node.
  explicit Location(const FSRef& ref, For purpose = For::kLooking);
  /// The place called `volumeName` in a folder; interns nothing.
  Location(const FSRef& folder, std::string_view volumeName, For purpose);
  /// The place called `volumeName` beside one that is for a change, whose folder serves both and
  /// must live as long.
  Location(const Location& sibling, std::string_view volumeName);
  /// A place by its folder's absolute path, for any thread.
  Location(const SystemCalls& calls, std::string_view folderPath, std::string_view volumeName,
           For purpose = For::kLooking);
  ~Location();
  Location(const Location&) = delete;
  Location& operator=(const Location&) = delete;

  /// errFSBadFSRef for a reference that was never a place, or what kept the folder from being
  /// opened; nothing else may be asked then.
  OSErr status() const { return _status; }
  int folder() const { return _folder; }
  const char* path() const { return _path; }

 private:
  void locate(std::string_view folderPath, std::string_view name, For purpose);
  void putName(std::size_t start, std::string_view name);

  const SystemCalls& _calls;
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

/// Opens the item for one call on its descriptor, which returns -1 and errno where it fails.
OSErr callOnOpenItem(const FSRef& ref, const std::function<int(int descriptor)>& call);

}  // namespace cairnset
