#include <sys/resource.h>

#include "host/files/FileSystemHelpers.h"
#include "tests/host/FileTest.h"
#if __has_include(<linux/seccomp.h>)
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#endif

namespace cairnset {

class FileManagerTest : public FileTest {
 protected:
  // From now on listings have so many entries and then an error, so often, or kinds that nobody
  // knows.
  void listWith(int entries, bool hideKinds, int errors = 9) {
    host().calls.readdir = [ =, readdir = real.readdir ](DIR * folder) mutable -> struct dirent* {
      if (entries-- == 0 && errors-- > 0) return failWith(EIO), entries = 0, nullptr;
      struct dirent* entry = readdir(folder);
      if (entry != nullptr && hideKinds) entry->d_type = DT_UNKNOWN;
      return entry;
    };
  }
  // The path below this folder, or the code of what went wrong.
  std::string shown(const FSRef& ref, OSErr result = noErr) {
    char text[PATH_MAX];
    if (result == noErr) result = convertFSRefToPath(&ref, text, sizeof text);
    return result == noErr ? std::string(text).substr(path("").size()) : std::to_string(result);
  }
};

TEST_P(FileManagerTest, ListsInTheOrderOfTheInstrumentsHost) {
  if (!keepsNames()) GTEST_SKIP() << "this volume changes names";
  // Decomposed, in lower case, unit by unit ("." 2E, "/" 2F, "1" 31, "z" 7A, acute 301, ae E6,
  // alpha 3B1, U+1F600 D83D DE00, bytes that are not UTF-8 DCxx, full-width a FF41), then by the
  // bytes.
  const std::string order =
      " x|1|10|2/|_x|a|A.b/|a:b|a1|AB/|ab|E|ez|E\xCC\x81|e\xCC\x81|\xC3\x89z/|\xC3\xA9z|f|\xC3\xA6|"
      "\xCE\xB1|\xF0\x9F\x98\x80|\xFF|\xEF\xBC\xA1|";
  std::istringstream in(order);
  for (std::string name; std::getline(in, name, '|');)
    name.back() == '/' ? makeFolder(name) : write(name, "");
  EXPECT_EQ(listed(ref("")), order);
  listWith(-1, true);
  EXPECT_EQ(listed(ref("")), order);
}

TEST_P(FileManagerTest, AListingThatFailsIsNoEnd) {
  makeFolder("a"), makeFolder("b"), makeFolder("c");
  for (int given = 0; given <= 5; ++given) {  // "." and ".." too
    listWith(given, false);
    EXPECT_EQ(listed(ref("")), "-36") << given;
    listWith(given, false, 1);
    EXPECT_EQ(listed(ref("")), "a/|b/|c/|") << "after one that passes";
  }
  listWith(-1, true);
  for (const int error : {EIO, ENOENT}) {  // of unknown kind, or gone
    host().calls.lstat = [=, this](int folder, const char* name, struct stat* out) {
      return *name == 'b' ? failWith(error) : real.lstat(folder, name, out);
    };
    EXPECT_EQ(listed(ref("")), error == EIO ? "-36" : "a/|c/|");
  }
  host().calls.close = [this](int descriptor) { return real.close(descriptor), failWith(ENOSPC); };
  host().calls.fdopendir = [](int) -> DIR* { return failWith(EMFILE), nullptr; };
  EXPECT_EQ(listed(ref("")), "-42") << "not what the tidying met";
}

TEST_P(FileManagerTest, AliasesAreFollowedOnlyWhenResolved) {
  write("folder/file", "x");
  symlink("folder/../b/", "a"), symlink("folder//", "b"), symlink("none/none/none", "dangling");
  symlink("dangling", "e"), symlink("loop", "loop");
  std::vector<FSRef> items;
  ASSERT_EQ(listed(ref(""), &items), "a|b|dangling|e|folder/|loop|");
  FSRef found;
  EXPECT_TRUE(find(items[1], u"file", &found) == dirNFErr && listed(items[1]) == "-120");
  std::string resolved;
  for (const bool toTheEnd : {false, true}) {
    for (const FSRef& item : items) {
      bool toFolder = false;
      const OSErr result = FSResolveAliasFile(&(found = item), toTheEnd, &toFolder, nullptr);
      resolved += shown(found, result) + (toFolder ? "/ " : " ");
    }
  }
  EXPECT_EQ(resolved,
            "/b /folder/ -43 /dangling /folder/ /loop /folder/ /folder/ -43 -43 /folder/ -36 ");
  EXPECT_EQ(FSDeleteObject(&items[1]), noErr);
  EXPECT_EQ(read("folder/file"), "x");
}

// With few descriptors to be had, and so deep that no call takes the whole path.
TEST_P(FileManagerTest, FoldersDeeperThanAPathIsLong) {
  const std::string part(200, 'd');
  fs::current_path(path(""));
  for (int length = 0; length < 3 * PATH_MAX; length += 200) {
    fs::create_directory(part);
    fs::current_path(part);
  }
  std::ofstream("file") << "deep";
  struct rlimit before, low;
  ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
  low = before;
  low.rlim_cur = static_cast<rlim_t>(lowestFreeDescriptor()) + 3;  // of a stretch; two of a step
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &low), 0);
  std::vector<FSRef> folders{ref("")};
  for (std::string names = part + "/|"; names == part + "/|";)
    names = listed(FSRef(folders.back()), &folders);
  ::setrlimit(RLIMIT_NOFILE, &before);
  ASSERT_EQ(folders.size(), 3u * PATH_MAX / 200 + 3);
  FSRef file = folders.back(), made;
  EXPECT_TRUE(setCreationDate(&file, 5) != noErr || getCreationDate(&file) == 5);
  folders.pop_back();
  ASSERT_EQ(create(folders.back(), u"other", &made), noErr);
  EXPECT_EQ(rename(made, u"file"), dupFNErr);
  EXPECT_EQ(rename(file, u"renamed", &file), noErr);
  EXPECT_EQ(FSMoveObject(&made, &folders[0], nullptr), noErr);
  EXPECT_TRUE(exists("other"));
  std::int16_t fork = 0;
  std::int64_t size = 0;
  EXPECT_EQ(openFork(file, fsRdPerm, &fork) + FSGetForkSize(fork, &size), noErr);
  EXPECT_EQ(size + FSCloseFork(fork), 4);
  fs::current_path("/");
  for (folders.push_back(file); folders.size() > 1; folders.pop_back())
    EXPECT_EQ(FSDeleteObject(&folders.back()), noErr) << folders.size();
}

