// A file in memory, through which preset files are loaded, parsed, rebuilt and written.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <iosfwd>
#include <limits>
#include <string>

#pragma GCC visibility push(default)
namespace cairnset {

/// What an offset counts from.
enum from_pos { from_start = 0, from_current = 1, from_end = 2 };

/// Reverse 4 and 8 bytes in place, at any alignment.
void swapFour(void* bytes);
void swapEight(void* bytes);

/// One growable run of bytes with a read and a write position that move independently.
///
/// Only the operations with a `swap` argument reverse bytes (storage/ByteOrder.h has the flag for
/// preset files). Unless stated otherwise an operation returns 1 for success and 0 for failure, and
/// changes nothing on failure. Nothing throws. A negative number of bytes is a failure, and so is
/// everything on a file whose memory could not be allocated, until clear() succeeds. Content is
/// limited to kMaxContent. Positions are offsets from the start, never past the end of the content.
class VirtualFile {
 public:
  static constexpr unsigned long kMaxContent = 600ul * 1024 * 1024;

  /// An empty file. Memory is allocated in multiples of `blockSize` bytes, at least 1.
  explicit VirtualFile(long blockSize);
  /// A file with content: reads begin at its start, writes at its end. In place, `data` is the
  /// buffer until the file outgrows it; the caller frees it, and keeps it alive meanwhile.
  /// Otherwise the bytes are copied. Content over the limit is treated as a failed allocation.
  VirtualFile(char* data, unsigned long length, bool useInPlace, long blockSize);
  VirtualFile(const VirtualFile&) = delete;
  VirtualFile& operator=(const VirtualFile&) = delete;
  ~VirtualFile() { release(); }

  // --- Content ---

  /// Null if memory could not be allocated. Any growth moves the buffer.
  char* buffer() const { return _buffer; }
  char* rptr() const { return _rptr; }
  char* wptr() const { return _wptr; }
  unsigned long size() const { return _size; }
  /// As resize_buffer.
  int size(unsigned long n) { return resize_buffer(n); }
  /// Makes the content `n` bytes long; -1 for more than the limit. New bytes are zero, but bytes
  /// cut off by an earlier call reappear unchanged.
  int resize_buffer(unsigned long n);
  /// Makes the content `n` bytes long and returns it for the caller to fill; null on failure.
  char* reserve(long n) {
    // A negative length becomes one that is over the limit.
    return resize_buffer(static_cast<unsigned long>(n)) == 1 ? _buffer : nullptr;
  }
  /// Empties the file, with new memory of one block.
  int clear();
  /// 1, or -1 if there is no memory or the size had to be reduced to fit it.
  [[nodiscard]] int confirm() { return normalise() ? 1 : -1; }
  [[nodiscard]] bool good() { return confirm() > 0; }

  // --- Binary writes: overwrite, and extend the content past its end ---

  /// `src` may lie in this file.
  int write(const void* src, long n);
  /// Writes the bytes at `src`'s read position, and advances that. Does not check that there are so
  /// many: past its content it copies whatever its memory holds, past its memory zeros. `src` may
  /// be this file: its bytes from before the call are written.
  int write(VirtualFile& src, long n);
  int writeZeroes(long n);
  /// Exactly `fieldLength` bytes (1 or more), truncated or padded so as to end in a zero byte.
  int writeStringAndPad(const char* s, long fieldLength);
  int write2(const void* p, bool swap) { return writeWord(p, 2, swap); }
  int write4(const void* p, bool swap) { return writeWord(p, 4, swap); }
  int write8(const void* p, bool swap) { return writeWord(p, 8, swap); }
  /// Writes at the end and does not move the write position.
  int append(const void* src, long n);
  /// Writes `length` bytes from `offset` to `dst` (may be this file) at its write position. Returns
  /// this file's read position, which does not move.
  long copyData(VirtualFile& dst, unsigned long offset, unsigned long length);

