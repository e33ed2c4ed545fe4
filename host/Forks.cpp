// Open data forks, as host/FileManager.h has it.
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <limits>
#include <memory>
#include <vector>

#include "host/FileManager.h"
#include "host/Location.h"
#include "host/NodeTable.h"
#include "host/SystemCalls.h"

namespace cairnset {

namespace {

// A preset is read twice in a row: 8 bytes to know it, then all of it. The largest is 265 bytes, so
// that one read of this size, kept as long as the file is open, serves both.
constexpr std::size_t kFirstBytes = 1024;

struct OpenFile {
  int descriptor = -1;
  std::uint32_t node = 0;  // 0 once the file is no longer the one at its place
  std::int8_t permissions = 0;
  int forks = 0;
  std::int64_t sizeWhenOpened = 0;
  // The file's first bytes, once `firstBytesKnown`; fewer than kFirstBytes are the whole file.
  bool firstBytesKnown = false;
  std::size_t firstByteCount = 0;
  char firstBytes[kFirstBytes];
};

struct Fork {
  OpenFile* file = nullptr;
  std::int64_t mark = 0;
};

std::vector<std::unique_ptr<OpenFile>> openFiles;
std::vector<Fork> forks;  // by fork number - 1

Fork* forkAt(std::int16_t number) {
  if (number < 1 || static_cast<std::size_t>(number) > forks.size()) return nullptr;
  Fork& fork = forks[static_cast<std::size_t>(number) - 1];
  return fork.file != nullptr ? &fork : nullptr;
}

OpenFile* sharedFile(std::uint32_t node, std::int8_t permissions) {
  if (node == 0) return nullptr;  // no place, which a file that was forgotten has too
  for (const auto& file : openFiles) {
    if (file->forks > 0 && file->node == node && (file->permissions & permissions) == permissions) {
      return file.get();
    }
  }
  return nullptr;
}

OpenFile& unusedFile() {
  for (const auto& file : openFiles) {
    if (file->forks == 0) return *file;
  }
  return *openFiles.emplace_back(std::make_unique<OpenFile>());
}

OSErr openFile(const FSRef& ref, std::int8_t permissions, OpenFile*& out) {
  const Location place(ref, Location::By::kKeptFolder);
  if (place.status() != noErr) return place.status();
  SystemCalls& calls = systemCalls();
  const int access = permissions == fsRdPerm   ? O_RDONLY
                     : permissions == fsWrPerm ? O_WRONLY
                                               : O_RDWR;
  // O_NONBLOCK: what was a file when it was listed may be a FIFO by now, and must not hang us.
  const int descriptor = calls.open(place.folder(), place.path(),
                                    access | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0);
  if (descriptor < 0) return failureAt(ref, errno);
  struct stat info;
  OSErr result = noErr;
  if (calls.fstat(descriptor, &info) != 0) {
    result = resultFromErrno(errno);
  } else if (!S_ISREG(info.st_mode)) {
    result = ioErr;
  }
  if (result != noErr) {
    calls.close(descriptor);
    return result;
  }
  OpenFile& file = unusedFile();
  file.descriptor = descriptor;
  file.node = ref.node;
  file.permissions = permissions;
  file.sizeWhenOpened = info.st_size;
  file.firstBytesKnown = false;
  out = &file;
  return noErr;
}

// Reads until `count` bytes are there or the file ends.
OSErr readFully(const OpenFile& file, char* buffer, std::size_t count, std::int64_t position,
                std::size_t& got) {
  got = 0;
  while (got < count) {
    const ssize_t n = systemCalls().pread(file.descriptor, buffer + got, count - got,
                                          static_cast<off_t>(position) + static_cast<off_t>(got));
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return resultFromErrno(errno);
    if (n == 0) break;
    got += static_cast<std::size_t>(n);
    // A read that came to the end which the open saw needs no second one to prove it.
    if (position + static_cast<std::int64_t>(got) == file.sizeWhenOpened) break;
  }
  return noErr;
}

// Writes until all is written. Answers in any case how much is.
OSErr writeFully(const OpenFile& file, const char* bytes, std::size_t count, std::int64_t position,
                 std::size_t& written) {
  written = 0;
  while (written < count) {
    const ssize_t n =
        systemCalls().pwrite(file.descriptor, bytes + written, count - written,
                             static_cast<off_t>(position) + static_cast<off_t>(written));
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return resultFromErrno(errno);
    if (n == 0) return dskFulErr;  // a device that takes nothing and says nothing
    written += static_cast<std::size_t>(n);
  }
  return noErr;
}

// A write of a preset's size is all or nothing, as far as the volume lets us take it back: half an
// image would be neither the preset as it was nor as it was meant.
OSErr writeOrTakeBack(const OpenFile& file, const char* bytes, std::size_t count,
                      std::int64_t position, std::size_t& written) {
  written = 0;
  char before[kFirstBytes];
  std::size_t beforeCount = 0;
  OSErr result = readFully(file, before, count, position, beforeCount);
  if (result != noErr) return result;  // what nobody can take back is not begun
  result = writeFully(file, bytes, count, position, written);
  if (result == noErr || written == 0) return result;
  std::size_t restored = 0;
  const OSErr back = writeFully(file, before, std::min(written, beforeCount), position, restored);
  const bool isAsLong =
      written <= beforeCount ||
      systemCalls().ftruncate(file.descriptor,
                              static_cast<off_t>(position) + static_cast<off_t>(beforeCount)) == 0;
  if (back == noErr && isAsLong) written = 0;
  return result;
}

OSErr readThroughFirstBytes(OpenFile& file, char* buffer, std::size_t count, std::int64_t position,
                            std::size_t& got) {
  if (!file.firstBytesKnown) {
    if (const OSErr result = readFully(file, file.firstBytes, kFirstBytes, 0, file.firstByteCount);
        result != noErr) {
      return result;
    }
    file.firstBytesKnown = true;
  }
  got = 0;
  const auto start = static_cast<std::size_t>(position);
  if (start < file.firstByteCount && count > 0) {
    got = std::min(count, file.firstByteCount - start);
    std::memcpy(buffer, file.firstBytes + start, got);
  }
  if (got == count || file.firstByteCount < kFirstBytes) return noErr;
  std::size_t more = 0;
  const OSErr result =
      readFully(file, buffer + got, count - got, position + static_cast<std::int64_t>(got), more);
  got += more;
  return result;
}

OSErr sizeOf(const OpenFile& file, std::int64_t& size) {
  struct stat info;
  if (systemCalls().fstat(file.descriptor, &info) != 0) return resultFromErrno(errno);
  size = info.st_size;
  return noErr;
}

OSErr positionFor(const Fork& fork, std::uint16_t mode, std::int64_t offset, std::int64_t& out) {
  std::int64_t base = 0;
  switch (mode & 3) {
    case fsAtMark:
      base = fork.mark;
      offset = 0;
      break;
    case fsFromStart:
      break;
    case fsFromLEOF:
      if (const OSErr result = sizeOf(*fork.file, base); result != noErr) return result;
      break;
    default:
      base = fork.mark;
  }
  if (offset > 0 && base > std::numeric_limits<std::int64_t>::max() - offset) return paramErr;
  if (base + offset < 0) return paramErr;
  out = base + offset;
  return noErr;
}

}  // namespace

void placeChanged(const FSRef& ref) {
  closeKeptFolder();
  const NodeTable& table = NodeTable::shared();
  for (const auto& file : openFiles) {
    std::uint32_t node = file->node;
    while (node != 0 && node != ref.node)
      node = table.folder(node);
    if (node == ref.node) file->node = 0;
  }
}

OSErr FSGetDataForkName(HFSUniStr255* name) {
  name->length = 0;
  return noErr;
}

OSErr FSOpenFork(const FSRef* ref, std::size_t length, const UniChar* /*forkName*/,
                 std::int8_t permissions, std::int16_t* fork) {
  if (length != 0 || permissions < fsRdPerm || permissions > fsRdWrPerm) return paramErr;
  std::size_t slot = 0;
  while (slot < forks.size() && forks[slot].file != nullptr)
    ++slot;
  if (slot >= static_cast<std::size_t>(std::numeric_limits<std::int16_t>::max())) return tmfoErr;
  OpenFile* file = sharedFile(ref->node, permissions);
  if (file == nullptr) {
    if (const OSErr result = openFile(*ref, permissions, file); result != noErr) return result;
  }
  if (slot == forks.size()) forks.emplace_back();
  ++file->forks;
  forks[slot] = {file, 0};
  *fork = static_cast<std::int16_t>(slot + 1);
  return noErr;
}

OSErr FSReadFork(std::int16_t number, std::uint16_t positionMode, std::int64_t offset,
                 std::size_t count, void* buffer, std::size_t* actual) {
  if (actual != nullptr) *actual = 0;
  Fork* fork = forkAt(number);
  if (fork == nullptr) return rfNumErr;
  std::int64_t position = 0;
  OSErr result = positionFor(*fork, positionMode, offset, position);
  if (result != noErr) return result;
  std::size_t got = 0;
  auto* bytes = static_cast<char*>(buffer);
  result = position < static_cast<std::int64_t>(kFirstBytes)
               ? readThroughFirstBytes(*fork->file, bytes, count, position, got)
               : readFully(*fork->file, bytes, count, position, got);
  fork->mark = position + static_cast<std::int64_t>(got);
  if (actual != nullptr) *actual = got;
  if (result != noErr) return result;
  return got < count ? eofErr : noErr;
}

OSErr FSWriteFork(std::int16_t number, std::uint16_t positionMode, std::int64_t offset,
                  std::size_t count, const void* buffer, std::size_t* actual) {
  if (actual != nullptr) *actual = 0;
  Fork* fork = forkAt(number);
  if (fork == nullptr) return rfNumErr;
  std::int64_t position = 0;
  OSErr result = positionFor(*fork, positionMode, offset, position);
  if (result != noErr) return result;
  for (const auto& file : openFiles) {
    // Of all files: one may be this very file by another name, or from before a rename.
    file->firstBytesKnown = false;
    file->sizeWhenOpened = -1;
  }
  const auto* bytes = static_cast<const char*>(buffer);
  std::size_t written = 0;
  const bool canTakeBack = count <= kFirstBytes && (fork->file->permissions & fsRdPerm) != 0;
  result =
      (canTakeBack ? writeOrTakeBack : writeFully)(*fork->file, bytes, count, position, written);
  fork->mark = position + static_cast<std::int64_t>(written);
  if (actual != nullptr) *actual = written;
  return result;
}

OSErr FSSetForkPosition(std::int16_t number, std::uint16_t positionMode, std::int64_t offset) {
  Fork* fork = forkAt(number);
  if (fork == nullptr) return rfNumErr;
  return positionFor(*fork, positionMode, offset, fork->mark);
}

OSErr FSGetForkPosition(std::int16_t number, std::int64_t* position) {
  const Fork* fork = forkAt(number);
  if (fork == nullptr) return rfNumErr;
  *position = fork->mark;
  return noErr;
}

OSErr FSGetForkSize(std::int16_t number, std::int64_t* size) {
  const Fork* fork = forkAt(number);
  if (fork == nullptr) return rfNumErr;
  return sizeOf(*fork->file, *size);
}

OSErr FSCloseFork(std::int16_t number) {
  Fork* fork = forkAt(number);
  if (fork == nullptr) return rfNumErr;
  OpenFile& file = *fork->file;
  fork->file = nullptr;
  if (--file.forks > 0) return noErr;
  // After EINTR the descriptor is gone all the same; closing again could hit another's.
  if (systemCalls().close(file.descriptor) != 0 && errno != EINTR) return resultFromErrno(errno);
  return noErr;
}

}  // namespace cairnset
