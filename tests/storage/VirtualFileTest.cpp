#include <cfloat>
#include <new>

#include "storage/ByteOrder.h"
#include "storage/Checksums.h"
#include "storage/VirtualFile.h"
#include "tests/TestFolder.h"

// For the whole test program, so that allocations can fail.
static bool outOfMemory = false;
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return outOfMemory ? nullptr : ::operator new[](size);
}

namespace cairnset {

// A memory file with content.
struct Filled : VirtualFile {
  explicit Filled(std::string s) : VirtualFile(s.data(), s.size(), false, 4) {}
};

static std::string contentOf(const VirtualFile& f) {
  return {f.buffer(), f.size()};
}

// A real file with content and its open data fork.
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

// A VirtualFile beside a string that does the same plainly, under random operations.
class VirtualFileModel {
 public:
  // One operation on both; false where they differ.
  bool step() {
    const std::size_t n = pick(pick(10) == 0 ? 300 : 20);
    return operate(pick(9), n, static_cast<long>(n)) && _f.good() &&
           contentOf(_f) == _memory.substr(0, _size) && _f.rptr() == _f.buffer() + _read &&
           _f.wptr() == _f.buffer() + _write && _f.eof() == (_read == _size);
  }

 private:
  std::size_t pick(std::size_t n) { return _random() % n; }
  bool operate(std::size_t operation, std::size_t n, long length) {
    std::string bytes(n, '\0'), got(n, 'x'), zeros(n, '\0');
    const auto first = pick(16);
    for (std::size_t i = 0; i < n; ++i)
      bytes[i] = " \n\r\t\0-.0129abc\xFF\xC3"[(first + i * i) % 16];
    if (operation == 0) return write(bytes), _f.write(bytes.data(), length) == 1;
    if (operation == 1) return store(_size, bytes), _f.append(bytes.data(), length) == 1;
    if (operation == 2) return write((_memory + zeros).substr(_read, n), n), _f.write(_f, length);
    if (operation == 3) return write(zeros), _f.writeZeroes(length) == 1;
    if (operation == 4) {  // a short read clears the start of what it brings
      const std::size_t held = std::min(n, _size - _read);
      std::string want = _memory.substr(_read, held) + std::string(n - held, 'x');
      want.replace(0, n - held, n - held, '\0');
      return _read += held, _f.read(got.data(), length) == 1 && got == want;
    }
    if (operation == 5) return resize(n), _f.resize_buffer(n) == 1;
    if (operation == 6 || operation == 7) {
      const auto whence = static_cast<from_pos>(pick(3));
      std::size_t& at = operation == 6 ? _read : _write;
      const auto base = static_cast<long>(whence == 0 ? 0 : whence == 1 ? at : _size);
      const auto target = static_cast<std::size_t>(std::max(0l, base + length - 10));
      if (operation == 7) resize(std::max(_size, target));
      at = std::min(target, _size);
      length -= 10;
      return static_cast<std::size_t>(operation == 6 ? _f.seekg(length, whence)
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

  VirtualFile _f{7};
  std::mt19937 _random{20};
  std::string _memory;  // everything ever stored; the content is its beginning
  std::size_t _size = 0, _read = 0, _write = 0;
};

TEST(VirtualFile, RandomOperationsMatchAString) {
  VirtualFileModel model;
  for (int step = 0; step < 60000; ++step)
    ASSERT_TRUE(model.step()) << step;
}

TEST(VirtualFile, RefusesImpossibleSizesAndSurvivesLackOfMemory) {
  Filled f("abc"), other("");
  char bytes[] = "abcdefg";
  for (const unsigned long n : {629145601ul, ULONG_MAX / 2 + 6, ULONG_MAX}) {
    EXPECT_EQ(f.resize_buffer(n) + VirtualFile(bytes, n, true, 16).confirm(), -2) << n;
    EXPECT_EQ(f.compare(f, 2, n) + f.compare(f, n, 2) + f.copyData(other, 0, n), 2) << n;
  }
  for (const long n : {-1l, LONG_MIN, 629145600l, LONG_MAX})
    EXPECT_EQ(f.write(bytes, n) + f.write(other, n) + f.writeZeroes(n) + f.append(bytes, n), 0);
  EXPECT_EQ(f.seekg(LONG_MIN, from_end) + f.seekp(LONG_MAX, from_end) + f.read(bytes, -1), 3);
  VirtualFile grown(bytes, 3, true, 4);
  outOfMemory = true;
  Filled bad("");
  EXPECT_EQ(grown.resize_buffer(100) + grown.resize_buffer(20), 0);
  outOfMemory = false;
  EXPECT_TRUE(grown.write(grown.buffer(), 5) && contentOf(grown) == "abcabc\0\0"s);
  EXPECT_EQ(bad.read8(bytes, true) + bad.resize_buffer(0) + bad.put("") + bad.writeZeroes(1), 0);
  EXPECT_EQ(bad.write(grown, 2) + grown.write(bad, 2) + bad.append("", 0) + bad.seekp(5), 0);
  EXPECT_EQ(bad.confirm() + bad.dump(short{0}, true) + bad.load(short{0}), -3);
  EXPECT_EQ(bad.clear() + bad.append64BitChecksum(true), 2);
}

TEST(VirtualFile, FieldsAndNumbersAreTheseBytes) {
  std::uint64_t in = 0x0708090A0B0C0D0E, out = 0;
  Filled f("");
  EXPECT_TRUE(f.write8(&in, kSwapToFileOrder) && f.read8(&out, kSwapToFileOrder) && in == out);
  EXPECT_EQ(f.writeStringAndPad("abc", 3) + f.writeStringAndPad("de", 5), 2);
  f << 3.75f << "|" << -0.5f << "|" << -FLT_MAX << "|" << 3.75 << "|" << static_cast<char>(0x80);
  EXPECT_EQ(contentOf(f),
            "\7\10\11\12\13\14\15\16ab\0de\0\0\0"
            "3|-0|-340282346638528859811704183484516925440|3.750000000|-128"s);
}

TEST(VirtualFile, ReadsTextAsWith32Bits) {
  // The value, and where the parse stopped. A digit lies behind the content.
  const auto parsed = [](auto v, std::string text) {
    text += '9';
    VirtualFile f(text.data(), text.size() - 1, true, 1), value(64);
    value << f.get(v).tellg() << " bytes: " << v;
    return contentOf(value);
  };
  for (const char* none : {"", " ", "x", " -", "+-1"})
    EXPECT_EQ(parsed(1, none), "0 bytes: 0");
  EXPECT_EQ(parsed(1, " \t\v+012x"), "7 bytes: 12");
  EXPECT_EQ(parsed(1l, "-99999999999999999999"), "21 bytes: -2147483648");
  EXPECT_EQ(parsed(char{1}, "200,"), "3 bytes: -56");
  EXPECT_EQ(parsed(static_cast<unsigned short>(1), "-4294967297"), "11 bytes: 65535");
  EXPECT_EQ(parsed(1.0, " -1.5e3e+"), "7 bytes: -1500.000000000");
  Filled split("ab\r\ncd\r\r\n\n\0x\re\r"s);
  std::string lines, line;
  while (split.getLine(line))
    lines += line + "|";
  EXPECT_EQ(lines, "ab|cd|||\0x|e|"s);
}

// Through a fork, a FILE* or a standard stream, empty at first.
template <typename Target>
void expectRoundTrip(Target&& target, const std::string& content) {
  Filled f(content), loaded("to be replaced");
  for (const bool fromStart : {true, false, true})
    EXPECT_EQ(f.dump(target, fromStart), 0);
  EXPECT_EQ(loaded.load(target), static_cast<long>(2 * content.size()));
  EXPECT_TRUE(contentOf(loaded) == content + content) << content.size();
}

TEST(VirtualFile, DumpsAndLoadsWholeFiles) {
  for (const std::size_t size : {0u, 217u, 512u, 1025u, 200001u}) {
    std::string content(size, '\0');
    std::generate(content.begin(), content.end(), std::minstd_rand());
    std::FILE* const stream = std::tmpfile();
    expectRoundTrip(stream, content);
    std::fclose(stream);
    expectRoundTrip(std::stringstream(), content);
    expectRoundTrip(ForkFile("").fork, content);
  }
  struct Pipe : std::streambuf {  // which cannot seek
    Pipe() { setg(bytes, bytes, bytes + 3); }
    char bytes[4] = "abc";
  } buffer;
  std::istream pipe(&buffer);
  EXPECT_EQ(Filled("").load(pipe), 3);
  EXPECT_EQ(Filled("abc").dump(short{0}, true), rfNumErr);
  for (const auto& [limit, loaded] : {std::pair(1024ul, 1024l), {1025ul, 2048l}})
    EXPECT_EQ(Filled("").load(ForkFile(std::string(5000, 'x')).fork, limit), loaded);
}

TEST(VirtualFile, ComparesCopiesAndStepsBack) {
  Filled f("abcde\0fg"s), other("xbcde\0fg"s), copy("--");
  EXPECT_EQ(f.compare(other, 1, 7) + f.compare(f), 0);
  EXPECT_EQ(
      f.compare(other) + f.compare(f, 0, 9) + f.compare(f, 8, 1) + f.compare(Filled("a"), 0, 1), 4);
  f.seekg(3);
  EXPECT_EQ(f.copyData(copy, 1, 3) + f.tellg(), 6);
  EXPECT_EQ(contentOf(copy), "--bcd");
  char z = 'z', *first = nullptr, *second = nullptr;
  for (int i = 0; i < 4; ++i)
    f.putback(z);
  f.get(&first).get(&second);
  EXPECT_EQ(first + "|"s + second + std::to_string(f.tellg()), "zzzde|fg8");
  delete[] first, delete[] second;
}

TEST(Checksums, AppendsPaddingAndSum) {
  const std::string zeros(8, '\0'), one = "\0\0\0\0\0\0\0\1"s, ones(8, '\xFF');
  const std::tuple<std::string, std::string, bool> cases[] = {
      {"", zeros, false},
      {"ABC", "\0\0\0\0\0ABC\0\0\0\0\0"s, false},
      {one + one + ones, one, false},
      {"\xFF" + one, zeros.substr(1) + "\0\1\0\0\0\0\0\0"s, true}};
  for (const auto& [content, appended, swapped] : cases) {
    Filled f(content);
    EXPECT_TRUE(f.append64BitChecksum(swapped) && contentOf(f) == content + appended) << content;
    EXPECT_EQ(f.confirmSwappedAppended64BitChecksum(), content.empty()) << "by its byte order";
    for (const bool isDamaged : {false, true}) {
      f.buffer()[f.size() / 2] ^= static_cast<char>(isDamaged);
      const ForkFile file(contentOf(f));
      EXPECT_EQ(f.confirmRawAppended64BitChecksum(nullptr), !swapped && !isDamaged) << content;
      EXPECT_EQ(confirmChecksum(file.fork, nullptr, 0), !swapped && !isDamaged) << content;
    }
  }
  EXPECT_EQ(confirmChecksum(ForkFile("ABCDEFG").fork, nullptr, 0), 0);
  // Ten bytes of content: the word 4142434445464748 and the partial word 494A.
  Filled raw("ABCDEFGHIJ\212\214CDEFGH"), swapped("ABCDEFGHIJ\221\221FEDCBA");
  EXPECT_EQ(raw.calculateRaw64BitChecksum(), 0x4142434445464748u);
  EXPECT_EQ(raw.confirmRawAppended64BitChecksum(nullptr), 1);
  EXPECT_EQ(swapped.confirmSwappedAppended64BitChecksum(), 1);
}

static std::vector<float> seen;

TEST(Checksums, ReportsProgressAfterEachBlock) {
  const std::tuple<std::size_t, long, std::vector<float>> cases[] = {
      {131071, 0, {0, 1}},
      {131072, 0, {0, 0, 1}},
      {3 * 131072 + 5, 0, {0, 0, .25, .5, 1}},
      {3 * 131072 + 5, 4, {0, 0, .25, .5}}};
  for (const auto& [size, cancelAt, progress] : cases) {
    // A 1 in the first byte of each block and of what is left.
    std::string content(size, '\0'), trailer(8, '\0');
    for (std::size_t at = 0; at < size; at += 131072, ++trailer[0])
      content[at] = 1;
    const ForkFile file(content + trailer);
    const auto report = [](float fraction, long at) {
      return seen.push_back(fraction), static_cast<long>(seen.size()) == at ? 5l : 0l;
    };
    EXPECT_EQ(confirmChecksum(file.fork, report, cancelAt), cancelAt == 0 ? 1 : -1) << size;
    EXPECT_EQ(std::exchange(seen, {}), progress);
  }
}

}  // namespace cairnset
