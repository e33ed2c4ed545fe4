// Walking and reading ahead: the results are those of listing and opening one after the other, for
// any number of threads and whatever becomes of the files.
#include <atomic>
#include <thread>

#include "host/files/FileReading.h"
#include "host/files/FolderWalk.h"
#include "tests/host/FileTest.h"

namespace cairnset {
namespace {

class FileReadingTest : public FileTest {
 protected:
  static std::string shown(const FileStart& start) {
    return std::to_string(start.opened) + ' ' + std::to_string(start.read) + ' ' +
           std::to_string(start.closed) + ' ' + std::to_string(start.size) + ' ' +
           std::string(start.bytes) + '\n';
  }
  // Items with their depths, and the files' starts, read by so many threads, or else one by one.
  std::string load(std::optional<unsigned> readers) {
    host().readers = readers;
    std::string walked, read;
    FolderWalk walk(ref(""));
    FileReading reading;
    std::size_t ahead = 0;
    while (const auto item = walk.next()) {
      walked += std::string(item->depth, ' ') + std::string(host().nodes.name(item->ref.node)) +
                (item->isFolder ? "/" : "") + std::to_string(item->listed) + '\n';
      char buffer[FileStart::kMost];
      if (!item->isFolder && !readers) read += shown(readFileStart(item->ref, fsRdWrPerm, buffer));
      if (item->isFolder || !readers) continue;
      reading.add(item->ref);
      for (++ahead; ahead > 100; --ahead)
        read += shown(reading.next());
    }
    for (; ahead > 0; --ahead)
      read += shown(reading.next());
    return walked + read;
  }
};

TEST_F(FileReadingTest, GivesWhatOneByOneGives) {
  const std::string deep = "d/" + std::string(250, 'x') + "/" + std::string(250, 'y');
  for (std::size_t i = 0; i < 400; ++i) {
    const std::string folder = "f" + std::to_string(i / 30) + (i % 60 < 5 ? "/in/ner" : "");
    makeFolder(folder);
    write(folder + "/" + std::to_string(i * 7919 % 400), std::string(i * 8, 'a'));
  }
  makeFolder(deep);
  write(deep + "/file", "deep");
  write("file", std::string(5000, 'l'));
  symlink("file", "alias");
  makeFolder("empty");
  // One that may not be written, one that is gone, and one that is a FIFO once it is listed.
  intercept(host().calls.open, [](const auto& open, int folder, const char* path, int flags,
                                  mode_t mode) {
    const std::string_view name(path), last = name.substr(name.rfind('/') + 1);
    if (last == "77") return failWith(EACCES);
    return open(folder, last == "78" ? "/dev/null" : last == "79" ? "none" : path, flags, mode);
  });
  std::atomic<int> number = 0;
  intercept(host().calls.close, [&](const auto& close, int d) { return ++number, close(d); });
  const std::string expected = load(std::nullopt);
  EXPECT_NE(expected.find("\nempty/0\nf0/0\n"), std::string::npos);
  EXPECT_NE(expected.find("\n-54 0 0 0 \n"), std::string::npos);
  EXPECT_NE(expected.find("\n-36 0 0 0 \n"), std::string::npos);
  for (const unsigned readers : {0u, 1u, 3u, 16u})
    EXPECT_EQ(load(readers), expected) << readers;
}

// Neither a system that gives no thread its own descriptors, nor one that has none to spare, nor a
// close that fails keeps a file from being read.
TEST_F(FileReadingTest, GoesOnWithLess) {
  for (int i = 0; i < 200; ++i)
    write(std::to_string(i), "bytes");
  const std::string expected = load(std::nullopt);
  host().calls.ownDescriptors = [] { return failWith(EPERM); };
  EXPECT_EQ(load(4), expected);
  const auto main = std::this_thread::get_id();
  intercept(host().calls.open, [main](const auto& open, auto... args) {
    return std::this_thread::get_id() == main ? open(args...) : failWith(EMFILE);
  });
  EXPECT_EQ(load(4), expected);
  intercept(host().calls.close, [](const auto& close, int d) { return close(d), failWith(EIO); });
  host().calls.open = real.open;
  EXPECT_EQ(load(4).find("0 0 0"), std::string::npos) << "the result of each close is told";
}

TEST_F(FileReadingTest, EndsAtAnyMoment) {
  host().readers = 8;
  for (int i = 0; i < 100; ++i)
    write(std::to_string(i), "bytes");
  std::vector<FSRef> items;
  ASSERT_NE(listed(ref(""), &items), "");
  for (std::size_t read = 0; read < items.size(); read += 3) {
    FileReading reading;
    for (const FSRef& item : items)
      reading.add(item);
    for (std::size_t i = 0; i < read; ++i)
      EXPECT_EQ(reading.next().bytes, "bytes");
  }
}

}  // namespace
}  // namespace cairnset
