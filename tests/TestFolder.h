// A folder of its own for a test.
#pragma once

#include "host/Host.h"
#include "host/files/FileManager.h"
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
  ~TestFolder() {
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
  void makeFolder(const std::string& name) const { fs::create_directories(path(name)); }

  /// Writes a file, and makes the folders above it.
  void write(const std::string& name, const std::string& bytes) const {
    fs::create_directories(fs::path(path(name)).parent_path());
    std::ofstream file(path(name), std::ios::binary | std::ios::trunc);
    if (!(file << bytes).flush()) throw std::runtime_error("could not write: " + name);
  }

  std::string read(const std::string& name) const {
    std::ifstream file(path(name), std::ios::binary);
    if (!file) throw std::runtime_error("could not read: " + name);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  bool exists(const std::string& name) const { return fs::exists(fs::symlink_status(path(name))); }

  /// All that is there, by name: "/" for a folder, "=" and the bytes of a file, "->" and where an
  /// alias leads.
  std::map<std::string, std::string> items(const std::string& below = "") const {
    std::map<std::string, std::string> all;
    for (const auto& entry : fs::recursive_directory_iterator(path(below))) {
      const std::string name = entry.path().string().substr(_path.size() + 1);
      all[name] = entry.is_symlink()     ? "->" + fs::read_symlink(entry).string()
                  : entry.is_directory() ? "/"
                                         : "=" + read(name);
    }
    return all;
  }
  /// The same as one text.
  std::string look(const std::string& below = "") const {
    std::string text;
    for (const auto& [name, item] : items(below))
      text += name + item + ' ';
    return text;
  }

 private:
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

}  // namespace cairnset