// Found again by FSSpec and by exact name, whatever the volume calls it, and put back to the byte.
TEST_P(FileManagerTest, EveryItemIsFoundByItsNames) {
  if (!keepsNames()) GTEST_SKIP() << "this volume changes names";
  std::vector<std::string> names = {
      "plain",    "a:b",       std::string(63, 'x'), std::string(64, 'x'), std::string(255, 'x'),
      "\xC3\xA9", "e\xCC\x81", "\xE6\x97\xA5",       "\xE6\x9C\xAC",       "\xFF",
      "\xFE",     "Take #2",   "x#ffffffff"};
  std::vector<FSSpec> fsSpecs(40);
  for (std::size_t i = 0; i < fsSpecs.size() && i < names.size(); ++i) {
    write(names[i], "");
    ASSERT_EQ(convertPathToFSSpec(path(names[i]).c_str(), &fsSpecs[i]), noErr) << names[i];
    // A file can be called just what another one's FSSpec calls that.
    const std::string called(fsSpecs[i].name + 1, fsSpecs[i].name + 1 + fsSpecs[i].name[0]);
    if (called.find_first_of("/\x8E") == called.npos && !exists(called)) names.push_back(called);
  }
  names.resize(std::min(names.size(), fsSpecs.size()));
  const std::string before = look();
  for (std::size_t i = 0; i < names.size(); ++i) {
    FSRef item, folder;
    FSSpec parent;
    HFSUniStr255 name;
    EXPECT_EQ(FSpMakeFSRef(&fsSpecs[i], &item) + getParent(parent, fsSpecs[i]), noErr) << names[i];
    EXPECT_EQ(item, ref(names[i])) << names[i];
    EXPECT_TRUE(placeOf(item, &folder, &name) && folder.node == fsSpecs[i].parID);
    EXPECT_EQ(rename(item, u"other", &item), noErr);
    EXPECT_EQ(rename(item, {name.unicode, name.length}, &item), noErr) << names[i];
    EXPECT_EQ(look(), before) << names[i];
  }
}

