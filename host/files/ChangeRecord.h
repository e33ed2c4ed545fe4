// What a run changes on the disk, or in a dry run would change.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/HostTypes.h"

namespace cairnset {

struct SystemCalls;

/// One step.
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
  bool operator==(const FileChange&) const = default;
};

/// "make folder", "make", "rename", "move", "replace", "rewrite" or "delete".
[[nodiscard]] const char* wordsFor(FileChange::Kind kind);

/// As long as this object lives, it records what is changed through a table of system calls, by
/// default that of the host in use. What is open at its start is not known to it.
class ChangeRecord {
 public:
  ChangeRecord();
  explicit ChangeRecord(SystemCalls& calls);
  ~ChangeRecord();
  ChangeRecord(const ChangeRecord&) = delete;
  ChangeRecord& operator=(const ChangeRecord&) = delete;

  /// The changes so far, in order; what was done twice to one file, once. The paths of what is
  /// below the folder are relative to it, all others absolute. They have the volume's bytes.
  [[nodiscard]] std::vector<FileChange> changesIn(const FSRef& folder) const;

 private:
  class Recorder;
  std::unique_ptr<Recorder> _recorder;
};

}  // namespace cairnset
