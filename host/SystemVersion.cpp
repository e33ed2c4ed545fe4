#include "host/SystemVersion.h"

#include <bit>

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
  const GestaltAnswers& answers = gestaltAnswers();
  std::optional<long> answer;
  if (selector == kSystemVersionSelector) answer = answers.systemVersion;
  if (selector == kMinorVersionSelector) answer = answers.minorVersion;
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

bool isRunningBigEndian() {
  return std::endian::native == std::endian::big;
}

bool isRunningWin() {
  return false;
}

}  // namespace cairnset
