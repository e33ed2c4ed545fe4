// A run that changes nothing: what it would have changed is kept in memory, where it sees it.
#pragma once

#include <memory>
#include <vector>

#include "host/HostTypes.h"
#include "host/files/FileChange.h"

namespace cairnset {

class Overlay;

/// As long as this object lives, the host in use reads the disk and writes to memory only. Files,
/// iterators and whatever else was opened in that time must be closed before its end.
class DryRun {
 public:
  DryRun();
  ~DryRun();
  DryRun(const DryRun&) = delete;
  DryRun& operator=(const DryRun&) = delete;

  /// The changes so far, in order; what would be done twice to one file, once. The paths of what is
  /// below the folder are relative to it, all others absolute. They have the volume's bytes.
  [[nodiscard]] std::vector<FileChange> changesIn(const FSRef& folder) const;
  /// True if something that cannot be written was counted as if it could.
  [[nodiscard]] bool hasMetReadOnly() const;

 private:
  std::unique_ptr<Overlay> _overlay;
};

}  // namespace cairnset
