// The system calls that the host layer makes on files, in one table.
//
// Everything under the File Manager goes through the table of the host in use (host/Host.h), so
// that a test can count the calls, fail the n-th or cut it short by putting its own functions
// there. Each member has the signature, the result and the errno of the call that it is named for.
// Those that FileReading makes are made by several threads at a time. For the host layer and its
// tests only.
#pragma once

#include <cstddef>
#include <dirent.h>
#include <fcntl.h>
#include <functional>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/types.h>

namespace cairnset {

struct SystemCalls {
  /// The system's own.
  SystemCalls();

  /// openat, which follows no link anywhere on the way: ELOOP or ENOTDIR where one is met. Folders
  /// above the file can be swapped for links by others at any moment, and a path that was free of
  /// them when it was listed may not be now.
  std::function<int(int folder, const char* path, int flags, mode_t mode)> open;
  std::function<int(int descriptor)> close;
  std::function<int(int descriptor, struct stat* out)> fstat;
  std::function<ssize_t(int descriptor, void* buffer, size_t count, off_t offset)> pread;
  std::function<ssize_t(int descriptor, const void* buffer, size_t count, off_t offset)> pwrite;
  std::function<int(int descriptor, off_t size)> ftruncate;
  std::function<int(int folder, const char* path, struct stat* out)>
      lstat;  // fstatat, links not followed
  std::function<int(int folder, const char* path, mode_t mode)> mkdir;  // mkdirat
  /// Renames without replacing: EEXIST where the new name is taken; EINVAL, ENOSYS or ENOTSUP where
  /// the volume or the system has no such rename.
  std::function<int(int oldFolder, const char* oldPath, int newFolder, const char* newPath)>
      renameNoReplace;
  std::function<int(int oldFolder, const char* oldPath, int newFolder, const char* newPath)>
      rename;  // renameat
  std::function<int(int oldFolder, const char* oldPath, int newFolder, const char* newPath)>
      link;                                                                      // linkat
  std::function<int(int folder, const char* path, int flags)> unlink;            // unlinkat
  std::function<int(const char* target, int folder, const char* path)> symlink;  // symlinkat
  std::function<ssize_t(int folder, const char* path, char* buffer, size_t size)>
      readlink;  // readlinkat
  std::function<char*(const char* path, char* resolved)> realpath;
  std::function<DIR*(int descriptor)> fdopendir;
  std::function<struct dirent*(DIR* listing)> readdir;
  std::function<int(DIR* listing)> closedir;
  /// An extended attribute: the number of bytes got, or -1; ENODATA where the item has none of that
  /// name, ENOTSUP where the volume has no such attributes. By descriptor, since open goes through
  /// no link and takes paths of any length in stretches.
  std::function<ssize_t(int descriptor, const char* name, void* value, size_t size)> getAttribute;
  std::function<int(int descriptor, const char* name, const void* value, size_t size)> setAttribute;
  /// The item's birth time in whole seconds and nanoseconds since 1970; ENOTSUP where the volume
  /// keeps none.
  std::function<int(int folder, const char* path, struct timespec* out)> birthTime;
  std::function<int(const char* path, struct statvfs* out)> statvfs;
  /// Waits until the disk has what the file or folder holds (fsync).
  std::function<int(int descriptor)> flush;
  /// The same for the whole volume that it lies on (syncfs); ENOSYS where the system cannot.
  std::function<int(int descriptor)> flushVolume;
  /// Gives the calling thread a table of descriptors of its own, with all that are open now; ENOSYS
  /// where the system cannot.
  std::function<int()> ownDescriptors;
};

/// The flag of open for a folder that only serves to find things in: no permission to list it is
/// needed where the system knows such a way.
#if defined(O_PATH)
constexpr int kToFindIn = O_PATH;
#elif defined(O_SEARCH)
constexpr int kToFindIn = O_SEARCH;
#else
constexpr int kToFindIn = O_RDONLY;
#endif

}  // namespace cairnset
