#include "host/SystemCalls.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <stdlib.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace cairnset {

namespace {

int openFile(int folder, const char* path, int flags, mode_t mode) {
  int descriptor;
  do
    descriptor = ::openat(folder, path, flags, mode);
  while (descriptor < 0 && errno == EINTR);
  return descriptor;
}

int lstatFile(int folder, const char* path, struct stat* out) {
  return ::fstatat(folder, path, out, AT_SYMLINK_NOFOLLOW);
}

int renameNoReplace([[maybe_unused]] int oldFolder, [[maybe_unused]] const char* oldPath,
                    [[maybe_unused]] int newFolder, [[maybe_unused]] const char* newPath) {
#if defined(__linux__)
  return ::renameat2(oldFolder, oldPath, newFolder, newPath, RENAME_NOREPLACE);
#elif defined(__APPLE__)
  return ::renameatx_np(oldFolder, oldPath, newFolder, newPath, RENAME_EXCL);
#else
  errno = ENOSYS;
  return -1;
#endif
}

int linkFile(int oldFolder, const char* oldPath, int newFolder, const char* newPath) {
  return ::linkat(oldFolder, oldPath, newFolder, newPath, 0);
}

ssize_t getAttribute(const char* path, const char* name, void* value, size_t size) {
#if defined(__APPLE__)
  return ::getxattr(path, name, value, size, 0, XATTR_NOFOLLOW);
#else
  return ::lgetxattr(path, name, value, size);
#endif
}

int setAttribute(const char* path, const char* name, const void* value, size_t size) {
#if defined(__APPLE__)
  return ::setxattr(path, name, value, size, 0, XATTR_NOFOLLOW);
#else
  return ::lsetxattr(path, name, value, size, 0);
#endif
}

int birthTime([[maybe_unused]] int folder, [[maybe_unused]] const char* path,
              [[maybe_unused]] struct timespec* out) {
#if defined(__linux__)
  struct statx info;
  if (::statx(folder, path, AT_SYMLINK_NOFOLLOW, STATX_BTIME, &info) != 0) return -1;
  if ((info.stx_mask & STATX_BTIME) != 0) {
    out->tv_sec = static_cast<time_t>(info.stx_btime.tv_sec);
    out->tv_nsec = static_cast<decltype(out->tv_nsec)>(info.stx_btime.tv_nsec);
    return 0;
  }
#elif defined(__APPLE__)
  struct stat info;
  if (lstatFile(folder, path, &info) != 0) return -1;
  *out = info.st_birthtimespec;
  return 0;
#endif
  errno = ENOTSUP;
  return -1;
}

}  // namespace

SystemCalls& systemCalls() {
  static SystemCalls calls{openFile,    ::close,    ::fstat,     ::pread,         ::pwrite,
                           ::ftruncate, lstatFile,  ::mkdirat,   renameNoReplace, ::renameat,
                           linkFile,    ::unlinkat, ::symlinkat, ::readlinkat,    ::realpath,
                           ::fdopendir, ::readdir,  ::closedir,  getAttribute,    setAttribute,
                           birthTime,   ::statvfs};
  return calls;
}

}  // namespace cairnset
