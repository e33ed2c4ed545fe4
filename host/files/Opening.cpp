#include "host/files/Opening.h"

#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>

#include "host/files/FileManager.h"
#include "host/files/SystemCalls.h"

namespace cairnset {

Opened openFile(const SystemCalls& calls, int folder, const char* path, std::int8_t permissions) {
  const int access = permissions == fsRdPerm   ? O_RDONLY
                     : permissions == fsWrPerm ? O_WRONLY
                                               : O_RDWR;
  // O_NONBLOCK: what was a file when it was listed may be a FIFO by now, and must not hang us.
  const int descriptor =
      calls.open(folder, path, access | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0);
  if (descriptor < 0) return {-1, resultFromErrno(errno)};
  struct stat info;
  OSErr result = noErr;
  if (calls.fstat(descriptor, &info) != 0) {
    result = resultFromErrno(errno);
  } else if (S_ISREG(info.st_mode)) {
    return {descriptor, noErr, info.st_size};
  } else {
    result = ioErr;
  }
  calls.close(descriptor);
  return {-1, result};
}

OSErr closeFile(const SystemCalls& calls, int descriptor) {
  // After EINTR the descriptor is gone all the same; closing again could hit another's.
  return calls.close(descriptor) == 0 || errno == EINTR ? noErr : resultFromErrno(errno);
}

// A path that is longer than the system takes is opened one stretch after the other.
Opened openFolder(const SystemCalls& calls, std::string_view path) {
  int folder = AT_FDCWD;
  while (!path.empty()) {
    std::string_view stretch = path;
    if (stretch.size() >= PATH_MAX) {
      stretch = stretch.substr(0, stretch.substr(0, PATH_MAX - 1).rfind('/'));
    }
    char text[PATH_MAX];
    text[stretch.copy(text, sizeof text - 1)] = '\0';
    const int next = calls.open(folder, text, kToFindIn | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC, 0);
    const int error = errno;
    if (folder != AT_FDCWD) calls.close(folder);
    if (next < 0) {
      return {-1, error == ENOENT || error == ELOOP ? OSErr{dirNFErr} : resultFromErrno(error)};
    }
    folder = next;
    path.remove_prefix(stretch.size());
    while (!path.empty() && path.front() == '/')
      path.remove_prefix(1);
  }
  return {folder};
}

}  // namespace cairnset
