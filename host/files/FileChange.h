// One step of what a run changes on the disk, or would change if it were not a dry run.
#pragma once

#include <string>
#include <vector>

#include "host/HostTypes.h"

namespace cairnset {

struct FileChange {
  enum class Kind {
    kMakeFolder,
    kMake,     // a file, an alias, or a second name of a file
    kRename,   // within its folder
    kMove,     // to another folder, perhaps under another name
    kReplace,  // `newPath`, by the item at `path`
    kRewrite,
    kDelete,
  };

  Kind kind;
  std::string path;  // absolute, as it is at that moment
  std::string newPath = {};
};

/// The changes, with all paths that are below the folder relative to it.
[[nodiscard]] std::vector<FileChange> relativeTo(const FSRef& folder,
                                                 std::vector<FileChange> changes);

}  // namespace cairnset
