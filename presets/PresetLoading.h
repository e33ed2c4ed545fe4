// Loading: walk (host/files/FolderWalk.h), read (host/files/FileReading.h) and build.
#pragma once

#include <cstddef>
#include <deque>
#include <optional>
#include <vector>

#include "host/files/FileReading.h"
#include "host/files/FolderWalk.h"

namespace cairnset {

class PresetLimb;
class PresetList;

/// Loads folders one after the other. While presets are built from what was walked and read, the
/// reading goes on ahead, also into the folders that come next; so the lists are not done yet then.
class PresetLoading {
 public:
  struct Result {
    OSErr listed;     // how the listing of the folder itself went
    OSStatus status;  // of the last file that was closed, or folder that was listed
  };

  /// Says what is to be loaded after all that was added before: the presets of the list's kind that
  /// lie in the folder or below it. The folder must exist by now.
  void add(PresetList& list, const FSRef& folder, PresetLimb& limb);

  /// Builds what was added first: a limb for each folder below, and all presets, in load order.
  /// What the list knows already stays, but known limbs are set anew. Files that cannot be opened
  /// for writing or read, and those of no or another kind, are passed over.
  [[nodiscard]] Result build();

 private:
  struct Folder {
    PresetList* list;
    FSRef ref;
    PresetLimb* limb;
  };

  struct Found {
    bool isTop;  // a folder of _folders, and not something in it
    FolderWalk::Item item;
  };

  bool walkOn();
  void walkAhead();

  std::vector<Folder> _folders;
  std::size_t _walked = 0;          // how many of them the walk has begun with
  std::size_t _built = 0;           // and how many were built
  std::optional<FolderWalk> _walk;  // of the last one that it has begun with
  FileReading _reading;
  std::deque<Found> _ahead;  // what the walk found and is not built yet
};

/// Makes the first preset named "Default", case ignored, the kind's ROM preset of index 0, and
/// writes it where it was not; makes one in the root folder where there is none.
void makeSureOfDefault(PresetList& list);

}  // namespace cairnset
