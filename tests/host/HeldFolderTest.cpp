// What lies below a held folder, however deep, is found from there.
#include <atomic>
#include <sys/resource.h>

#include "host/files/FileReading.h"
#include "host/files/FileSystemHelpers.h"
#include "host/files/FolderWalk.h"
#include "host/files/HeldFolder.h"
#include "tests/host/FileTest.h"

namespace cairnset {

class HeldFolderTest : public FileTest {
 protected:
  // Nests folders called "d", with a file "z" in each, and returns a descriptor of the innermost.
  int nest(const std::string& top, int depth) const {
    int folder = ::open(path(top).c_str(), O_RDONLY);
    for (int i = 0; i < depth; ++i) {
      const int file = ::openat(folder, "z", O_WRONLY | O_CREAT, 0666);
      check(::write(file, "z", 1) == 1 && ::close(file) == 0, "a file");
      check(::mkdirat(folder, "d", 0777) == 0, "a folder");
      const int below = ::openat(folder, "d", O_RDONLY);
      ::close(std::exchange(folder, below));
    }
    return folder;
  }
};

// With far fewer descriptors than levels, and at a cost that does not grow with the depth.
TEST_P(HeldFolderTest, IsWalkedReadAndChangedHoweverDeep) {
  // A change so deep costs an overlay its whole path.
  const int depth = GetParam() == On::kDisk ? 20000 : 1000;
  int innermost = nest("", depth);
  std::optional<HeldFolder> held(ref(""));
  struct rlimit before, low;
  ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
  low = before;
  low.rlim_cur = static_cast<rlim_t>(lowestFreeDescriptor()) + 8;
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &low), 0);
  std::atomic<std::size_t> looked = 0;  // bytes of all paths that are opened
  intercept(host().calls.open, [&](const auto& open, int at, const char* name, auto... flags) {
    return looked += std::strlen(name), open(at, name, flags...);
  });
  std::vector<FSRef> folders, files;
  FolderWalk walk(held->ref());
  std::optional<FileReading> reading([](std::string_view start) { return start == "z"; });
  std::size_t read = 0;
  const auto readOne = [&] { read += reading->next().bytes == "z"; };
  while (const auto item = walk.next()) {
    (item->isFolder ? folders : files).push_back(item->ref);
    if (!item->isFolder) reading->add(item->ref);
    if (!item->isFolder && files.size() > 1000) readOne();
  }
  for (int i = 0; i < 1000; ++i)
    readOne();
  EXPECT_TRUE(folders.size() == static_cast<std::size_t>(depth) && read == folders.size())
      << folders.size() << ' ' << read;
  std::size_t deleted = 0;
  for (const FSRef& file : files)
    deleted += FSDeleteObject(&file) == noErr;
  ::setrlimit(RLIMIT_NOFILE, &before);
  EXPECT_EQ(deleted, folders.size());
  EXPECT_LT(looked.load(), 250u * folders.size());
  reading.reset(), held.reset();  // what is open keeps the system from forgetting what is removed
  if (GetParam() != On::kDisk) {
    host().calls = {};
    for (const FSRef& file : files)
      deleted -= FSDeleteObject(&file) == noErr;
    EXPECT_EQ(deleted, 0u) << "now they are gone from the disk";
  }
  for (int i = 0; i < depth; ++i) {
    const int above = ::openat(innermost, "..", O_RDONLY);
    ::close(std::exchange(innermost, above));
    check(::unlinkat(innermost, "d", AT_REMOVEDIR) == 0, "a folder is left");
  }
  ::close(innermost);
}

// The way up from a folder that was moved meanwhile leads to another of the same depth.
TEST_P(HeldFolderTest, WhatIsMovedMisleadsNobody) {
  makeFolder("held/e");
  ::close(nest("held", 140)), ::close(nest("held/e", 140));
  const HeldFolder held(ref("held"));
  const auto nested = [](const std::string& top, int depth) {
    std::string folder = top;
    for (int i = 0; i < depth; ++i)
      folder += "/d";
    return folder;
  };
  const FSRef deep = ref(nested("held", 135) + "/z"), file = ref(nested("held", 70) + "/z");
  EXPECT_TRUE(isRegularFile(&deep));
  const auto move = [this](const std::string& from, const std::string& to) {
    EXPECT_EQ(real.rename(AT_FDCWD, path(from).c_str(), AT_FDCWD, path(to).c_str()), 0);
  };
  move(nested("held/e", 99), "gone");
  move(nested("held", 100), nested("held/e", 99));
  write(nested("held/e", 69) + "/z", "another");
  char buffer[FileStart::kMost];
  EXPECT_EQ(readFileStart(file, fsRdPerm, buffer).bytes, "z");
}

INSTANTIATE_TEST_SUITE_P(On, HeldFolderTest, testing::Values(On::kDisk, On::kOverlayOverDisk),
                         nameOf);

}  // namespace cairnset
