#include "storage/Checksums.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>

#include "host/files/FileManager.h"
#include "storage/VirtualFile.h"

namespace cairnset {

namespace {

constexpr std::size_t kWord = 8;
constexpr std::size_t kBlock = std::size_t{128} * 1024;

std::uint64_t bigEndianWord(const void* bytes) {
  const auto* const byte = static_cast<const unsigned char*>(bytes);
  std::uint64_t value = 0;
  for (std::size_t i = 0; i < kWord; ++i)
    value = value << 8 | byte[i];
  return value;
}

void storeBigEndian(std::uint64_t value, unsigned char (&bytes)[kWord]) {
  for (std::size_t i = kWord; i-- > 0; value >>= 8)
    bytes[i] = static_cast<unsigned char>(value);
}

std::uint64_t byteReversed(std::uint64_t value) {
  swapEight(&value);
  return value;
}

std::uint64_t sumOfWords(const void* content, std::size_t size, bool swapped) {
  const auto* const bytes = static_cast<const unsigned char*>(content);
  const std::size_t whole = size / kWord * kWord;
  std::uint64_t sum = 0;
  for (std::size_t at = 0; at < whole; at += kWord) {
    const std::uint64_t word = bigEndianWord(bytes + at);
    sum += swapped ? byteReversed(word) : word;
  }
  // The partial word is big-endian in the swapped form too, on purpose: trailers have always been
  // computed like this.
  unsigned char partial[kWord] = {};
  std::copy(bytes + whole, bytes + size, partial);
  return sum + bigEndianWord(partial);
}

}  // namespace

int VirtualFile::padTo8ByteBoundary() {
  static constexpr unsigned char kZeros[kWord] = {};
  const auto excess = static_cast<long>(size() % kWord);
  return excess == 0 ? 1 : append(kZeros, static_cast<long>(kWord) - excess);
}

int VirtualFile::append64BitChecksum(bool swapped) {
  if (padTo8ByteBoundary() != 1) return 0;
  const std::uint64_t sum = sumOfWords(_buffer, _size, swapped);
  unsigned char trailer[kWord];
  storeBigEndian(swapped ? byteReversed(sum) : sum, trailer);
  return append(trailer, kWord);
}

unsigned long long VirtualFile::calculateRaw64BitChecksum() const {
  return _size < kWord ? 0 : sumOfWords(_buffer, (_size / kWord - 1) * kWord, false);
}

unsigned long long VirtualFile::calculateSwapped64BitChecksum() const {
  return _size < kWord ? 0 : sumOfWords(_buffer, _size - kWord, true);
}

unsigned long long VirtualFile::getAppended64BitChecksum() {
  unsigned char trailer[kWord] = {};
  seekg(-static_cast<long>(kWord), from_end);
  read8(trailer, false);
  return bigEndianWord(trailer);
}

int VirtualFile::confirmRawAppended64BitChecksum(unsigned long long* computed) {
  const bool hasTrailer = _size >= kWord;
  const std::uint64_t sum = hasTrailer ? sumOfWords(_buffer, _size - kWord, false) : 0;
  const std::uint64_t trailer = getAppended64BitChecksum();
  if (computed != nullptr) *computed = sum;
  return hasTrailer && sum == trailer;
}

// The trailer is not reversed, unlike that of append64BitChecksum(true). On purpose.
int VirtualFile::confirmSwappedAppended64BitChecksum() const {
  return _size >= kWord && calculateSwapped64BitChecksum() == bigEndianWord(_end - kWord);
}

int confirmChecksum(short forkRef, ChecksumProgress progress, long refCon) {
  const std::unique_ptr<unsigned char[]> buffer(new (std::nothrow) unsigned char[kBlock]);
  if (buffer == nullptr) return 0;
  // Reads the next bytes of the fork, with zeros for those that cannot be read.
  const auto read = [forkRef, &buffer](std::size_t count) {
    std::fill_n(buffer.get(), kBlock, static_cast<unsigned char>(0));
    (void)FSReadFork(forkRef, fsAtMark, 0, count, buffer.get(), nullptr);
  };
  const auto cancelled = [progress, refCon](float fraction) {
    return progress != nullptr && progress(fraction, refCon) != 0;
  };

  std::int64_t size = 0;
  (void)FSSetForkPosition(forkRef, fsFromStart, 0);
  (void)FSGetForkSize(forkRef, &size);
  const auto contentSize = size - static_cast<std::int64_t>(kWord);
  const auto blocks = contentSize / static_cast<std::int64_t>(kBlock);
  if (cancelled(0.0f)) return -1;

  std::uint64_t sum = 0;
  for (std::int64_t i = 0; i < blocks; ++i) {
    read(kBlock);
    sum += sumOfWords(buffer.get(), kBlock, false);
    if (cancelled(static_cast<float>(i) / (static_cast<float>(blocks) + 1.0f))) return -1;
  }

  // From where the reads really ended. The bounds are for a fork of fewer than 8 bytes, and for one
  // whose length changes during the check.
  std::int64_t position = 0;
  (void)FSGetForkPosition(forkRef, &position);
  read(static_cast<std::size_t>(
      std::clamp<std::int64_t>(contentSize - position, 0, static_cast<std::int64_t>(kBlock))));
  sum += sumOfWords(buffer.get(), kBlock, false);
  if (cancelled(1.0f)) return -1;

  read(kWord);
  return sum == bigEndianWord(buffer.get());
}

}  // namespace cairnset
