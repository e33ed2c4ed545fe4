// Walking and reading ahead: the results are those of listing and opening one after the other, for
// any number of threads and whatever becomes of the files.
#include <atomic>
#include <thread>

#include "host/files/FileReading.h"
#include "host/files/FolderWalk.h"
#include "tests/host/FileTest.h"

namespace cairnset {

class FileReadingTest : public FileTest {
 protected:
  static bool isWhole(std::string_view start) { return start == "deep"; }

  // Items with their depths, and the files' starts, read by so many threads, or else one by one.
  std::string load(std::optional<unsigned> readers) {
    host().readers = readers;
    std::ostringstream walked, read;
    FolderWalk walk(ref(""));
    FileReading reading(isWhole);
    std::size_t ahead = 0;
    const auto show = [&read](const FileStart& start) {
      read << start.opened << start.read << start.closed << ' ' << start.size << ' ' << start.bytes
           << '\n';
    };
    while (const auto item = walk.next()) {
      walked << item->depth << host().nodes.name(item->ref.node) << (item->isFolder ? "/" : "")
             << item->listed << '\n';
      char buffer[FileStart::kMost];
      if (item->isFolder) continue;
      if (!readers) show(readFileStart(item->ref, fsRdWrPerm, buffer));
      if (readers) reading.add(item->ref), ++ahead;
      for (; ahead > 100; --ahead)
        show(reading.next());
    }
    for (; ahead > 0; --ahead)
      show(reading.next());
    return walked.str() + read.str();
  }
};

TEST_P(FileReadingTest, GivesWhatOneByOneGives) {
  const std::string deep = "d/" + std::string(250, 'x') + "/" + std::string(250, 'y');
  for (std::size_t i = 0; i < 400; ++i)
    write("f" + std::to_string(i / 30) + (i % 60 < 5 ? "/in/ner/" : "/") +
              std::to_string(i * 7919 % 400),
          std::string(i * 8, 'a'));
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
  const std::string expected = load(std::nullopt);
  for (const char* part : {"\n0empty/0\n0f0/0\n", "\n-5400 0 \n", "\n-3600 0 \n"})
    EXPECT_NE(expected.find(part), std::string::npos) << part;
  for (const unsigned readers : {0u, 1u, 3u, 16u})
    EXPECT_EQ(load(readers), expected) << readers;
}

// Neither a system that gives no thread its own descriptors, nor one that has none to spare, nor a
// close that fails keeps a file from being read; nor does an end at any moment harm.
TEST_P(FileReadingTest, GoesOnWithLess) {
  for (int i = 0; i < 200; ++i)
    write(std::to_string(i), "bytes");
  const std::string expected = load(std::nullopt);
  host().calls.ownDescriptors = [] { return failWith(EPERM); };
  EXPECT_EQ(load(4), expected);
  intercept(host().calls.open, [main = std::this_thread::get_id()](const auto& open, auto... args) {
    return std::this_thread::get_id() == main ? open(args...) : failWith(EMFILE);
  });
  EXPECT_EQ(load(4), expected);
  intercept(host().calls.close, [](const auto& close, int d) { return close(d), failWith(EIO); });
  host().calls.open = real.open;
  EXPECT_EQ(load(4).find("\n000 "), std::string::npos) << "the result of each close is told";
  std::vector<FSRef> items;
  ASSERT_NE(listed(ref(""), &items), "");
  for (std::size_t read = 0; read < items.size(); read += 3) {
    FileReading reading(isWhole);
    for (const FSRef& item : items)
      reading.add(item);
    for (std::size_t i = 0; i < read; ++i)
      EXPECT_EQ(reading.next().bytes, "bytes");
  }
}

ON_DISK_AND_OVERLAYS(FileReadingTest);

}  // namespace cairnset
