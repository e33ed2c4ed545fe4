// The system calls that the host layer makes on files, in one table.
//
// Everything under the File Manager goes through systemCalls(), so that a test can count the calls,
// fail the n-th or cut it short by putting its own functions into the table. Each member has the
// signature, the result and the errno of the call that it is named for. For the host layer and its
// tests only.
#pragma once

#include <cstddef>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/types.h>

namespace cairnset {

struct SystemCalls {
  /// openat, which follows no link anywhere on the way: ELOOP or ENOTDIR where one is met. Folders
  /// above the file can be swapped for links by others at any moment, and a path that was free of
  /// them when it was listed may not be now.
  int (*open)(int folder, const char* path, int flags, mode_t mode);
  int (*close)(int descriptor);
  int (*fstat)(int descriptor, struct stat* out);
  ssize_t (*pread)(int descriptor, void* buffer, size_t count, off_t offset);
  ssize_t (*pwrite)(int descriptor, const void* buffer, size_t count, off_t offset);
  int (*ftruncate)(int descriptor, off_t size);
  int (*lstat)(int folder, const char* path, struct stat* out);  // fstatat, links not followed
  int (*mkdir)(int folder, const char* path, mode_t mode);       // mkdirat
  /// Renames without replacing: EEXIST where the new name is taken; EINVAL, ENOSYS or ENOTSUP where
  /// the volume or the system has no such rename.
  int (*renameNoReplace)(int oldFolder, const char* oldPath, int newFolder, const char* newPath);
  int (*rename)(int oldFolder, const char* oldPath, int newFolder,
                const char* newPath);                                                   // renameat
  int (*link)(int oldFolder, const char* oldPath, int newFolder, const char* newPath);  // linkat
  int (*unlink)(int folder, const char* path, int flags);                               // unlinkat
  int (*symlink)(const char* target, int folder, const char* path);                     // symlinkat
  ssize_t (*readlink)(int folder, const char* path, char* buffer, size_t size);  // readlinkat
  char* (*realpath)(const char* path, char* resolved);
  DIR* (*fdopendir)(int descriptor);
  struct dirent* (*readdir)(DIR* listing);
  int (*closedir)(DIR* listing);
  /// An extended attribute of the item itself: the number of bytes got, or -1; ENODATA where the
  /// item has none of that name, ENOTSUP where the volume has no such attributes. Set by descriptor
  /// since, as with open, whatever changes something must not go through a link.
  ssize_t (*getAttribute)(const char* path, const char* name, void* value, size_t size);
  int (*setAttribute)(int descriptor, const char* name, const void* value, size_t size);
  /// The item's birth time in whole seconds and nanoseconds since 1970; ENOTSUP where the volume
  /// keeps none.
  int (*birthTime)(int folder, const char* path, struct timespec* out);
  int (*statvfs)(const char* path, struct statvfs* out);
  /// Waits until the disk has what the file or folder holds (fsync).
  int (*flush)(int descriptor);
  /// The same for the whole volume that it lies on (syncfs); ENOSYS where the system cannot.
  int (*flushVolume)(int descriptor);
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

/// The table in use. A test may change its members, and puts them back.
SystemCalls& systemCalls();

}  // namespace cairnset
