#include "host/files/SystemCalls.h"

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sched.h>
#include <stdlib.h>
#include <string>
#include <string_view>
#include <sys/xattr.h>
#include <thread>
#include <unistd.h>
#if __has_include(<linux/openat2.h>)
#include <linux/openat2.h>
#include <sys/syscall.h>
#endif

namespace cairnset {

namespace {

int openByName(int folder, const char* name, int flags, mode_t mode) {
  return ::openat(folder, name, flags | O_NOFOLLOW, mode);
}

// One folder after the other, for systems without an open that follows no links.
int openStepByStep(int folder, std::string_view path, int flags, mode_t mode) {
  constexpr int kStep = kToFindIn | O_DIRECTORY | O_CLOEXEC;
  int at = -1;
  if (path.front() == '/') {
    folder = at = openByName(AT_FDCWD, "/", kStep, 0);
    path.remove_prefix(1);
    if (at < 0 || path.empty()) return at;
  }
  for (;;) {
    const std::size_t slash = path.find('/');
    const bool isLast = slash == std::string_view::npos;
    const std::string name(path.substr(0, slash));
    const int next = isLast ? openByName(folder, name.c_str(), flags, mode)
                            : openByName(folder, name.c_str(), kStep, 0);
    const int error = errno;
    if (at >= 0) ::close(at);
    errno = error;
    if (isLast || next < 0) return next;
    folder = at = next;
    path.remove_prefix(slash + 1);
  }
}

int openFile(int folder, const char* path, int flags, mode_t mode) {
  if (std::string_view(path).find('/') == std::string_view::npos) {
    return openByName(folder, path, flags, mode);
  }
#if defined(SYS_openat2)
  struct open_how how = {};
  how.flags = static_cast<unsigned>(flags | O_LARGEFILE);
  how.mode = (flags & O_CREAT) != 0 ? mode : 0;
  how.resolve = RESOLVE_NO_SYMLINKS;
  static std::atomic<bool> isKnown = true;  // of the system that this runs on
  if (isKnown) {
    const auto descriptor =
        static_cast<int>(::syscall(SYS_openat2, folder, path, &how, sizeof how));
    // EPERM: some sandboxes forbid every call that they do not know.
    if (descriptor >= 0 || (errno != ENOSYS && errno != EPERM)) return descriptor;
    isKnown = errno == EPERM;
  }
#elif defined(O_NOFOLLOW_ANY)
  return ::openat(folder, path, (flags & ~O_NOFOLLOW) | O_NOFOLLOW_ANY, mode);
#endif
  return openStepByStep(folder, path, flags, mode);
}

int renameNoReplace([[maybe_unused]] int oldFolder, [[maybe_unused]] const char* oldPath,
                    [[maybe_unused]] int newFolder, [[maybe_unused]] const char* newPath) {
#if defined(__linux__)
  return ::renameat2(oldFolder, oldPath, newFolder, newPath, unsigned{RENAME_NOREPLACE});
#elif defined(__APPLE__)
  return ::renameatx_np(oldFolder, oldPath, newFolder, newPath, unsigned{RENAME_EXCL});
#else
  errno = ENOSYS;
  return -1;
#endif
}

// Interrupted, it is repeated here; after another failure it must not be.
template <typename Flush>
int untilFlushed(Flush flush) {
  int result;
  do
    result = flush();
  while (result < 0 && errno == EINTR);
  return result;
}

int flushDescriptor(int descriptor) {
#if defined(__APPLE__)
  // There, fsync leaves the bytes in the drive's own cache, but many network volumes know only it.
  if (untilFlushed([=] { return ::fcntl(descriptor, F_FULLFSYNC); }) == 0) return 0;
  if (errno == EIO) return -1;
#endif
  return untilFlushed([=] { return ::fsync(descriptor); });
}

int flushVolume([[maybe_unused]] int descriptor) {
#if defined(__linux__)
  return untilFlushed([=] { return ::syncfs(descriptor); });
#else
  errno = ENOSYS;
  return -1;
#endif
}

ssize_t getAttribute(int descriptor, const char* name, void* value, size_t size) {
#if defined(__APPLE__)
  return ::fgetxattr(descriptor, name, value, size, 0, 0);
#else
  return ::fgetxattr(descriptor, name, value, size);
#endif
}

int setAttribute(int descriptor, const char* name, const void* value, size_t size) {
#if defined(__APPLE__)
  return ::fsetxattr(descriptor, name, value, size, 0, 0);
#else
  return ::fsetxattr(descriptor, name, value, size, 0);
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
  if (::fstatat(folder, path, &info, AT_SYMLINK_NOFOLLOW) != 0) return -1;
  *out = info.st_birthtimespec;
  return 0;
#endif
  errno = ENOTSUP;
  return -1;
}

int ownDescriptors() {
// ThreadSanitizer would take the same number in two tables for one descriptor.
#if defined(__linux__) && !defined(__SANITIZE_THREAD__)
  return ::unshare(CLONE_FILES);
#else
  errno = ENOSYS;
  return -1;
#endif
}

}  // namespace

SystemCalls::SystemCalls()
    : open(openFile),
      close(::close),
      fstat(::fstat),
      pread(::pread),
      pwrite(::pwrite),
      ftruncate(::ftruncate),
      lstat([](int folder, const char* path, struct stat* out) {
        return ::fstatat(folder, path, out, AT_SYMLINK_NOFOLLOW);
      }),
      mkdir(::mkdirat),
      renameNoReplace(cairnset::renameNoReplace),
      rename(::renameat),
      link([](int oldFolder, const char* oldPath, int newFolder, const char* newPath) {
        return ::linkat(oldFolder, oldPath, newFolder, newPath, 0);
      }),
      unlink(::unlinkat),
      symlink(::symlinkat),
      readlink(::readlinkat),
      realpath(::realpath),
      fdopendir(::fdopendir),
      readdir(::readdir),
      closedir(::closedir),
      getAttribute(cairnset::getAttribute),
      setAttribute(cairnset::setAttribute),
      birthTime(cairnset::birthTime),
      statvfs(::statvfs),
      flush(flushDescriptor),
      flushVolume(cairnset::flushVolume),
      flock(::flock),
      ownDescriptors(cairnset::ownDescriptors),
      sleep([](std::chrono::milliseconds time) { std::this_thread::sleep_for(time); }) {}

}  // namespace cairnset
