// Which system this is; the same on every host.
#pragma once

#include <bit>
#include <cstdint>
#include <optional>

#include "host/HostTypes.h"

namespace cairnset {

inline constexpr std::uint32_t kSystemVersionSelector = 0x73797376;  // 'sysv'
inline constexpr std::uint32_t kMinorVersionSelector = 0x73797332;   // 'sys2'

/// What Gestalt returns; a query without a value fails. Only tests of older systems change it.
struct GestaltAnswers {
  std::optional<long> systemVersion = 0x1040;  // major, minor, fix in nibbles
  std::optional<long> minorVersion = 4;
};
GestaltAnswers& gestaltAnswers();

/// paramErr, leaving `response` as it was, for any other selector.
OSErr Gestalt(std::uint32_t selector, long* response);

/// Whether the system's version is at least 0x1000; false when the query fails.
bool isRunningOSX();
/// Whether it is at least 0x1040; false when the query fails.
bool isRunningTiger();
/// "Tiger" up to minor version 4; null for later ones and when the query fails. On purpose.
const char* getSystemVersionString();
constexpr bool isRunningBigEndian() {
  return std::endian::native == std::endian::big;
}
constexpr bool isRunningWin() {
  return false;
}

}  // namespace cairnset
