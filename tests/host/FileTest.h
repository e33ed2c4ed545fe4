// What the tests of the File Manager share.
#pragma once

#include "tests/TestFolder.h"

namespace cairnset {

class FileTest : public FolderTest {
 protected:
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
  void symlink(const std::string& target, const std::string& name) {
    fs::create_symlink(target, path(name));
  }

  /// Whether the volume keeps names byte for byte and tells cases apart, as not every one does.
  bool keepsNames() {
    const bool keeps = std::ofstream(path("A\xFF")) && look() == "A\xFF= " && !exists("a\xFF");
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

  const SystemCalls real;
};

}  // namespace cairnset