  // --- Binary reads ---

  /// A read past the end succeeds too: with k of n bytes left it copies these k, and then clears
  /// the first n - k bytes of `dst`, not the last, on purpose. Bytes that neither covers keep their
  /// value, so `dst` must be initialised.
  int read(void* dst, long n) {
    if (n < 1 || n > _end - _rptr) return readPastEnd(dst, n);
    std::memmove(dst, _rptr, static_cast<std::size_t>(n));  // dst may lie in this file
    _rptr += n;
    return 1;
  }
  int read2(void* dst, bool swap) { return readWord(dst, 2, swap); }
  int read4(void* dst, bool swap) { return readWord(dst, 4, swap); }
  int read8(void* dst, bool swap) { return readWord(dst, 8, swap); }

  // --- Numbers as decimal text ---

  /// Skip white space and parse, never past the end of the content; without a number the value is 0
  /// and the position stays. Integers saturate at the 32-bit range and are then narrowed to their
  /// type; a char is a number from -128 to 127 on every machine.
  VirtualFile& get(char& v) { return assign(v, static_cast<signed char>(parseSigned())); }
  VirtualFile& get(unsigned char& v) { return assign(v, parseUnsigned()); }
  VirtualFile& get(short& v) { return assign(v, parseSigned()); }
  VirtualFile& get(unsigned short& v) { return assign(v, parseUnsigned()); }
  VirtualFile& get(long& v) { return assign(v, parseSigned()); }
  VirtualFile& get(int& v) { return assign(v, parseSigned()); }
  VirtualFile& get(float& v) { return assign(v, parseReal()); }
  VirtualFile& get(double& v) { return assign(v, parseReal()); }
  template <typename T>
  VirtualFile& operator>>(T& v) {
    skipspace();
    return get(v);
  }

  int put(int v) { return put(static_cast<long>(v)); }
  int put(short v) { return put(static_cast<long>(v)); }
  int put(long v);
  int put(unsigned char v) { return put(static_cast<long>(v)); }
  /// The character's code, -128 to 127: 'A' is written as 65.
  int put(char v) { return put(static_cast<long>(static_cast<signed char>(v))); }
  /// With nine digits after the point.
  int put(double v);
  /// Only what is before the point.
  int put(float v);
  /// The text without its terminator; null writes nothing.
  int put(const char* s);

  /// As put.
  template <typename T>
  VirtualFile& operator<<(const T& v) {
    return put(v), *this;
  }

  // --- Characters and strings ---

  /// The string up to a zero byte or the end; the caller frees it with delete[]. Moves past the
  /// zero byte. Null, without moving, if memory ran out.
  VirtualFile& get(char** out);
  /// Skips a byte.
  void get() {
    if (!eof()) ++_rptr;
  }
  /// Moves back a byte and stores `c` there; does nothing at the start.
  void putback(char& c) {
    if (_rptr != _buffer) *--_rptr = c;
  }
  /// Skips spaces, tabs, line feeds and carriage returns.
  void skipspace();
  /// The next line without its end (LF, CR, CR LF or the end of the content); zero bytes are part
  /// of it. False, `line` unchanged, at the end of the content or if memory ran out.
  [[nodiscard]] bool getLine(std::string& line);

  // --- Positions: seeks return the new one ---

  bool eof() const { return _rptr >= _end; }
  long tellg() const { return static_cast<long>(_rptr - _buffer); }
  long tellp() const { return static_cast<long>(_wptr - _buffer); }
  /// Positions outside the content are clamped to it.
  long seekg(long pos) { return seekg(pos, from_start); }
  long seekg(long off, from_pos whence);
  /// Past the end the content grows up to there; if it cannot, the position stays.
  long seekp(long pos) { return seekp(pos, from_start); }
  long seekp(long off, from_pos whence);

  // --- Whole files ---

