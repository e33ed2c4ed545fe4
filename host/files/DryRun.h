// A run that changes nothing: what it would have changed is kept in memory, where it sees it.
#pragma once

#include <memory>

namespace cairnset {

class Overlay;

/// As long as this object lives, the host in use reads the disk and writes to memory only. Files,
/// iterators and whatever else was opened in that time must be closed before its end. A
/// ChangeRecord (host/files/ChangeRecord.h) that begins after it and ends before it has what it
/// would change.
class DryRun {
 public:
  DryRun();
  ~DryRun();
  DryRun(const DryRun&) = delete;
  DryRun& operator=(const DryRun&) = delete;

  /// True if something that cannot be written was counted as if it could.
  [[nodiscard]] bool hasMetReadOnly() const;

 private:
  std::unique_ptr<Overlay> _overlay;
};

}  // namespace cairnset
