#include "host/SystemVersion.h"

#include "host/Host.h"

namespace cairnset {

namespace {

bool isVersionAtLeast(long wanted) {
  long version = 0;
  return Gestalt(kSystemVersionSelector, &version) == noErr && version >= wanted;
}

}  // namespace

GestaltAnswers& gestaltAnswers() {
  return host().gestalt;
}

OSErr Gestalt(std::uint32_t selector, long* response) {
  std::optional<long> answer;
  if (selector == kSystemVersionSelector) answer = gestaltAnswers().systemVersion;
  if (selector == kMinorVersionSelector) answer = gestaltAnswers().minorVersion;
  if (!answer) return paramErr;
  *response = *answer;
  return noErr;
}

bool isRunningOSX() {
  return isVersionAtLeast(0x1000);
}

bool isRunningTiger() {
  return isVersionAtLeast(0x1040);
}

const char* getSystemVersionString() {
  long minor = 0;
  return Gestalt(kMinorVersionSelector, &minor) == noErr && minor <= 4 ? "Tiger" : nullptr;
}

}  // namespace cairnset
