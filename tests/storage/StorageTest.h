// What the tests of this layer share, and the fuzz target of its VirtualFile.
#pragma once

#include <algorithm>
#include <sstream>
#include <string>

#include "storage/VirtualFile.h"
#include "tests/TestFolder.h"

namespace cairnset {

using namespace std::string_literals;

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
           std::string(_f.buffer(), _f.size()) == _memory.substr(0, _size) &&
           _f.rptr() == _f.buffer() + _read && _f.wptr() == _f.buffer() + _write &&
           _f.eof() == (_read == _size);
  }

 private:
  bool operate(std::size_t operation, std::size_t n, long length) {
    std::string bytes(n, '\0');
    const auto first = _pick(16);
    for (std::size_t i = 0; i < n; ++i)
      bytes[i] = " \n\r\t\0-.0129abc\xFF\xC3"[(first + i * i) % 16];
    const std::string rest = _memory.substr(_read, _size - _read);
    switch (operation) {
      case 0:
        write(bytes);
        return _f.write(bytes.data(), length) == 1;
      case 1:
        store(_size, bytes);
        return _f.append(bytes.data(), length) == 1;
      case 2:
        write((_memory + std::string(n, '\0')).substr(_read, n), n);
        return _f.write(_f, length) == 1;
      case 3:
        write(std::string(n, '\0'));
        return _f.writeZeroes(length) == 1;
      case 4:
        bytes.resize(std::char_traits<char>::length(bytes.c_str()));
        bytes.resize(n + 1);
        write(bytes);
        return _f.writeStringAndPad(bytes.c_str(), length + 1) == 1;
      case 5: {  // a short read clears the start of what it brings
        std::string got(n, 'x'), want = got;
        const std::size_t held = std::min(n, rest.size());
        want.replace(0, held, rest, 0, held).replace(0, n - held, n - held, '\0');
        _read += held;
        return _f.read(got.data(), length) == 1 && got == want;
      }
      case 6:
        resize(n);
        return _f.resize_buffer(n) == 1;
      case 7:
      case 8: {
        const auto whence = static_cast<from_pos>(_pick(3));
        std::size_t& at = operation == 7 ? _read : _write;
        const auto base = static_cast<long>(whence == 0 ? 0 : whence == 1 ? at : _size);
        const auto target = static_cast<std::size_t>(std::max(0l, base + length - 10));
        if (operation == 8) resize(std::max(_size, target));
        at = std::min(target, _size);
        const long now =
            operation == 7 ? _f.seekg(length - 10, whence) : _f.seekp(length - 10, whence);
        return now == static_cast<long>(at);
      }
      default: {
        std::stringstream stream;
        const bool done =
            _f.dump(stream, false) == 0 && _f.load(stream) == static_cast<long>(_size);
        _memory.resize(_size);
        _read = 0, _write = _size;
        return done;
      }
    }
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
