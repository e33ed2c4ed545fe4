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
  /// Whether the volume keeps names byte for byte and tells cases apart, as not every one does.
  static bool keepsNames() {
    const TestFolder disk;
    return std::ofstream(disk.path("A\xFF")) && disk.look() == "A\xFF= " && !disk.exists("a\xFF");
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

  const SystemCalls& toSee() const override { return real; }
  const SystemCalls& toChange() const override {
    const bool isOver = GetParam() == On::kOverlayOverDisk && _record.changesIn({}).empty();
    return isOver ? _disk : real;
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
