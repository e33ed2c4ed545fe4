// Open data forks, as host/files/FileManager.h has it.
#include <algorithm>
#include <cerrno>
#include <limits>
#include <utility>
#include <vector>

#include "host/Host.h"
#include "host/files/FileManager.h"
#include "host/files/Location.h"
#include "host/files/Opening.h"

namespace cairnset {

namespace {

// No preset is larger, so that a write of one is all or nothing.
constexpr std::size_t kMostTakenBack = 1024;

Fork* forkAt(std::int16_t number) {
  std::vector<Fork>& forks = host().forks;
  if (number < 1 || static_cast<std::size_t>(number) > forks.size()) return nullptr;
  Fork& fork = forks[static_cast<std::size_t>(number) - 1];
  return fork.descriptor >= 0 ? &fork : nullptr;
}

// Reads until `count` bytes are there or the file ends.
OSErr readFully(const Fork& fork, char* buffer, std::size_t count, std::int64_t position,
                std::size_t& got) {
  got = 0;
  while (got < count) {
    const ssize_t n = host().calls.pread(fork.descriptor, buffer + got, count - got,
                                         static_cast<off_t>(position) + static_cast<off_t>(got));
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return resultFromErrno(errno);
    if (n == 0) break;
    got += static_cast<std::size_t>(n);
  }
  return noErr;
}

// Writes until all is written. `written` says in any case how much is.
OSErr writeFully(const Fork& fork, const char* bytes, std::size_t count, std::int64_t position,
                 std::size_t& written) {
  written = 0;
  while (written < count) {
    const ssize_t n =
        host().calls.pwrite(fork.descriptor, bytes + written, count - written,
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
OSErr writeOrTakeBack(const Fork& fork, const char* bytes, std::size_t count, std::int64_t position,
                      std::size_t& written) {
  written = 0;
  char before[kMostTakenBack];
  std::size_t beforeCount = 0;
  OSErr result = readFully(fork, before, count, position, beforeCount);
  if (result != noErr) return result;  // what nobody can take back is not begun
  result = writeFully(fork, bytes, count, position, written);
  if (result == noErr || written == 0) return result;
  std::size_t restored = 0;
  const OSErr back = writeFully(fork, before, std::min(written, beforeCount), position, restored);
  const bool isAsLong =
      written <= beforeCount ||
      host().calls.ftruncate(fork.descriptor,
                             static_cast<off_t>(position) + static_cast<off_t>(beforeCount)) == 0;
  if (back == noErr && isAsLong) written = 0;
  return result;
}

OSErr sizeOf(const Fork& fork, std::int64_t& size) {
  struct stat info;
  if (host().calls.fstat(fork.descriptor, &info) != 0) return resultFromErrno(errno);
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
      if (const OSErr result = sizeOf(fork, base); result != noErr) return result;
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

OSErr FSGetDataForkName(HFSUniStr255* name) {
  name->length = 0;
  return noErr;
}

OSErr FSOpenFork(const FSRef* ref, std::size_t length, const UniChar* /*forkName*/,
                 std::int8_t permissions, std::int16_t* fork) {
  if (length != 0 || permissions < fsRdPerm || permissions > fsRdWrPerm) return paramErr;
  std::vector<Fork>& forks = host().forks;
  const auto unused = std::find_if(forks.begin(), forks.end(),
                                   [](const Fork& taken) { return taken.descriptor < 0; });
  const auto slot = static_cast<std::size_t>(unused - forks.begin());
  if (slot >= static_cast<std::size_t>(std::numeric_limits<std::int16_t>::max())) return tmfoErr;
  const Location place(*ref);
  if (place.status() != noErr) return place.status();
  const Opened opened = openFile(host().calls, place.folder(), place.path(), permissions);
  if (opened.result == fnfErr) return failureAt(*ref, ENOENT);
  if (opened.result != noErr) return opened.result;
  if (slot == forks.size()) forks.emplace_back();
  forks[slot] = {opened.descriptor, 0, permissions};
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
  result = readFully(*fork, static_cast<char*>(buffer), count, position, got);
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
  const auto* bytes = static_cast<const char*>(buffer);
  std::size_t written = 0;
  const bool canTakeBack = count <= kMostTakenBack && (fork->permissions & fsRdPerm) != 0;
  result = (canTakeBack ? writeOrTakeBack : writeFully)(*fork, bytes, count, position, written);
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
  return sizeOf(*fork, *size);
}

OSErr FSCloseFork(std::int16_t number) {
  Fork* fork = forkAt(number);
  if (fork == nullptr) return rfNumErr;
  return closeFile(host().calls, std::exchange(fork->descriptor, -1));
}

}  // namespace cairnset
