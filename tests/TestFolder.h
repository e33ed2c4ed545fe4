// A folder of its own for a test.
#pragma once

#include "host/Host.h"
#include "host/files/FileManager.h"
#include "host/files/Overlay.h"
#include "tests/Testing.h"

namespace cairnset {

/// A new, empty folder, which goes with this object, unless a test failed: then it is kept, and
/// said where. Names are paths below it; "" is the folder itself. Whatever cannot be done throws.
class TestFolder {
 public:
  explicit TestFolder(const fs::path& parent = fs::temp_directory_path()) {
    std::string pattern = (parent / "cairnset-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no folder: " + pattern);
    _path = fs::canonical(pattern).string();
  }
  virtual ~TestFolder() {
    std::error_code ignored;
    testing::Test::HasFailure() ? void(std::cerr << "kept: " << _path << '\n')
                                : void(fs::remove_all(_path, ignored));
  }
  TestFolder(const TestFolder&) = delete;
  TestFolder& operator=(const TestFolder&) = delete;

  std::string path(const std::string& name) const {
    return name.empty() ? _path : _path + "/" + name;
  }

  FSRef ref(const std::string& name) const {
    FSRef result;
    if (FSPathMakeRef(path(name).c_str(), &result, nullptr) != noErr)
      throw std::runtime_error("no such item: " + name);
    return result;
  }

  /// Makes the folder, and those above it.
  void makeFolder(const std::string& name) const {
    if (name.find('/') != name.npos) makeFolder(name.substr(0, name.rfind('/')));
    if (!exists(name)) make(toChange().mkdir(AT_FDCWD, path(name).c_str(), 0777), name);
  }

  /// Writes a file, and makes the folders above it.
  void write(const std::string& name, const std::string& bytes) const {
    if (name.find('/') != name.npos) makeFolder(name.substr(0, name.rfind('/')));
    const SystemCalls& calls = toChange();
    const int file = calls.open(AT_FDCWD, path(name).c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    make(calls.ftruncate(file, 0), name);
    const ssize_t done = calls.pwrite(file, bytes.data(), bytes.size(), 0);
    make(calls.close(file) - (done != static_cast<ssize_t>(bytes.size())), name);
  }
  void symlink(const std::string& target, const std::string& name) const {
    make(toChange().symlink(target.c_str(), AT_FDCWD, path(name).c_str()), name);
  }
  void hardLink(const std::string& file, const std::string& name) const {
    make(toChange().link(AT_FDCWD, path(file).c_str(), AT_FDCWD, path(name).c_str()), name);
  }
  /// Removes an item, and all that is in it.
  void remove(const std::string& name) const {
    std::map<std::string, std::string> all;
    add(name, all);
    for (auto item = all.rbegin(); item != all.rend(); ++item) {  // what is in a folder before it
      const int flags = item->second == "/" ? AT_REMOVEDIR : 0;
      make(toChange().unlink(AT_FDCWD, path(item->first).c_str(), flags), item->first);
    }
  }

  std::string read(const std::string& name) const { return content(name).substr(1); }

  bool exists(const std::string& name) const {
    struct stat info;
    return toSee().lstat(AT_FDCWD, path(name).c_str(), &info) == 0;
  }

  /// All that is there, by name: "/" for a folder, "=" and the bytes of a file, "->" and where an
  /// alias leads.
  std::map<std::string, std::string> items(const std::string& below = "") const {
    std::map<std::string, std::string> all;
    add(below, all);
    all.erase(below);
    return all;
  }
  /// The same as one text.
  std::string look(const std::string& below = "") const {
    std::string text;
    for (const auto& [name, item] : items(below))
      text += name + item + ' ';
    return text;
  }

 protected:
  /// The calls by which the functions above see what is there, and change it.
  virtual const SystemCalls& toSee() const { return _disk; }
  virtual const SystemCalls& toChange() const { return toSee(); }

 private:
  static void make(int result, const std::string& name) {
    if (result != 0) throw std::runtime_error("could not be made: " + name);
  }
  std::string content(const std::string& name) const {
    const std::string place = path(name);
    struct stat info = {};
    if (toSee().lstat(AT_FDCWD, place.c_str(), &info) != 0)
      throw std::runtime_error("no such item: " + name);
    if (S_ISDIR(info.st_mode)) return "/";
    std::string bytes(static_cast<std::size_t>(info.st_size), '?');
    ssize_t size;
    if (S_ISLNK(info.st_mode)) {
      size = toSee().readlink(AT_FDCWD, place.c_str(), bytes.data(), bytes.size());
    } else {
      const int file = toSee().open(AT_FDCWD, place.c_str(), O_RDONLY | O_CLOEXEC, 0);
      size = toSee().pread(file, bytes.data(), bytes.size(), 0);
      toSee().close(file);
    }
    if (size != info.st_size) throw std::runtime_error("could not be read: " + name);
    return (S_ISLNK(info.st_mode) ? "->" : "=") + bytes;
  }
  void add(const std::string& name, std::map<std::string, std::string>& all) const {
    if ((all[name] = content(name)) != "/") return;
    const int folder = toSee().open(AT_FDCWD, path(name).c_str(), O_RDONLY | O_CLOEXEC, 0);
    DIR* const listing = toSee().fdopendir(folder);
    while (const struct dirent* entry = toSee().readdir(listing)) {
      const std::string inner = entry->d_name;
      if (inner != "." && inner != "..") add(name.empty() ? inner : name + "/" + inner, all);
    }
    toSee().closedir(listing);
  }

  const SystemCalls _disk;
  std::string _path;
};

/// A test with a folder and a host of its own, which leaves no descriptor open.
class FolderTest : public testing::Test, protected TestFolder {
 protected:
  using TestFolder::TestFolder;
  ~FolderTest() override { EXPECT_EQ(lowestFreeDescriptor(), _lowest) << "one was left open"; }
  static int lowestFreeDescriptor() {
    const int descriptor = ::dup(STDERR_FILENO);
    ::close(descriptor);
    return descriptor;
  }

 private:
  const int _lowest = lowestFreeDescriptor();
  Host _host;
  const HostInUse _host_in_use{_host};
};

/// The same in memory: what the test and the host make never comes onto the disk.
class MemoryTest : public FolderTest {
 protected:
  MemoryTest() { host().calls = _overlay.calls(); }
  ~MemoryTest() override { host().calls = {}; }
  const SystemCalls& toSee() const override { return _overlay.calls(); }

 private:
  Overlay _overlay{SystemCalls()};
};

}  // namespace cairnset
