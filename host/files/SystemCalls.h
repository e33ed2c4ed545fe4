// The system calls that the host layer makes on files, in one table.
//
// Everything under the File Manager goes through the table of the host in use (host/Host.h), so
// that a test can count the calls, fail the n-th or cut it short by putting its own functions
// there. Each member has the signature, the result and the errno of the call that it is named for;
// what failed for a moment is repeated above it (host/files/Retries.h), but for the flushes. Those
// that FileReading makes are made by several threads at a time. For the host layer and its tests
// only.
#pragma once

#include <chrono>
#include <cstddef>
#include <dirent.h>
#include <fcntl.h>
#include <functional>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/types.h>

namespace cairnset {

struct SystemCalls {
  template <typename Signature>
  using Call = std::function<Signature>;
  using OnTwoPaths = int(int oldFolder, const char* oldPath, int newFolder, const char* newPath);

  /// The system's own.
  SystemCalls();

  /// openat, but follows no link anywhere on the way: ELOOP or ENOTDIR where one is met. Others may
  /// swap the folders above the file for links at any moment, also after they were listed.
  Call<int(int folder, const char* path, int flags, mode_t mode)> open;
  Call<int(int descriptor)> close;
  Call<int(int descriptor, struct stat* out)> fstat;
  Call<ssize_t(int descriptor, void* buffer, size_t count, off_t offset)> pread;
  Call<ssize_t(int descriptor, const void* buffer, size_t count, off_t offset)> pwrite;
  Call<int(int descriptor, off_t size)> ftruncate;
  Call<int(int folder, const char* path, struct stat* out)> lstat;  // fstatat, follows no link
  Call<int(int folder, const char* path, mode_t mode)> mkdir;       // mkdirat
  /// Renames without replacing: EEXIST where the new name is taken; EINVAL, ENOSYS or ENOTSUP where
  /// the volume or the system has no such rename.
  Call<OnTwoPaths> renameNoReplace;
  Call<OnTwoPaths> rename;                                                          // renameat
  Call<OnTwoPaths> link;                                                            // linkat
  Call<int(int folder, const char* path, int flags)> unlink;                        // unlinkat
  Call<int(const char* target, int folder, const char* path)> symlink;              // symlinkat
  Call<ssize_t(int folder, const char* path, char* buffer, size_t size)> readlink;  // readlinkat
  Call<char*(const char* path, char* resolved)> realpath;
  Call<DIR*(int descriptor)> fdopendir;
  Call<struct dirent*(DIR* listing)> readdir;  // an error leaves the rest of the folder unknown
  Call<int(DIR* listing)> closedir;
  /// An extended attribute: the number of bytes got, or -1; ENODATA where the item has none of that
  /// name, ENOTSUP where the volume has no such attributes. By descriptor, since open follows no
  /// link and a path of any length can be opened in stretches.
  Call<ssize_t(int descriptor, const char* name, void* value, size_t size)> getAttribute;
  Call<int(int descriptor, const char* name, const void* value, size_t size)> setAttribute;
  /// The item's birth time in whole seconds and nanoseconds since 1970; ENOTSUP where the volume
  /// keeps none.
  Call<int(int folder, const char* path, struct timespec* out)> birthTime;
  Call<int(const char* path, struct statvfs* out)> statvfs;
  /// Waits until the file's or folder's contents are on the disk (fsync); never EINTR.
  Call<int(int descriptor)> flush;
  /// The same for the whole volume that it lies on (syncfs); ENOSYS where the system cannot.
  Call<int(int descriptor)> flushVolume;
  /// An advisory lock on the whole file or folder, which ends with its last descriptor: LOCK_EX |
  /// LOCK_NB, EWOULDBLOCK where another has it; or LOCK_UN. Some volumes know none (ENOLCK,
  /// ENOTSUP) or only for a descriptor that may write (EBADF).
  Call<int(int descriptor, int operation)> flock;
  /// Gives the calling thread a descriptor table of its own, a copy of the shared one; ENOSYS where
  /// the system cannot.
  Call<int()> ownDescriptors;
  /// Waits before another try. Tests need not.
  Call<void(std::chrono::milliseconds time)> sleep;
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
