// The folder that a run works on.
#pragma once

#include <chrono>

#include "host/HostTypes.h"

namespace cairnset {

/// Keeps a folder open as long as this object lives, of which there is at most one. All that is
/// below it is found from there: the work goes on in the same folder if it is moved, or if its path
/// comes to lead to another.
///
/// A folder that cannot be opened is found by its path, as all others are.
class HeldFolder {
 public:
  explicit HeldFolder(const FSRef& folder);
  /// Ends the lock, too.
  ~HeldFolder();
  HeldFolder(const HeldFolder&) = delete;
  HeldFolder& operator=(const HeldFolder&) = delete;

  const FSRef& ref() const { return _folder; }

  /// Locks the folder against other runs that lock it. False if another has it all the time that
  /// this waits; true also where it cannot be locked: the volume knows no locks, or the folder may
  /// not be listed or is not open. Nothing is left on the disk, and a run that ends in any way has
  /// no lock.
  [[nodiscard]] bool lock(std::chrono::milliseconds mostWaiting);
  void unlock();

 private:
  const FSRef _folder;
};

}  // namespace cairnset
