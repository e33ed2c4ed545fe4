// Loading: walk (host/files/FolderWalk.h), read (host/files/FileReading.h) and build.
#pragma once

#include <cstddef>
#include <deque>
#include <optional>
#include <utility>
#include <vector>

#include "host/files/FileReading.h"
#include "host/files/FolderWalk.h"
#include "presets/Preset.h"

namespace cairnset {

class PresetLimb;
class PresetList;

/// Loads folders one after the other. While presets are built, files are read ahead, also from the
/// folders added later, whose lists are still incomplete.
class PresetLoading {
 public:
  struct Result {
    OSErr listed;     // the result of listing the folder itself
    OSStatus status;  // of the last file that was closed, or folder that was listed
  };

  /// Queues the presets of the list's kind in the folder and below it. The folder must exist.
  void add(PresetList& list, const FSRef& folder, PresetLimb& limb);

  /// Builds the next folder in the queue: a limb for each folder below, and all presets, in load
  /// order. Known presets stay; known limbs are updated. Files that cannot be opened for writing or
  /// read, and those of no or another kind, are skipped.
  [[nodiscard]] Result build();

  /// Forgets what was read ahead, after a write: the file may have a second name there.
  void discardAhead();

 private:
  struct Folder {
    PresetList* list;
    FSRef ref;
    PresetLimb* limb;
  };

  struct Found {
    bool isTop;  // a folder of _folders, not an item in it
    FolderWalk::Item item;
  };

  bool walkOn();
  void walkAhead();

  std::vector<Folder> _folders;
  std::size_t _walked = 0;          // how many of them the walk has started
  std::size_t _built = 0;           // how many of them were built
  std::optional<FolderWalk> _walk;  // of the last one started
  std::optional<FileReading> _reading{std::in_place, Preset::isWhole};
  std::deque<Found> _ahead;  // found by the walk, not built yet
};

/// Makes the first preset named "Default", case ignored, ROM with index 0, and writes it if it was
/// not, unless the file is not a whole preset, or is not the usual one and others were passed over.
/// If there is none, makes one in the root folder; if
/// that fails, the last preset of the list takes its part in memory, and is never written. False if
/// no file was touched.
[[nodiscard]] bool makeSureOfDefault(PresetList& list);

}  // namespace cairnset
