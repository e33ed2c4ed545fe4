// What the tests of this layer share.
#pragma once

#include <filesystem>
#include <fstream>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "host/FileManager.h"
#include "storage/VirtualFile.h"

namespace cairnset {

using namespace std::string_literals;

/// A memory file with content.
struct Filled : VirtualFile {
  explicit Filled(std::string s) : VirtualFile(s.data(), s.size(), false, 4) {}
};

inline std::string contentOf(const VirtualFile& f) {
  return {f.buffer(), f.size()};
}

/// A real file with content and its open data fork. The file of a failed test is kept.
struct ForkFile {
  explicit ForkFile(const std::string& content) {
    std::ofstream(path, std::ios::binary) << content;
    FSRef ref;
    EXPECT_EQ(FSPathMakeRef(path.c_str(), &ref, nullptr), noErr) << path;
    EXPECT_EQ(FSOpenFork(&ref, 0, u"", fsRdWrPerm, &fork), noErr) << path;
  }
  ~ForkFile() {
    EXPECT_EQ(FSCloseFork(fork), noErr);
    if (!::testing::Test::HasFailure()) std::filesystem::remove(path);
  }
  const std::string path = ::testing::TempDir() + "fork" + std::to_string(std::random_device{}());
  short fork = 0;
};

}  // namespace cairnset
