// One step of what a run would change on the disk, as a dry run reports it.
#pragma once

#include <string>

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

}  // namespace cairnset
