// What the tests of this layer share, and the fuzz target of its VirtualFile.
#pragma once

#include "storage/VirtualFile.h"
#include "tests/TestFolder.h"

namespace cairnset {

/// A memory file with content.
struct Filled : VirtualFile {
  explicit Filled(std::string s) : VirtualFile(s.data(), s.size(), false, 4) {}
};

inline std::string contentOf(const VirtualFile& f) {
  return {f.buffer(), f.size()};
}

/// A real file with content and its open data fork.
struct ForkFile {
  explicit ForkFile(const std::string& content) {
    folder.write("file", content);
    const FSRef ref = folder.ref("file");
    EXPECT_EQ(FSOpenFork(&ref, 0, u"", fsRdWrPerm, &fork), noErr);
  }
  ~ForkFile() { EXPECT_EQ(FSCloseFork(fork), noErr); }
  const TestFolder folder;
  short fork = 0;
};

/// A VirtualFile beside a string that does the same plainly, under whatever operations are chosen:
/// `pick(n)` chooses a number below n. The file is empty at first.
template <typename Pick>
class VirtualFileModel {
 public:
  VirtualFileModel(VirtualFile& file, Pick pick) : _f(file), _pick(pick) {}

  /// One operation on both; false where they differ.
  bool step() {
    const std::size_t n = _pick(_pick(10) == 0 ? 300 : 20);
    return operate(_pick(10), n, static_cast<long>(n)) && _f.good() &&
           contentOf(_f) == _memory.substr(0, _size) && _f.rptr() == _f.buffer() + _read &&
           _f.wptr() == _f.buffer() + _write && _f.eof() == (_read == _size);
  }

 private:
  bool operate(std::size_t operation, std::size_t n, long length) {
    std::string bytes(n, '\0'), got(n, 'x'), zeros(n, '\0');
    const auto first = _pick(16);
    for (std::size_t i = 0; i < n; ++i)
      bytes[i] = " \n\r\t\0-.0129abc\xFF\xC3"[(first + i * i) % 16];
    if (operation == 0) return write(bytes), _f.write(bytes.data(), length) == 1;
    if (operation == 1) return store(_size, bytes), _f.append(bytes.data(), length) == 1;
    if (operation == 2) return write((_memory + zeros).substr(_read, n), n), _f.write(_f, length);
    if (operation == 3) return write(zeros), _f.writeZeroes(length) == 1;
    if (operation == 4) {
      bytes.resize(std::strlen(bytes.c_str()));
      bytes.resize(n + 1);
      return write(bytes), _f.writeStringAndPad(bytes.c_str(), length + 1) == 1;
    }
    if (operation == 5) {  // a short read clears the start of what it brings
      const std::size_t held = std::min(n, _size - _read);
      std::string want = _memory.substr(_read, held) + std::string(n - held, 'x');
      want.replace(0, n - held, n - held, '\0');
      return _read += held, _f.read(got.data(), length) == 1 && got == want;
    }
    if (operation == 6) return resize(n), _f.resize_buffer(n) == 1;
    if (operation == 7 || operation == 8) {
      const auto whence = static_cast<from_pos>(_pick(3));
      std::size_t& at = operation == 7 ? _read : _write;
      const auto base = static_cast<long>(whence == 0 ? 0 : whence == 1 ? at : _size);
      const auto target = static_cast<std::size_t>(std::max(0l, base + length - 10));
      if (operation == 8) resize(std::max(_size, target));
      at = std::min(target, _size);
      length -= 10;
      return static_cast<std::size_t>(operation == 7 ? _f.seekg(length, whence)
                                                     : _f.seekp(length, whence)) == at;
    }
    std::stringstream stream;
    _memory.resize(_size);
    _read = 0, _write = _size;
    return _f.dump(stream, false) == 0 && _f.load(stream) == static_cast<long>(_size);
  }

  void resize(std::size_t n) {
    _memory.resize(std::max(_memory.size(), _size = n));
    _read = std::min(_read, n), _write = std::min(_write, n);
  }
  void store(std::size_t at, const std::string& bytes) {
    resize(std::max(_size, at + bytes.size()));
    _memory.replace(at, bytes.size(), bytes);
  }
  void write(const std::string& bytes, std::size_t alsoRead = 0) {
    store(_write, bytes);
    _write += bytes.size();
    _read = std::min(_read + alsoRead, _size);
  }

  VirtualFile& _f;
  Pick _pick;
  std::string _memory;  // everything ever stored; the content is its beginning
  std::size_t _size = 0, _read = 0, _write = 0;
};

}  // namespace cairnset
