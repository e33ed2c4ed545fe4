#include "storage/VirtualFile.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <istream>
#include <limits>
#include <memory>
#include <new>
#include <ostream>
#include <string_view>

#include "host/files/FileManager.h"

namespace cairnset {

namespace {

constexpr std::size_t kChunk = 1024;

char* allocateZeroed(std::uint32_t size) {
  return new (std::nothrow) char[size]();
}

// memmove that allows null pointers with a length of 0.
void moveBytes(void* to, const void* from, std::size_t n) {
  if (n > 0) std::memmove(to, from, n);
}

void zeroBytes(void* to, std::size_t n) {
  if (n > 0) std::memset(to, 0, n);
}

void reverseBytes(void* bytes, long n) {
  auto* const first = static_cast<unsigned char*>(bytes);
  std::reverse(first, first + n);
}

// 1 to 2^31 - 1: a capacity, at most a block over the content limit, then fits 32 bits.
std::int32_t usableBlockSize(long size) {
  return static_cast<std::int32_t>(
      std::clamp<std::int64_t>(size, 1, std::numeric_limits<std::int32_t>::max()));
}

bool isWhiteSpace(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

// Whether strtod may accept the character, in any of its forms: 1e-9, 0x1p3, inf, nan(x_1).
bool isNumberCharacter(char c) {
  return isDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
         std::string_view("+-._()").find(c) != std::string_view::npos;
}

struct Decimal {
  bool negative;
  std::int64_t magnitude;  // at most kTooLarge
  const char* stop;        // after the digits; the start if there are none
};

constexpr std::int64_t kTooLarge = std::int64_t{1} << 32;

// Not strtol: the text need not end in a zero byte, and long does not have 32 bits everywhere.
Decimal parseDecimal(const char* text, const char* end) {
  const char* p = std::find_if_not(text, end, isWhiteSpace);
  const bool negative = p != end && *p == '-';
  if (p != end && (*p == '-' || *p == '+')) ++p;
  const char* const stop = std::find_if_not(p, end, isDigit);
  if (p == stop) return {false, 0, text};
  std::int64_t magnitude = 0;
  for (; p != stop; ++p)
    magnitude = std::min(magnitude * 10 + (*p - '0'), kTooLarge);
  return {negative, magnitude, stop};
}

}  // namespace

void swapFour(void* bytes) {
  reverseBytes(bytes, 4);
}

void swapEight(void* bytes) {
  reverseBytes(bytes, 8);
}

// --- Storage ---

VirtualFile::VirtualFile(long blockSize) : _block_size(usableBlockSize(blockSize)) {
  startEmpty();
}

VirtualFile::VirtualFile(char* data, unsigned long length, bool useInPlace, long blockSize)
    : _block_size(usableBlockSize(blockSize)), _buffer(nullptr), _owns_buffer(!useInPlace) {
  if (length <= kMaxContent && (data != nullptr || length == 0)) {
    _size = static_cast<std::uint32_t>(length);
    _capacity = useInPlace ? _size : capacityFor(_size);
    _buffer = useInPlace ? data : allocateZeroed(_capacity);
  }
  if (_buffer == nullptr) {
    _capacity = _size = 0;
  } else if (!useInPlace) {
    moveBytes(_buffer, data, _size);
  }
  _rptr = _buffer;
  _wptr = _end = _buffer + _size;
}

int VirtualFile::resize_buffer(unsigned long n) {
  if (n > kMaxContent) return -1;
  if (_buffer == nullptr) return 0;
  if (n == _size) return 1;
  if (n > _capacity && !reallocate(capacityFor(n))) return 0;
  _size = static_cast<std::uint32_t>(n);
  normalise();
  return 1;
}

// Memory of the caller's, used in place, is not freed.
int VirtualFile::clear() {
  release();
  startEmpty();
  return _buffer != nullptr;
}

void VirtualFile::startEmpty() {
  _buffer = allocateZeroed(static_cast<std::uint32_t>(_block_size));
  _capacity = _buffer == nullptr ? 0 : static_cast<std::uint32_t>(_block_size);
  _size = 0;
  _rptr = _wptr = _end = _buffer;
  _owns_buffer = true;
}

bool VirtualFile::normalise() {
  if (_buffer == nullptr) return false;
  const bool consistent = _size <= _capacity;
  if (!consistent) _size = _capacity;
  _end = _buffer + _size;
  _wptr = std::clamp(_wptr, _buffer, _end);
  _rptr = std::clamp(_rptr, _buffer, _end);
  return consistent;
}

// Whole blocks, and always more than n: an exact multiple gets one more block.
std::uint32_t VirtualFile::capacityFor(unsigned long n) const {
  const auto block = static_cast<std::uint32_t>(_block_size);
  return block * (static_cast<std::uint32_t>(n) / block + 1);
}

// To a larger capacity. On failure _capacity must not change, or the next write overruns the
// buffer.
bool VirtualFile::reallocate(std::uint32_t capacity) {
  char* const block = allocateZeroed(capacity);
  if (block == nullptr) return false;
  // All of the old memory: bytes cut off by shrinking reappear after growing.
  moveBytes(block, _buffer, _capacity);
  _wptr = block + tellp();
  _rptr = block + tellg();
  _end = block + _size;
  release();
  _buffer = block;
  _capacity = capacity;
  _owns_buffer = true;
  return true;
}

// --- Binary writes ---

bool VirtualFile::makeRoomToWrite(long n) {
  if (n < 0 || _buffer == nullptr) return false;
  // Cannot wrap, even with 32 bits: a position is at most 600 MiB and n at most 2 GiB.
  const unsigned long end = static_cast<unsigned long>(tellp()) + static_cast<unsigned long>(n);
  return end < _size || resize_buffer(end) == 1;
}

// The offset of a source in our own memory, which growing would move; -1 if it is elsewhere.
long VirtualFile::offsetInBuffer(const void* p) const {
  const auto* const at = static_cast<const char*>(p);
  const std::less<> before;
  return before(at, _buffer) || !before(at, _buffer + _capacity) ? -1
                                                                 : static_cast<long>(at - _buffer);
}

int VirtualFile::write(const void* src, long n) {
  const long offset = offsetInBuffer(src);
  if (!makeRoomToWrite(n)) return 0;
  moveBytes(_wptr, offset < 0 ? src : _buffer + offset, static_cast<std::size_t>(n));
  _wptr += n;
  return normalise();
}

int VirtualFile::write(VirtualFile& src, long n) {
  // src may be this file, so use it only after growing.
  if (src._buffer == nullptr || !makeRoomToWrite(n)) return 0;
  const auto count = static_cast<std::size_t>(n);
  const auto held = std::min(count, src._capacity - static_cast<std::size_t>(src.tellg()));
  moveBytes(_wptr, src._rptr, held);
  zeroBytes(_wptr + held, count - held);
  _wptr += n;
  src.seekg(n, from_current);
  return normalise();
}

int VirtualFile::writeZeroes(long n) {
  if (n == 0) return 1;
  if (!makeRoomToWrite(n)) return 0;
  zeroBytes(_wptr, static_cast<std::size_t>(n));
  _wptr += n;
  return normalise();
}

int VirtualFile::writeStringAndPad(const char* s, long fieldLength) {
  if (fieldLength < 1) return 0;
  const auto width = static_cast<std::size_t>(fieldLength);
  const auto length = static_cast<long>(std::min(s == nullptr ? 0 : std::strlen(s), width - 1));
  return write(s, length) == 1 && writeZeroes(fieldLength - length) == 1;
}

int VirtualFile::writeWord(const void* p, long width, bool swap) {
  char word[8];
  std::memcpy(word, p, static_cast<std::size_t>(width));
  if (swap) reverseBytes(word, width);
  return write(word, width);
}

int VirtualFile::append(const void* src, long n) {
  if (n < 0) return 0;
  const long offset = offsetInBuffer(src);
  const std::uint32_t end = _size;
  if (resize_buffer(end + static_cast<unsigned long>(n)) != 1) return 0;
  moveBytes(_buffer + end, offset < 0 ? src : _buffer + offset, static_cast<std::size_t>(n));
  return normalise();
}

long VirtualFile::copyData(VirtualFile& dst, unsigned long offset, unsigned long length) {
  constexpr unsigned long kLongest = std::numeric_limits<long>::max();
  const long before = tellg();
  seekg(static_cast<long>(std::min(offset, kLongest)));
  dst.write(*this, static_cast<long>(std::min(length, kLongest)));
  seekg(before);
  return before;
}

// --- Binary reads ---

int VirtualFile::readPastEnd(void* dst, long n) {
  if (n < 0) return 0;
  const auto wanted = static_cast<std::size_t>(n);
  const auto copied = std::min(wanted, static_cast<std::size_t>(_end - _rptr));
  moveBytes(dst, _rptr, copied);
  // From the start of dst, over what was just copied, on purpose: truncated files have always been
  // read like this.
  zeroBytes(dst, wanted - copied);
  _rptr += copied;
  return normalise();
}

int VirtualFile::readWord(void* dst, long width, bool swap) {
  const int result = read(dst, width);
  if (swap) reverseBytes(dst, width);
  return result;
}

// --- Text ---
//
// Numbers are written and read in the "C" locale: the program never sets another.

std::int32_t VirtualFile::parseSigned() {
  constexpr std::int64_t kMost = std::numeric_limits<std::int32_t>::max();
  const Decimal number = parseDecimal(_rptr, _end);
  _rptr += number.stop - _rptr;
  return static_cast<std::int32_t>(number.negative ? -std::min(number.magnitude, kMost + 1)
                                                   : std::min(number.magnitude, kMost));
}

// As strtoul: too large gives the maximum, with either sign; else a minus negates modulo 2^32.
std::uint32_t VirtualFile::parseUnsigned() {
  const Decimal number = parseDecimal(_rptr, _end);
  _rptr += number.stop - _rptr;
  if (number.magnitude == kTooLarge) return std::numeric_limits<std::uint32_t>::max();
  return static_cast<std::uint32_t>(number.negative ? -number.magnitude : number.magnitude);
}

double VirtualFile::parseReal() {
  // strtod needs a zero byte after the number, for which the buffer may have no room.
  const char* const number = std::find_if_not(_rptr, _end, isWhiteSpace);
  const char* const stop =
      std::find_if_not(number, static_cast<const char*>(_end), isNumberCharacter);
  const auto length = static_cast<std::size_t>(stop - number);
  const std::unique_ptr<char[]> text(new (std::nothrow) char[length + 1]());
  if (text == nullptr) return 0;
  moveBytes(text.get(), number, length);
  char* parsed = nullptr;
  const double value = std::strtod(text.get(), &parsed);
  if (parsed != text.get()) _rptr += (number - _rptr) + (parsed - text.get());
  return value;
}

int VirtualFile::put(long v) {
  char text[24];
  return write(text, std::snprintf(text, sizeof text, "%ld", v));
}

int VirtualFile::put(double v) {
  char text[336];  // a sign, 309 digits, the point, nine digits
  return write(text, std::snprintf(text, sizeof text, "%.*f", static_cast<int>(_precision), v));
}

// Drops the digits after the point, on purpose: texts with floats have always looked like this.
int VirtualFile::put(float v) {
  char text[64];  // a sign, 39 digits, the point, six digits
  std::snprintf(text, sizeof text, "%f", static_cast<double>(v));
  return write(text, static_cast<long>(std::strcspn(text, ".")));
}

int VirtualFile::put(const char* s) {
  return write(s, s == nullptr ? 0 : static_cast<long>(std::strlen(s)));
}

VirtualFile& VirtualFile::get(char** out) {
  const char* const stop = std::find(_rptr, _end, '\0');
  const auto length = static_cast<std::size_t>(stop - _rptr);
  *out = new (std::nothrow) char[length + 1]();
  if (*out == nullptr) return *this;
  moveBytes(*out, _rptr, length);
  _rptr += length;
  get();
  return *this;
}

void VirtualFile::skipspace() {
  while (!eof() && std::string_view(" \n\r\t").find(*_rptr) != std::string_view::npos)
    ++_rptr;
}

bool VirtualFile::getLine(std::string& line) {
  if (eof()) return false;
  char* stop = std::find_if(_rptr, _end, [](char c) { return c == '\n' || c == '\r'; });
  try {
    line.assign(_rptr, stop);
  } catch (const std::bad_alloc&) {
    return false;
  }
  if (_end - stop > 1 && stop[0] == '\r' && stop[1] == '\n') ++stop;
  _rptr = stop;
  get();
  return true;
}

// --- Positions ---

// The target of a seek, 0 or more. Content is far below 2 GiB, so clamping offsets to 32 bits
// changes no result.
long VirtualFile::absolute(long off, from_pos whence, long current) const {
  constexpr std::int64_t kMost = std::numeric_limits<std::int32_t>::max();
  const std::int64_t base = whence == from_current ? current : whence == from_end ? _size : 0;
  const std::int64_t target = base + std::clamp<std::int64_t>(off, -kMost, kMost);
  return static_cast<long>(std::clamp<std::int64_t>(target, 0, kMost));
}

long VirtualFile::seekg(long off, from_pos whence) {
  _rptr = _buffer + std::min(absolute(off, whence, tellg()), static_cast<long>(_size));
  return tellg();
}

long VirtualFile::seekp(long off, from_pos whence) {
  const auto target = static_cast<unsigned long>(absolute(off, whence, tellp()));
  if (target < _size || resize_buffer(target) == 1) _wptr = _buffer + target;
  return tellp();
}

// --- Whole files ---

int VirtualFile::compare(const VirtualFile& other, unsigned long offset,
                         unsigned long length) const {
  if (_size != other._size || length > _size || offset > _size - length) return 1;
  return !std::equal(_buffer + offset, _buffer + offset + length, other._buffer + offset);
}

int VirtualFile::dump(short forkRef, bool fromStart) {
  if (!normalise()) return -1;
  if (_size == 0) return 0;
  if (fromStart) {
    const OSErr result = FSSetForkPosition(forkRef, fsFromStart, 0);
    if (result != noErr) return result;
  }
  std::size_t written = 0;
  return FSWriteFork(forkRef, fsAtMark, 0, _size, _buffer, &written);
}

int VirtualFile::dump(std::FILE* stream, bool rewindFirst) {
  if (!normalise()) return -1;
  if (_size == 0) return 0;
  if (rewindFirst) std::rewind(stream);
  return std::fwrite(_buffer, 1, _size, stream) == 0;
}

int VirtualFile::dump(std::ostream& out, bool fromStart) {
  if (!normalise()) return -1;
  if (_size == 0) return 0;
  if (fromStart) out.seekp(0);
  return !out.write(_buffer, static_cast<std::streamsize>(_size));
}

// readChunk(scratch) fills up to kChunk bytes and returns how many.
template <typename ReadChunk>
long VirtualFile::loadChunks(ReadChunk readChunk, unsigned long maxBytes) {
  char scratch[kChunk];
  unsigned long total = 0;
  std::size_t actual = 0;
  do {
    actual = readChunk(scratch);
    total += actual;
    // Double ahead of the writes: growing by one chunk at a time would copy a file of 100 MB
    // 100,000 times. A preset is one chunk and never gets here.
    const unsigned long needed = _size + actual;
    if (total > kChunk && needed > _capacity && needed <= kMaxContent) {
      reallocate(capacityFor(std::min(2 * needed, kMaxContent)));
    }
  } while (write(scratch, static_cast<long>(actual)) == 1 && actual > 0 && total < maxBytes);
  return static_cast<long>(total);
}

long VirtualFile::load(std::FILE* stream) {
  if (!normalise()) return -1;
  clear();
  std::rewind(stream);
  return loadChunks([stream](char* scratch) { return std::fread(scratch, 1, kChunk, stream); },
                    std::numeric_limits<unsigned long>::max());
}

long VirtualFile::load(short forkRef, unsigned long maxBytes) {
  if (!normalise()) return -1;
  clear();
  if (FSSetForkPosition(forkRef, fsFromStart, 0) != noErr) return 0;
  // Each request is for as many bytes as the previous read returned.
  return loadChunks(
      [forkRef, request = kChunk](char* scratch) mutable {
        std::size_t actual = 0;
        (void)FSReadFork(forkRef, fsAtMark, 0, request, scratch, &actual);
        return request = actual;
      },
      maxBytes);
}

long VirtualFile::load(std::istream& in) {
  if (!normalise()) return -1;
  clear();
  in.clear();
  in.seekg(0);
  in.clear();  // after a failed seek: a pipe is read from its position
  return loadChunks(
      [&in](char* scratch) {
        in.read(scratch, kChunk);
        return static_cast<std::size_t>(in.gcount());
      },
      std::numeric_limits<unsigned long>::max());
}

}  // namespace cairnset
