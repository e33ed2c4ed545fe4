// A folder of its own for a test.
#pragma once

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "host/files/FileManager.h"

namespace cairnset {

/// A new, empty folder, which goes with this object, unless a test failed: then it is kept, and
/// said where. Names are paths below it; "" is the folder itself. Whatever cannot be done throws.
class TestFolder {
 public:
  explicit TestFolder(
      const std::filesystem::path& parent = std::filesystem::temp_directory_path()) {
    std::string pattern = (parent / "cairnset-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary folder");
    _path = std::filesystem::canonical(pattern).string();
  }
  ~TestFolder() {
    if (testing::Test::HasFailure()) {
      std::cerr << "kept: " << _path << '\n';
      return;
    }
    std::error_code ignored;
    std::filesystem::remove_all(_path, ignored);
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
    std::filesystem::create_directories(path(name));
  }

  void write(const std::string& name, const std::string& bytes) const {
    std::ofstream file(path(name), std::ios::binary | std::ios::trunc);
    file << bytes;
    if (!file.flush()) throw std::runtime_error("could not write: " + name);
  }

  std::string read(const std::string& name) const {
    std::ifstream file(path(name), std::ios::binary);
    if (!file) throw std::runtime_error("could not read: " + name);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  bool exists(const std::string& name) const {
    return std::filesystem::exists(std::filesystem::symlink_status(path(name)));
  }

  /// The names in a folder, sorted.
  std::vector<std::string> list(const std::string& name) const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(path(name)))
      names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
  }

  /// A file's bytes, an alias's target, a folder's whole content.
  std::string look(const std::string& name) const {
    namespace fs = std::filesystem;
    if (fs::is_symlink(path(name))) return "->" + fs::read_symlink(path(name)).string();
    if (!fs::is_directory(path(name))) return read(name);
    std::string all = "[";
    for (const std::string& item : list(name))
      all += item + "=" + look((name.empty() ? "" : name + "/") + item) + " ";
    return all + "]";
  }

 private:
  std::string _path;
};

}  // namespace cairnset
