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

bool HeldFolder::lock(std::chrono::milliseconds mostWaiting) {
  constexpr std::chrono::milliseconds kBetweenTries{20};
  while (applyLock(LOCK_EX | LOCK_NB) != 0 && (errno == EWOULDBLOCK || errno == EAGAIN)) {
    if (mostWaiting.count() <= 0) return false;
    host().calls.sleep(kBetweenTries);
    mostWaiting -= kBetweenTries;
  }
  return true;
}

void HeldFolder::unlock() {
  (void)applyLock(LOCK_UN);
}

}  // namespace cairnset
