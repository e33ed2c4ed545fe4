#include "tests/host/FileTest.h"

namespace cairnset {

class ForksTest : public FileTest {
 protected:
  // What a read gives, with its code where that is not 0.
  static std::string readAt(std::int16_t fork, std::uint16_t mode, std::int64_t offset,
                            std::size_t count) {
    std::string bytes(count, '?');
    std::size_t actual = 99;
    const OSErr result = FSReadFork(fork, mode, offset, count, bytes.data(), &actual);
    return bytes.substr(0, actual) + (result == noErr ? "" : " " + std::to_string(result));
  }
  static std::string readAll(std::int16_t fork) { return readAt(fork, fsFromStart, 0, 9); }
  static OSErr write(std::int16_t fork, std::string_view bytes, std::size_t* actual = nullptr) {
    return FSWriteFork(fork, fsFromStart, 0, bytes.size(), bytes.data(), actual);
  }
  static std::int16_t opened(const FSRef& ref, std::int8_t permissions) {
    std::int16_t fork = 0;
    return openFork(ref, permissions, &fork) == noErr ? fork : std::int16_t{-1};
  }
  using FileTest::write;
};

TEST_P(ForksTest, ReadsFromWhereItIsTold) {
  constexpr std::int64_t kFar = std::numeric_limits<std::int64_t>::max();
  write("file", "0123456789");
  const std::int16_t fork = opened(ref("file"), fsRdPerm);
  const std::tuple<std::uint16_t, std::int64_t, std::size_t, std::string> cases[] = {
      {fsAtMark, 77, 4, "0123"},     {fsAtMark, 0, 7, "456789 -39"}, {fsFromLEOF, -3, 2, "78"},
      {fsFromMark, -4, 1, "5"},      {fsFromMark, -7, 1, " -50"},    {fsFromLEOF, kFar, 1, " -50"},
      {fsAtMark, 0, 0, ""},          {fsFromStart, 12, 1, " -39"},   {fsFromMark, -4, 1, "8"},
      {fsFromStart, 5000, 1, " -39"}};
  for (const auto& [mode, offset, count, expected] : cases)
    EXPECT_EQ(readAt(fork, mode, offset, count), expected) << mode << ' ' << offset;
  EXPECT_EQ(FSReadFork(fork, fsFromStart, 0, 0, nullptr, nullptr), noErr);
  EXPECT_EQ(write(fork, "x"), ioErr) << "open for reading only";
  EXPECT_EQ(FSCloseFork(fork), noErr);
  EXPECT_EQ(FSCloseFork(fork) + FSCloseFork(0) + FSCloseFork(-1), 3 * rfNumErr);
}

// At most 3 bytes a call, every other call interrupted, and sizes around the 1,024 bytes that are
// read ahead.
TEST_P(ForksTest, CompletesInterruptedAndShortTransfers) {
  int calls = 0;
  const auto some = [&](const auto& call, int d, auto* bytes, std::size_t n, off_t at) -> ssize_t {
    return ++calls % 2 == 0 ? failWith(EINTR) : call(d, bytes, std::min<std::size_t>(n, 3), at);
  };
  intercept(host().calls.pread, some), intercept(host().calls.pwrite, some);
  for (const std::size_t size : {0u, 1u, 1023u, 1024u, 1025u, 3000u}) {
    std::string content;
    while (content.size() < size)
      content += static_cast<char>(content.size() * 7 + content.size() / 256);
    write("file", size < 3 ? "" : "...");  // to which it grows, and whose end is none any more
    const std::int16_t fork = opened(ref("file"), fsRdWrPerm);
    EXPECT_EQ(write(fork, content), noErr);
    EXPECT_EQ(read("file"), content);
    EXPECT_EQ(readAt(fork, fsFromStart, 0, size), content);
    EXPECT_EQ(readAt(fork, fsFromLEOF, -static_cast<std::int64_t>(size / 2), size + 1),
              content.substr(size - size / 2) + " -39");
    EXPECT_EQ(FSCloseFork(fork), noErr);
  }
}

// Whatever is open, a place gives the file that is there now.
TEST_P(ForksTest, OpensWhatIsAtThePlaceNow) {
  const FSRef top = ref("");
  for (const char way : {'r', 'm', 'd', 'f'}) {
    write("folder/file", "123456789");
    hardLink("folder/file", "other");
    const FSRef file = ref("folder/file"), folder = ref("folder");
    const std::int16_t reader = opened(file, fsRdPerm), writer = opened(file, fsRdWrPerm);
    EXPECT_EQ(readAt(reader, fsAtMark, 0, 3) + readAt(writer, fsAtMark, 0, 3), "123123")
        << "own marks";
    EXPECT_EQ(write(writer, "abcdefghijk"), noErr);
    EXPECT_EQ(readAll(reader) + read("other"), "abcdefghiabcdefghijk") << "of another size, too";
    FileTest::remove("other");
    ASSERT_EQ(way == 'r'   ? rename(file, u"renamed")
              : way == 'm' ? FSMoveObject(&file, &top, nullptr)
              : way == 'd' ? FSDeleteObject(&file)
                           : rename(folder, u"elsewhere"),
              noErr);
    std::int16_t now = 0;
    EXPECT_EQ(openFork(file, fsRdPerm, &now), way == 'f' ? dirNFErr : fnfErr) << way;
    EXPECT_EQ(openFork({0}, fsRdPerm, &now), errFSBadFSRef);
    write("folder/file", "new bytes");
    now = opened(file, fsRdPerm);
    EXPECT_EQ(readAll(now) + readAll(reader), "new bytesabcdefghi") << way;
    for (const std::int16_t fork : {now, writer, reader})
      EXPECT_EQ(FSCloseFork(fork), noErr);
  }
}

TEST_P(ForksTest, RefusesWhatIsNoRegularFileAtOnce) {
  ::alarm(20);  // a call that waits would wait for ever
  makeFolder("folder");
  symlink("/dev/zero", "alias");
  ASSERT_EQ(::mkfifo(path("fifo").c_str(), 0600), 0);
  std::vector<FSRef> items{{}, ref("fifo")};
  ASSERT_EQ(FSPathMakeRef("/dev/null", &items[0], nullptr), noErr);
  ASSERT_EQ(listed(ref(""), &items), "alias|folder/|");
  std::int16_t fork = -7;
  for (const FSRef& item : items)
    for (const std::int8_t permissions : {fsRdPerm, fsWrPerm, fsRdWrPerm})
      EXPECT_EQ(openFork(item, permissions, &fork), ioErr) << item.node;
  EXPECT_EQ(openFork(items[0], 0, &fork) + openFork(items[0], 4, &fork), 2 * paramErr);
  write("file", "123");
  host().calls.close = [this](int descriptor) { return real.close(descriptor), failWith(ENOSPC); };
  host().calls.fstat = [](auto...) { return failWith(EACCES); };
  EXPECT_EQ(openFork(ref("file"), fsRdPerm, &fork), permErr) << "not what the tidying met";
  EXPECT_EQ(fork, -7);
  ::alarm(0);
}

ON_DISK_AND_OVERLAYS(ForksTest);

}  // namespace cairnset
