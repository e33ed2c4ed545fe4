// Opening files and folders so that no link is followed and nothing is waited for. For any thread.
#pragma once

#include <cstdint>
#include <string_view>

#include "host/ResultCodes.h"

namespace cairnset {

struct SystemCalls;

/// A descriptor that is the caller's to close.
struct Opened {
  int descriptor = -1;    // -1 where it could not be opened
  OSErr result = noErr;   // why not: fnfErr, permErr ...
  std::int64_t size = 0;  // of a file, in bytes
};

/// Opens a regular file with the permissions (fsRdPerm ...) of a fork; ioErr at once where there is
/// a FIFO, a socket, a device or a folder. `folder` and `path` as for openat.
[[nodiscard]] Opened openFile(const SystemCalls& calls, int folder, const char* path,
                              std::int8_t permissions);

/// Closes it. A close that fails is a write that may be lost.
OSErr closeFile(const SystemCalls& calls, int descriptor);

/// Opens a folder, to find things in, by an absolute path of any length. dirNFErr where it is
/// missing, or a link is on the way.
[[nodiscard]] Opened openFolder(const SystemCalls& calls, std::string_view path);

}  // namespace cairnset
