#include "host/files/Retries.h"

#include <chrono>

#include "host/Host.h"

namespace cairnset {

namespace {

constexpr int kMost = 2;
// Short, since each of many files on a failing disk may cost one.
constexpr std::chrono::milliseconds kPause{1};

}  // namespace

bool Retries::wants(int error) {
  const bool isPassing =
      error == EIO || error == ENFILE || error == EMFILE || error == ENOMEM || error == EDQUOT;
  if (error != EINTR && (!isPassing || _passing == kMost)) return false;
  if (isPassing && ++_passing == kMost) host().calls.sleep(kPause);
  _isRepeated = true;
  return true;
}

}  // namespace cairnset
