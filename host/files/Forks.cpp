// Open data forks, as host/files/FileManager.h has it.
#include <algorithm>
#include <cerrno>
#include <limits>
#include <utility>
#include <vector>

#include "host/Host.h"
#include "host/files/FileManager.h"
#include "host/files/Location.h"

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

struct Transferred {
  OSErr result = noErr;
  std::size_t count = 0;  // also after a failure
};

// Calls pread or pwrite until all is transferred; `atNone` is the result where a call moves
// nothing.
template <typename Call, typename Byte>
Transferred transfer(const Call& call, OSErr atNone, const Fork& fork, Byte* bytes,
                     std::size_t count, std::int64_t position) {
  std::size_t done = 0;
  while (done < count) {
    const ssize_t n = retried([&] {
      return call(fork.descriptor, bytes + done, count - done,
                  static_cast<off_t>(position) + static_cast<off_t>(done));
    });
    if (n < 0) return {resultFromErrno(errno), done};
    if (n == 0) return {atNone, done};
    done += static_cast<std::size_t>(n);
  }
  return {noErr, done};
}

Transferred readFully(const Fork& fork, char* buffer, std::size_t count, std::int64_t position) {
  return transfer(host().calls.pread, noErr, fork, buffer, count, position);
}

// A device may write nothing without an error.
Transferred writeFully(const Fork& fork, const char* bytes, std::size_t count,
                       std::int64_t position) {
  return transfer(host().calls.pwrite, dskFulErr, fork, bytes, count, position);
}

// A write of a preset's size is all or nothing, as far as the volume lets us take it back: half an
// image would be neither the old preset nor the new one.
Transferred writeOrTakeBack(const Fork& fork, const char* bytes, std::size_t count,
                            std::int64_t position) {
  char before[kMostTakenBack];
  const Transferred old = readFully(fork, before, count, position);
  if (old.result != noErr) return {old.result, 0};  // do not begin what cannot be taken back
  Transferred written = writeFully(fork, bytes, count, position);
  if (written.result == noErr || written.count == 0) return written;
  const OSErr back = writeFully(fork, before, std::min(written.count, old.count), position).result;
  const bool isAsLong =
      written.count <= old.count ||
      host().calls.ftruncate(fork.descriptor,
                             static_cast<off_t>(position) + static_cast<off_t>(old.count)) == 0;
  if (back == noErr && isAsLong) written.count = 0;
  return written;
}

// An offset in a fork, in bytes from its start; only after noErr.
struct Offset {
  OSErr result;
  std::int64_t bytes = 0;
};

Offset endOf(const Fork& fork) {
  struct stat info;
  const auto look = [&] { return host().calls.fstat(fork.descriptor, &info); };
  if (retried(look) != 0) return {resultFromErrno(errno)};
  return {noErr, info.st_size};
}

Offset positionFor(const Fork& fork, std::uint16_t mode, std::int64_t offset) {
  Offset base{noErr, (mode & 3) == fsFromStart ? 0 : fork.mark};
  if ((mode & 3) == fsAtMark) offset = 0;
  if ((mode & 3) == fsFromLEOF) base = endOf(fork);
  if (base.result != noErr) return base;
  if (offset > 0 && base.bytes > std::numeric_limits<std::int64_t>::max() - offset) {
    return {paramErr};
  }
  if (base.bytes + offset < 0) return {paramErr};
  return {noErr, base.bytes + offset};
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
  const auto [result, position] = positionFor(*fork, positionMode, offset);
  if (result != noErr) return result;
  const Transferred got = readFully(*fork, static_cast<char*>(buffer), count, position);
  fork->mark = position + static_cast<std::int64_t>(got.count);
  if (actual != nullptr) *actual = got.count;
  return got.result == noErr && got.count < count ? eofErr : got.result;
}

OSErr FSWriteFork(std::int16_t number, std::uint16_t positionMode, std::int64_t offset,
                  std::size_t count, const void* buffer, std::size_t* actual) {
  if (actual != nullptr) *actual = 0;
  Fork* fork = forkAt(number);
  if (fork == nullptr) return rfNumErr;
  const auto [result, position] = positionFor(*fork, positionMode, offset);
  if (result != noErr) return result;
  const auto* bytes = static_cast<const char*>(buffer);
  const bool canTakeBack = count <= kMostTakenBack && (fork->permissions & fsRdPerm) != 0;
  const auto write = canTakeBack ? writeOrTakeBack : writeFully;
  const Transferred written = write(*fork, bytes, count, position);
  fork->mark = position + static_cast<std::int64_t>(written.count);
  if (actual != nullptr) *actual = written.count;
  return written.result;
}

OSErr FSSetForkPosition(std::int16_t number, std::uint16_t positionMode, std::int64_t offset) {
  Fork* fork = forkAt(number);
  if (fork == nullptr) return rfNumErr;
  const auto [result, position] = positionFor(*fork, positionMode, offset);
  if (result == noErr) fork->mark = position;
  return result;
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
  const auto [result, end] = endOf(*fork);
  if (result == noErr) *size = end;
  return result;
}

OSErr FSCloseFork(std::int16_t number) {
  Fork* fork = forkAt(number);
  if (fork == nullptr) return rfNumErr;
  return closeFile(host().calls, std::exchange(fork->descriptor, -1));
}

}  // namespace cairnset
