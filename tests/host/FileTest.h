// What the tests of the File Manager share.
#pragma once

#include <cerrno>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>

#include "host/FileManager.h"
#include "host/Names.h"
#include "host/SystemCalls.h"
#include "tests/TestFolder.h"

namespace cairnset {

/// A folder of its own, the table of system calls put back, and no descriptor left open.
class FileTest : public testing::Test, protected TestFolder {
 protected:
  ~FileTest() override {
    systemCalls() = real;
    EXPECT_EQ(lowestFreeDescriptor(), _lowest) << "a descriptor was left open";
  }

  static int lowestFreeDescriptor() {
    const int descriptor = ::dup(STDERR_FILENO);
    ::close(descriptor);
    return descriptor;
  }
  /// Sets errno and answers failure: the body of a call that fails.
  static int failWith(int error) {
    errno = error;
    return -1;
  }

  static OSErr create(const FSRef& folder, std::u16string_view name, FSRef* out = nullptr) {
    return FSCreateFileUnicode(&folder, name.size(), name.data(), out, nullptr);
  }
  static OSErr find(const FSRef& folder, std::u16string_view name, FSRef* out) {
    return FSMakeFSRefUnicode(&folder, name.size(), name.data(), kTextEncodingUnknown, out);
  }
  static OSErr rename(const FSRef& ref, std::u16string_view name, FSRef* out = nullptr) {
    return FSRenameUnicode(&ref, name.size(), name.data(), kTextEncodingUnknown, out);
  }
  static OSErr move(const FSRef& ref, const FSRef& folder, FSRef* out = nullptr) {
    return FSMoveObject(&ref, &folder, out);
  }
  static OSErr openFork(const FSRef& ref, std::int8_t permissions, std::int16_t* fork) {
    return FSOpenFork(&ref, 0, u"", permissions, fork);
  }
  /// The item's name as the volume has it.
  static std::string volumeName(const FSRef& ref) {
    HFSUniStr255 name;
    std::string bytes;
    placeOf(ref, nullptr, &name);
    EXPECT_EQ(volumeNameFromUnicode({name.unicode, name.length}, bytes), noErr);
    return bytes;
  }
  /// What an iterator gives: the volume names in order, those of folders with a "/". The iterator
  /// is left open.
  static OSErr iterate(const FSRef& folder, std::vector<std::string>& names,
                       std::vector<FSRef>* items = nullptr) {
    FSIterator iterator;
    OSErr result = FSOpenIterator(&folder, 0, &iterator);
    while (result == noErr) {
      FSCatalogInfo infos[3];
      FSRef refs[3];
      std::size_t count = 0;
      result = FSGetCatalogInfoBulk(iterator, 3, &count, kFSCatInfoNodeFlags, infos, refs);
      for (std::size_t i = 0; i < count; ++i) {
        names.push_back(volumeName(refs[i]) + (infos[i].nodeFlags != 0 ? "/" : ""));
        if (items != nullptr) items->push_back(refs[i]);
      }
    }
    return result == errFSNoMoreItems ? noErr : result;
  }

  const SystemCalls real = systemCalls();

 private:
  const int _lowest = lowestFreeDescriptor();
};

}  // namespace cairnset