  /// 0 if both have the same size and are equal in the range, else 1.
  int compare(const VirtualFile& other, unsigned long offset, unsigned long length) const;
  int compare(const VirtualFile& other) const { return compare(other, 0, _size); }

  /// Write the whole content, at the start of the target or at its position. 0 for success and for
  /// empty content, which writes nothing; -1 if confirm() fails; else an error: the result code of
  /// the fork, 1 for a stream that took nothing (FILE) or not everything (ostream).
  [[nodiscard]] int dump(short forkRef, bool fromStart);
  [[nodiscard]] int dump(std::FILE* stream, bool rewindFirst);
  [[nodiscard]] int dump(std::ostream& out, bool fromStart);

  /// Replace the content by that of a source from its start, or from its position if it cannot
  /// seek. Return the number of bytes read, -1 if confirm() fails. Reading ends at a read of
  /// nothing, a failed one included, and when the content cannot grow. The read position is then at
  /// the start, the write position at the end. `maxBytes` is checked only after each chunk of 1024
  /// bytes, so up to 1023 more bytes are read, and one chunk for a limit of 0.
  long load(std::FILE* stream);
  long load(short forkRef, unsigned long maxBytes);
  long load(short forkRef) { return load(forkRef, std::numeric_limits<unsigned long>::max()); }
  long load(std::istream& in);

  // --- 64-bit checksums (storage/Checksums.h has the terms) ---

  /// Appends zero bytes up to a multiple of 8.
  int padTo8ByteBoundary();
  /// Pads, and appends the sum of the words. Swapped, the words are taken as little-endian numbers
  /// and the trailer is little-endian too.
  int append64BitChecksum(bool swapped);
  /// The sum of all whole words but the last, taken as the trailer; 0 for fewer than 8 bytes.
  unsigned long long calculateRaw64BitChecksum() const;
  /// The sum of all but the last 8 bytes as little-endian words, but a partial word as big-endian;
  /// 0 for content of fewer than 8 bytes.
  unsigned long long calculateSwapped64BitChecksum() const;
  /// The last 8 bytes as a big-endian number; leaves the read position at the end.
  unsigned long long getAppended64BitChecksum();
  /// 1 if the last 8 bytes are the raw sum of all before, partial word included, else 0. Stores the
  /// sum in `*computed` (may be null). Moves the read position as getAppended64BitChecksum.
  [[nodiscard]] int confirmRawAppended64BitChecksum(unsigned long long* computed);
  /// 1 if the last 8 bytes, as a big-endian number, are the swapped sum, else 0. So it rejects what
  /// append64BitChecksum(true) wrote, unless that sum reads the same both ways.
  [[nodiscard]] int confirmSwappedAppended64BitChecksum() const;

 private:
  bool normalise();
  std::uint32_t capacityFor(unsigned long n) const;
  bool reallocate(std::uint32_t capacity);
  void release() {
    if (_owns_buffer) delete[] _buffer;
  }
  void startEmpty();
  bool makeRoomToWrite(long n);
  long offsetInBuffer(const void* p) const;
  long absolute(long off, from_pos whence, long current) const;
  int writeWord(const void* p, long width, bool swap);
  int readPastEnd(void* dst, long n);
  int readWord(void* dst, long width, bool swap);
  template <typename ReadChunk>
  long loadChunks(ReadChunk readChunk, unsigned long maxBytes);

  std::int32_t parseSigned();
  std::uint32_t parseUnsigned();
  double parseReal();
  template <typename T, typename Parsed>
  VirtualFile& assign(T& v, Parsed parsed) {
    v = static_cast<T>(parsed);
    return *this;
  }

  std::int32_t _block_size;
  char* _buffer;
  std::uint32_t _capacity;
  std::uint32_t _size;
  char* _wptr;
  char* _rptr;
  char* _end;
  std::int32_t _precision = 9;
  bool _owns_buffer;
};

}  // namespace cairnset
#pragma GCC visibility pop
