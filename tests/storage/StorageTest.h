// What the tests of this layer share.
#pragma once

#include <string>

#include <gtest/gtest.h>

#include "host/FileManager.h"
#include "storage/VirtualFile.h"
#include "tests/TestFolder.h"

namespace cairnset {

using namespace std::string_literals;

/// A memory file with content.
struct Filled : VirtualFile {
  explicit Filled(std::string s) : VirtualFile(s.data(), s.size(), false, 4) {}
};

inline std::string contentOf(const VirtualFile& f) {
  return {f.buffer(), f.size()};
}

/// A real file with content and its open data fork.
struct ForkFile {
  explicit ForkFile(const std::string& content) {
    folder.write("file", content);
    const FSRef ref = folder.ref("file");
    EXPECT_EQ(FSOpenFork(&ref, 0, u"", fsRdWrPerm, &fork), noErr);
  }
  ~ForkFile() { EXPECT_EQ(FSCloseFork(fork), noErr); }
  const TestFolder folder;
  short fork = 0;
};

}  // namespace cairnset
