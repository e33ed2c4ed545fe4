// What the tests of the File Manager share: each runs on the disk and on an overlay, so that the
// double cannot drift from the real calls.
#pragma once

#include "host/files/ChangeRecord.h"
#include "host/files/Overlay.h"
#include "tests/TestFolder.h"

namespace cairnset {

enum class On {
  kDisk,
  kOverlay,         // where everything is made in memory
  kOverlayOverDisk  // where what is there before the first change is on the disk
};

class FileTest : public FolderTest, public testing::WithParamInterface<On> {
 protected:
  FileTest() { host().calls = real; }
  ~FileTest() override { host().calls = {}; }

  static OSErr create(const FSRef& folder, std::u16string_view name, FSRef* out = nullptr) {
    return FSCreateFileUnicode(&folder, name.size(), name.data(), out, nullptr);
  }
  static OSErr find(const FSRef& folder, std::u16string_view name, FSRef* out) {
    return FSMakeFSRefUnicode(&folder, name.size(), name.data(), kTextEncodingUnknown, out);
  }
  static OSErr rename(const FSRef& ref, std::u16string_view name, FSRef* out = nullptr) {
    return FSRenameUnicode(&ref, name.size(), name.data(), kTextEncodingUnknown, out);
  }
  static OSErr openFork(const FSRef& ref, std::int8_t permissions, std::int16_t* fork) {
    return FSOpenFork(&ref, 0, u"", permissions, fork);
  }
  // These change and show what the calls under test see.
  void symlink(const std::string& target, const std::string& name) {
    make(table().symlink(target.c_str(), AT_FDCWD, path(name).c_str()), name);
  }
  void hardLink(const std::string& file, const std::string& name) {
    make(table().link(AT_FDCWD, path(file).c_str(), AT_FDCWD, path(name).c_str()), name);
  }
  void makeFolder(const std::string& name) {
    if (name.find('/') != name.npos) makeFolder(name.substr(0, name.rfind('/')));
    if (!exists(name)) make(table().mkdir(AT_FDCWD, path(name).c_str(), 0777), name);
  }
  void write(const std::string& name, const std::string& bytes) {
    if (name.find('/') != name.npos) makeFolder(name.substr(0, name.rfind('/')));
    const int file = table().open(AT_FDCWD, path(name).c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    make(table().ftruncate(file, 0), name);
    const ssize_t done = table().pwrite(file, bytes.data(), bytes.size(), 0);
    make(table().close(file) - (done != static_cast<ssize_t>(bytes.size())), name);
  }
  void remove(const std::string& name) {
    for (const auto& [item, content] : items(name)) {
      if (content != "/") make(table().unlink(AT_FDCWD, path(item).c_str(), 0), item);
    }
    if (table().unlink(AT_FDCWD, path(name).c_str(), 0) != 0)
      make(table().unlink(AT_FDCWD, path(name).c_str(), AT_REMOVEDIR), name);
  }
  std::string read(const std::string& name) const {
    std::map<std::string, std::string> item;
    put(name, item);
    return item.at(name).substr(1);
  }
  bool exists(const std::string& name) const {
    struct stat info;
    return real.lstat(AT_FDCWD, path(name).c_str(), &info) == 0;
  }
  std::map<std::string, std::string> items(const std::string& below) const {
    std::map<std::string, std::string> all;
    put(below, all);
    all.erase(below);
    return all;
  }
  std::string look(const std::string& below = "") const {
    std::string text;
    for (const auto& [name, item] : items(below))
      text += name + item + ' ';
    return text;
  }

  /// Whether the volume keeps names byte for byte and tells cases apart, as not every one does.
  bool keepsNames() {
    const bool keeps =
        std::ofstream(path("A\xFF")) && TestFolder::look() == "A\xFF= " && !exists("a\xFF");
    fs::remove(path("A\xFF"));
    return keeps;
  }
  /// What an iterator gives, which is left open: the volume names, folders with a "/", each with a
  /// "|" after it; or the result code.
  static std::string listed(const FSRef& folder, std::vector<FSRef>* items = nullptr) {
    std::string names;
    FSIterator iterator;
    OSErr result = FSOpenIterator(&folder, 0, &iterator);
    while (result == noErr) {
      FSCatalogInfo infos[3];
      FSRef refs[3];
      std::size_t count = 0;
      result = FSGetCatalogInfoBulk(iterator, 3, &count, kFSCatInfoNodeFlags, infos, refs);
      for (std::size_t i = 0; i < count; ++i) {
        names.append(host().nodes.name(refs[i].node)).append(infos[i].nodeFlags != 0 ? "/|" : "|");
        if (items != nullptr) items->push_back(refs[i]);
      }
    }
    return result == errFSNoMoreItems ? names : std::to_string(result);
  }

 private:
  // A table of which an overlay may make no call that could change anything.
  static SystemCalls toReadOnly() {
    SystemCalls calls;
    const auto refuse = [](auto& call) {
      intercept(call, [](auto...) {
        ADD_FAILURE() << "a call that could change the disk";
        return failWith(EPERM);
      });
    };
    refuse(calls.pwrite), refuse(calls.ftruncate), refuse(calls.mkdir), refuse(calls.rename);
    refuse(calls.renameNoReplace), refuse(calls.link), refuse(calls.unlink), refuse(calls.symlink);
    refuse(calls.setAttribute), refuse(calls.flush), refuse(calls.flushVolume);
    intercept(calls.open, [](const auto& open, int folder, const char* path, int flags, mode_t m) {
      EXPECT_EQ(flags & (O_ACCMODE | O_CREAT | O_TRUNC), O_RDONLY);
      return open(folder, path, flags, m);
    });
    return calls;
  }

  const SystemCalls& table() const {
    const bool isOver = GetParam() == On::kOverlayOverDisk && _record.changesIn({}).empty();
    return isOver ? _disk : real;
  }
  static void make(int result, const std::string& name) {
    if (result != 0) throw std::runtime_error("could not be made: " + name);
  }
  void put(const std::string& name, std::map<std::string, std::string>& all) const {
    const std::string place = path(name);
    std::string bytes(5000, '?');
    struct stat info = {};
    if (real.lstat(AT_FDCWD, place.c_str(), &info) != 0) throw std::runtime_error("none: " + name);
    if (S_ISLNK(info.st_mode)) {
      const ssize_t size = real.readlink(AT_FDCWD, place.c_str(), bytes.data(), bytes.size());
      all[name] = "->" + bytes.substr(0, static_cast<std::size_t>(size));
      return;
    }
    const int item = real.open(AT_FDCWD, place.c_str(), O_RDONLY | O_CLOEXEC, 0);
    if (!S_ISDIR(info.st_mode)) {
      const ssize_t size = real.pread(item, bytes.data(), bytes.size(), 0);
      EXPECT_EQ(size, info.st_size);
      all[name] = "=" + bytes.substr(0, static_cast<std::size_t>(size));
      real.close(item);
      return;
    }
    all[name] = "/";
    DIR* const listing = real.fdopendir(item);
    while (const struct dirent* entry = real.readdir(listing)) {
      const std::string inner = entry->d_name;
      if (inner != "." && inner != "..") put(name.empty() ? inner : name + "/" + inner, all);
    }
    real.closedir(listing);
  }

  const SystemCalls _disk;
  Overlay _overlay{toReadOnly()};

 protected:
  SystemCalls real = GetParam() == On::kDisk ? SystemCalls() : _overlay.calls();

 private:
  const ChangeRecord _record{real};
};

inline std::string nameOf(const testing::TestParamInfo<On>& on) {
  return on.param == On::kDisk ? "disk" : on.param == On::kOverlay ? "overlay" : "overDisk";
}

#define ON_DISK_AND_OVERLAYS(Suite)   \
  INSTANTIATE_TEST_SUITE_P(On, Suite, \
                           testing::Values(On::kDisk, On::kOverlay, On::kOverlayOverDisk), nameOf)

}  // namespace cairnset
