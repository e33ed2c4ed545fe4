#include "host/files/HeldFolder.h"

#include <cerrno>

#include "host/Host.h"
#include "host/files/Retries.h"

namespace cairnset {

namespace {

int applyLock(int operation) {
  return retried(
      [operation] { return host().calls.flock(host().folders.descriptor(), operation); });
}

}  // namespace

HeldFolder::HeldFolder(const FSRef& folder) : _folder(folder) {
  (void)host().folders.hold(folder.node);
}

HeldFolder::~HeldFolder() {
  (void)host().folders.hold(0);
}

bool HeldFolder::lock() {
  return applyLock(LOCK_EX | LOCK_NB) == 0 || (errno != EWOULDBLOCK && errno != EAGAIN);
}

void HeldFolder::unlock() {
  (void)applyLock(LOCK_UN);
}

}  // namespace cairnset