TEST_P(FileManagerTest, CreationDates) {
  if (GetParam() == On::kOverlay) GTEST_SKIP() << "no times are given to what is in memory";
  int birthError = 0;
  write("file", "x");
  const FSRef file = ref("file");
  const struct timespec times[] = {{}, {0, 250000000}};  // changed at 1970-01-01 00:00:00.25
  ::utimensat(AT_FDCWD, path("file").c_str(), times, 0);
  host().calls.getAttribute = [](auto...) -> ssize_t { return failWith(ENODATA); };
  host().calls.birthTime = [&](int, const char*, struct timespec* out) {
    *out = {978307200, 500000000};  // born at 2001-01-01 00:00:00.5
    return birthError == 0 ? 0 : failWith(birthError);
  };
  EXPECT_EQ(getCreationDate(&file), 3061152000u * 65536ull + 0x8000);
  birthError = ENOTSUP;
  EXPECT_EQ(getCreationDate(&file), 2082844800u * 65536ull + 0x4000);
  host().calls.getAttribute = real.getAttribute;
  // Set by us, and read as whoever comes later finds it.
  if (setCreationDate(&file, 0xF102030405060708) == ioErr) GTEST_SKIP() << "no attributes here";
  char bytes[9] = "";
  const int descriptor = real.open(AT_FDCWD, path("file").c_str(), O_RDONLY, 0);
  EXPECT_EQ(real.getAttribute(descriptor, "user.cairnset.created", bytes, 9), 8);
  real.close(descriptor);
  EXPECT_STREQ(bytes, "\xF1\2\3\4\5\6\7\b");
  EXPECT_EQ(getCreationDate(&file), 0xF102030405060708u);
}

TEST_P(FileManagerTest, NamesFromTextAndPathsThatJustFit) {
  FSRef found, file, accented;
  ASSERT_EQ(create(ref(""), std::u16string(64, u'y'), &file), noErr);
  ASSERT_EQ(create(ref(""), u"/\u00E9", &accented), noErr);
  EXPECT_TRUE(exists(":\xC3\xA9")) << "written composed";
  EXPECT_TRUE(setCFilename(found = file, "/\x8E") == noErr && found == accented);
  EXPECT_TRUE(setCFilename(found, std::string(70, 'y').c_str()) == noErr && found == file)
      << "64 units count";
  std::string text(path("").size() + 65 + 1, '?');  // room for the path and its NUL
  EXPECT_EQ(FSRefMakePath(&file, text.data(), text.size() - 1), bdNamErr);
  EXPECT_EQ(FSRefMakePath(&file, text.data(), text.size()), noErr);
}

TEST_P(FileManagerTest, LiesInOneFolder) {
  makeFolder("f/g"), write("a", ""), write("f/a", ""), write("f/b", "");
  const auto isSame = [this](const char* a, const char* b) {
    const FSRef refA = ref(a), refB = ref(b);
    return isSameFolder(&refA, &refB);
  };
  EXPECT_TRUE(isSame("f/a", "f/b") && isSame("f", "f/a") && isSame("f/a", "f"));
  const FSRef there = ref("a");
  EXPECT_FALSE(fileExists(&there)) << "whatever is there";
  EXPECT_FALSE(isSame("f/a", "f/g") || isSame("f/g", "f") || isSame("a", "f/a"));
}

#if defined(SECCOMP_RET_ERRNO) && defined(SYS_openat2)
// In a process of its own, to which the one call that does it all is forbidden for good.
TEST_P(FileManagerTest, StepByStepNoLinkIsFollowedEither) {
  write("folder/inner/file", "x");
  symlink("folder", "alias");
  symlink("file", "folder/inner/link");
  const auto open = [this] {
    struct sock_filter steps[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(struct seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_openat2, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EPERM),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW)};
    const struct sock_fprog program = {std::size(steps), steps};
    ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
    ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program);
    int status = 0;
    for (const char* name : {"folder/inner/file", "alias/inner/file", "folder/inner/link"})
      status = 2 * status + (real.open(AT_FDCWD, path(name).c_str(), O_RDONLY, 0) >= 0);
    std::_Exit(status);
  };
  EXPECT_EXIT(open(), testing::ExitedWithCode(4), "");
}
#endif

ON_DISK_AND_OVERLAYS(FileManagerTest);

}  // namespace cairnset
