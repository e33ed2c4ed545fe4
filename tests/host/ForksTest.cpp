#include <algorithm>
#include <limits>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <utility>

#include "tests/host/FileTest.h"

namespace cairnset {
namespace {

class ForksTest : public FileTest {
 protected:
  // What a read gives, and its code where that is not 0.
  static std::string readAt(std::int16_t fork, std::uint16_t mode, std::int64_t offset,
                            std::size_t count) {
    std::string bytes(count, '?');
    std::size_t actual = 99;
    const OSErr result = FSReadFork(fork, mode, offset, count, bytes.data(), &actual);
    bytes.resize(actual);
    return result == noErr ? bytes : bytes + " " + std::to_string(result);
  }
  static OSErr writeAt(std::int16_t fork, std::int64_t offset, std::string_view bytes,
                       std::size_t* actual = nullptr) {
    return FSWriteFork(fork, fsFromStart, offset, bytes.size(), bytes.data(), actual);
  }
  std::int16_t opened(const std::string& name, std::int8_t permissions) {
    std::int16_t fork = 0;
    EXPECT_EQ(openFork(ref(name), permissions, &fork), noErr) << name;
    return fork;
  }
};

TEST_F(ForksTest, ReadsFromWhereItIsTold) {
  struct Case {
    std::uint16_t mode;
    std::int64_t offset;
    std::size_t count;
    const char* expected;
    std::int64_t mark;
  };
  constexpr std::int64_t kFar = std::numeric_limits<std::int64_t>::max();
  write("file", "0123456789");
  const std::int16_t fork = opened("file", fsRdPerm);
  for (const Case& c : {Case{fsAtMark, 77, 4, "0123", 4},
                        {fsAtMark, 0, 7, "456789 -39", 10},
                        {fsAtMark, 0, 1, " -39", 10},
                        {fsAtMark, 0, 0, "", 10},
                        {fsFromLEOF, -3, 2, "78", 9},
                        {fsFromMark, -4, 1, "5", 6},
                        {fsFromMark, -7, 1, " -50", 6},
                        {fsFromStart, -1, 1, " -50", 6},
                        {fsFromLEOF, kFar, 1, " -50", 6},
                        {fsFromStart, 12, 1, " -39", 12},
                        {fsFromStart, 5000, 1, " -39", 5000},
                        {fsFromStart, 0, 10, "0123456789", 10}}) {
    SCOPED_TRACE(testing::Message() << c.mode << ' ' << c.offset << ' ' << c.count);
    std::int64_t mark = -1;
    EXPECT_EQ(readAt(fork, c.mode, c.offset, c.count), c.expected);
    EXPECT_EQ(FSGetForkPosition(fork, &mark), noErr);
    EXPECT_EQ(mark, c.mark);
  }
  EXPECT_EQ(FSReadFork(fork, fsFromStart, 0, 0, nullptr, nullptr), noErr);
  EXPECT_EQ(FSSetForkPosition(fork, fsFromLEOF, -2), noErr);
  EXPECT_EQ(readAt(fork, fsAtMark, 0, 2), "89");
  EXPECT_EQ(writeAt(fork, 0, "x"), ioErr) << "open for reading only";
  EXPECT_EQ(FSCloseFork(fork), noErr);
  for (const std::int16_t closed : {fork, std::int16_t{0}, std::int16_t{-1}, std::int16_t{999}}) {
    EXPECT_EQ(readAt(closed, fsAtMark, 0, 1), " -51");
    EXPECT_EQ(FSCloseFork(closed), rfNumErr);
  }
}

// Transfers of at most 3 bytes, every other one interrupted, for content around the first 1,024
// bytes, which are read ahead.
TEST_F(ForksTest, CompletesInterruptedAndShortTransfers) {
  static int calls;
  systemCalls().pread = [](int d, void* bytes, std::size_t n, off_t at) -> ssize_t {
    return ++calls % 2 == 0 ? failWith(EINTR) : ::pread(d, bytes, std::min<std::size_t>(n, 3), at);
  };
  systemCalls().pwrite = [](int d, const void* bytes, std::size_t n, off_t at) -> ssize_t {
    return ++calls % 2 == 0 ? failWith(EINTR) : ::pwrite(d, bytes, std::min<std::size_t>(n, 3), at);
  };
  for (const std::size_t size : {0u, 1u, 265u, 1023u, 1024u, 1025u, 3000u}) {
    SCOPED_TRACE(size);
    std::string content(size, '\0');
    for (std::size_t i = 0; i < size; ++i)
      content[i] = static_cast<char>(i * 7 + i / 256);
    write("file", "");
    const std::int16_t fork = opened("file", fsRdWrPerm);
    std::size_t actual = 99;
    EXPECT_EQ(writeAt(fork, 0, content, &actual), noErr);
    EXPECT_EQ(actual, size);
    EXPECT_EQ(read("file"), content);
    EXPECT_EQ(readAt(fork, fsFromStart, 0, size), content);
    EXPECT_EQ(readAt(fork, fsFromStart, 5, size), (size < 5 ? "" : content.substr(5)) +
                                                      (size == 0 ? "" : " -39"));
    std::int64_t length = -1;
    EXPECT_EQ(FSGetForkSize(fork, &length), noErr);
    EXPECT_EQ(length, static_cast<std::int64_t>(size));
    EXPECT_EQ(FSCloseFork(fork), noErr);
  }
}

TEST_F(ForksTest, TellsWhatFailed) {
  static int error, left;
  systemCalls().pwrite = [](int d, const void* bytes, std::size_t n, off_t at) -> ssize_t {
    if (left == 0) return error == 0 ? 0 : failWith(error);
    n = std::min<std::size_t>(n, static_cast<std::size_t>(std::exchange(left, 0)));
    return ::pwrite(d, bytes, n, at);
  };
  for (const auto& [number, expected] : {std::pair{ENOSPC, dskFulErr}, {EIO, ioErr}, {0, dskFulErr}}) {
    write("file", "........");
    const std::int16_t fork = opened("file", fsRdWrPerm);
    EXPECT_EQ(readAt(fork, fsFromStart, 0, 8), "........");
    std::size_t actual = 99;
    error = number, left = 3;
    EXPECT_EQ(writeAt(fork, 1, "abcdef", &actual), expected);
    EXPECT_EQ(actual, 3u);
    EXPECT_EQ(readAt(fork, fsFromStart, 0, 8), ".abc....") << "what is there, not what was";
    EXPECT_EQ(FSCloseFork(fork), noErr);
  }
  // The error is that of the call that failed, not of the tidying after it.
  systemCalls().close = [](int d) { return ::close(d), failWith(ENOSPC); };
  EXPECT_EQ(FSCloseFork(opened("file", fsWrPerm)), dskFulErr) << "a write that may be lost";
  std::int16_t fork = 0;
  systemCalls().fstat = [](int, struct stat*) { return failWith(EACCES); };
  EXPECT_EQ(openFork(ref("file"), fsRdPerm, &fork), permErr);
  systemCalls() = real;
  systemCalls().pread = [](int, void*, std::size_t, off_t) -> ssize_t { return failWith(EACCES); };
  fork = opened("file", fsRdPerm);
  EXPECT_EQ(readAt(fork, fsFromStart, 0, 4), " -54");
  systemCalls() = real;
  EXPECT_EQ(readAt(fork, fsFromStart, 0, 4), ".abc");
  EXPECT_EQ(FSCloseFork(fork), noErr);
}

TEST_F(ForksTest, SharesTheDescriptorOfOneFile) {
  static int opens;
  systemCalls().open = [](int folder, const char* path, int flags, mode_t mode) {
    return ++opens, ::openat(folder, path, flags, mode);
  };
  write("file", "before");
  const std::int16_t reader = opened("file", fsRdPerm);
  EXPECT_EQ(readAt(reader, fsAtMark, 0, 3), "bef");
  const std::int16_t writer = opened("file", fsRdWrPerm);
  EXPECT_EQ(readAt(writer, fsAtMark, 0, 3), "bef") << "each has its own mark";
  opens = 0;
  const std::int16_t shared = opened("file", fsRdPerm);
  EXPECT_EQ(opens, 0);
  EXPECT_EQ(writeAt(writer, 0, "after, and longer"), noErr);
  for (const std::int16_t fork : {reader, writer, shared}) {
    EXPECT_EQ(readAt(fork, fsFromStart, 0, 17), "after, and longer");
  }
  FSRef renamed;
  EXPECT_EQ(rename(ref("file"), u"other", &renamed), noErr);
  EXPECT_EQ(writeAt(writer, 0, "AFTER"), noErr);
  EXPECT_EQ(readAt(reader, fsFromStart, 0, 5), "AFTER") << "seen after the rename too";
  for (const std::int16_t fork : {writer, shared, reader}) {
    EXPECT_EQ(FSCloseFork(fork), noErr);
  }
}

// With the old file still open, its place must give the new one.
TEST_F(ForksTest, OpensWhatIsAtThePlaceNow) {
  const std::pair<const char*, OSErr (*)(const TestFolder&)> changes[] = {
      {"rename", [](const TestFolder& f) { return rename(f.ref("folder/file"), u"x"); }},
      {"move", [](const TestFolder& f) { return move(f.ref("folder/file"), f.ref("")); }},
      {"delete",
       [](const TestFolder& f) {
         const FSRef file = f.ref("folder/file");
         return FSDeleteObject(&file);
       }},
      {"rename the folder", [](const TestFolder& f) { return rename(f.ref("folder"), u"y"); }}};
  for (const auto& [what, change] : changes) {
    SCOPED_TRACE(what);
    TestFolder fresh;
    fresh.makeFolder("folder");
    fresh.write("folder/file", "old");
    const FSRef place = fresh.ref("folder/file");
    std::int16_t old = 0, now = 0;
    ASSERT_EQ(openFork(place, fsRdWrPerm, &old), noErr);
    ASSERT_EQ(change(fresh), noErr);
    EXPECT_LT(openFork(place, fsRdPerm, &now), 0);
    EXPECT_EQ(openFork({0}, fsRdPerm, &now), errFSBadFSRef) << "nor is it found by no place";
    if (!fresh.exists("folder")) fresh.makeFolder("folder");
    fresh.write("folder/file", "new");
    ASSERT_EQ(openFork(place, fsRdPerm, &now), noErr);
    EXPECT_EQ(readAt(now, fsFromStart, 0, 3), "new");
    EXPECT_EQ(readAt(old, fsFromStart, 0, 3), "old");
    EXPECT_EQ(FSCloseFork(now), noErr);
    EXPECT_EQ(FSCloseFork(old), noErr);
  }
}

TEST_F(ForksTest, RefusesWhatIsNoRegularFileAtOnce) {
  ::alarm(20);  // a call that waits would wait for ever
  write("file", "x");
  makeFolder("folder");
  ASSERT_EQ(::mkfifo(path("fifo").c_str(), 0600), 0);
  ASSERT_EQ(::symlink("file", path("alias").c_str()), 0);
  struct sockaddr_un address = {};
  address.sun_family = AF_UNIX;
  path("socket").copy(address.sun_path, sizeof address.sun_path - 1);
  const int descriptor = ::socket(AF_UNIX, SOCK_STREAM, 0);
  ASSERT_EQ(::bind(descriptor, reinterpret_cast<struct sockaddr*>(&address), sizeof address), 0);
  ::close(descriptor);
  FSRef folder = ref(""), item;
  for (const auto* name : {u"folder", u"fifo", u"alias", u"socket", u"device"}) {
    SCOPED_TRACE(testing::PrintToString(std::u16string(name)));
    if (std::u16string_view(name) == u"device") {
      ASSERT_EQ(FSPathMakeRef("/dev/null", &item, nullptr), noErr);
    } else {
      ASSERT_EQ(find(folder, name, &item), noErr);
    }
    for (const std::int8_t permissions : {fsRdPerm, fsWrPerm, fsRdWrPerm}) {
      std::int16_t fork = -7;
      EXPECT_EQ(openFork(item, permissions, &fork), ioErr) << int{permissions};
      EXPECT_EQ(fork, -7);
    }
  }
  std::int16_t fork = 0;
  for (const int permissions : {0, 4, -1}) {
    EXPECT_EQ(openFork(ref("file"), static_cast<std::int8_t>(permissions), &fork), paramErr);
  }
  FSRef file = ref("file");
  EXPECT_EQ(FSOpenFork(&file, 3, u"rsc", fsRdPerm, &fork), paramErr) << "no other fork";
  ::alarm(0);
}

}  // namespace
}  // namespace cairnset
