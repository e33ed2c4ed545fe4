// What a run changes on the disk, for those who want to know.
#pragma once

#include <memory>
#include <vector>

#include "host/HostTypes.h"
#include "host/files/FileChange.h"

namespace cairnset {

/// As long as this object lives, it records what the host in use changes. What is open at its start
/// is not known to it.
class ChangeRecord {
 public:
  ChangeRecord();
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
