#include "host/files/ChangeRecord.h"

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <thread>
#include <unordered_map>
#include <utility>

#include "host/Host.h"

namespace cairnset {

namespace {

using Kind = FileChange::Kind;

std::string_view folderOf(std::string_view path) {
  return path.substr(0, path.rfind('/'));
}

}  // namespace

const char* wordsFor(FileChange::Kind kind) {
  switch (kind) {
    case Kind::kMakeFolder:
      return "make folder";
    case Kind::kMake:
      return "make";
    case Kind::kRename:
      return "rename";
    case Kind::kMove:
      return "move";
    case Kind::kReplace:
      return "replace";
    case Kind::kRewrite:
      return "rewrite";
    case Kind::kDelete:
      return "delete";
  }
  return "";
}

// Changes are made by one thread. The others only read, and their descriptors are not recorded:
// they can have tables of their own, with the same numbers for other files.
class ChangeRecord::Recorder {
 public:
  explicit Recorder(SystemCalls& calls) : _calls(calls), _real(calls) {
    calls.open = [this](int folder, const char* path, int flags, mode_t mode) {
      return open(folder, path, flags, mode);
    };
    calls.close = [this](int descriptor) {
      // Its text stays for the next one: thousands of files come and go with one number.
      if (const auto open = isRecorded() ? _open.find(descriptor) : _open.end();
          open != _open.end())
        open->second.clear();
      return _real.close(descriptor);
    };
    calls.pwrite = [this](int descriptor, const void* bytes, size_t count, off_t offset) {
      const ssize_t written = _real.pwrite(descriptor, bytes, count, offset);
      if (written > 0 && isNews(descriptor)) note(Kind::kRewrite, _open[descriptor]);
      return written;
    };
    calls.mkdir = [this](int folder, const char* path, mode_t mode) {
      const int result = _real.mkdir(folder, path, mode);
      if (result == 0) note(Kind::kMakeFolder, pathOf(folder, path));
      return result;
    };
    calls.symlink = [this](const char* target, int folder, const char* path) {
      const int result = _real.symlink(target, folder, path);
      if (result == 0) note(Kind::kMake, pathOf(folder, path));
      return result;
    };
    calls.renameNoReplace = [this](int from, const char* path, int to, const char* newPath) {
      const int result = _real.renameNoReplace(from, path, to, newPath);
      if (result == 0) noteMove(pathOf(from, path), pathOf(to, newPath));
      return result;
    };
    calls.rename = [this](int from, const char* path, int to, const char* newPath) {
      struct stat there;
      const bool replaces = _real.lstat(to, newPath, &there) == 0;
      const int result = _real.rename(from, path, to, newPath);
      if (result != 0) return result;
      if (replaces) {
        note(Kind::kReplace, pathOf(from, path), pathOf(to, newPath));
      } else {
        noteMove(pathOf(from, path), pathOf(to, newPath));
      }
      return result;
    };
    calls.link = [this](int from, const char* path, int to, const char* newPath) {
      const int result = _real.link(from, path, to, newPath);
      if (result == 0) {
        _second_names[pathOf(from, path)] = _changes.size();
        note(Kind::kMake, pathOf(to, newPath));
      }
      return result;
    };
    calls.unlink = [this](int folder, const char* path, int flags) {
      const int result = _real.unlink(folder, path, flags);
      if (result == 0) noteRemoval(pathOf(folder, path));
      return result;
    };
  }
  ~Recorder() { _calls = std::move(_real); }
  Recorder(const Recorder&) = delete;
  Recorder& operator=(const Recorder&) = delete;

  const std::vector<FileChange>& changes() const { return _changes; }

 private:
  bool isRecorded() const { return std::this_thread::get_id() == _thread; }

  int open(int folder, const char* path, int flags, mode_t mode) {
    const int descriptor = _real.open(folder, path, flags, mode);
    if (descriptor < 0 || !isRecorded()) return descriptor;
    std::string& place = _open[descriptor];
    place.clear();
    appendPath(folder, path, place);
    if ((flags & O_CREAT) != 0) {
      // It is new even if it has the number of a file that is gone.
      (void)isNews(descriptor);
      note(Kind::kMake, place);
    }
    return descriptor;
  }

  // Whether nothing has been noted of what is in the file. Nothing more will be.
  bool isNews(int descriptor) {
    struct stat info;
    if (_real.fstat(descriptor, &info) != 0) return true;
    return _noted.emplace(info.st_dev, info.st_ino).second;
  }

  // Absolute; a path that begins at no folder is so already.
  void appendPath(int folder, std::string_view path, std::string& out) const {
    const auto opened = _open.find(folder);
    if (opened != _open.end() && !path.starts_with('/')) {
      out += opened->second;
      if (!out.ends_with('/')) out += '/';
    }
    out += path;
  }
  std::string pathOf(int folder, const char* path) const {
    std::string place;
    appendPath(folder, path, place);
    return place;
  }

  void note(Kind kind, std::string path, std::string newPath = {}) {
    _changes.push_back({kind, std::move(path), std::move(newPath)});
  }
  static FileChange moved(const std::string& path, const std::string& newPath) {
    return {folderOf(path) == folderOf(newPath) ? Kind::kRename : Kind::kMove, path, newPath};
  }
  void noteMove(const std::string& path, const std::string& newPath) {
    _changes.push_back(moved(path, newPath));
  }
  // A second name, and later the first one taken away, is a rename at the time of the first step.
  void noteRemoval(const std::string& path) {
    const auto second = _second_names.find(path);
    if (second == _second_names.end()) return note(Kind::kDelete, path);
    FileChange& made = _changes[second->second];
    made = moved(path, made.path);
    _second_names.erase(second);
  }

  SystemCalls& _calls;
  SystemCalls _real;
  const std::thread::id _thread = std::this_thread::get_id();
  std::unordered_map<int, std::string> _open;  // the paths of descriptors
  std::set<std::pair<dev_t, ino_t>> _noted;    // files that were made or rewritten
  std::map<std::string, std::size_t> _second_names;
  std::vector<FileChange> _changes;
};

ChangeRecord::ChangeRecord() : ChangeRecord(host().calls) {}

ChangeRecord::ChangeRecord(SystemCalls& calls) : _recorder(std::make_unique<Recorder>(calls)) {}

ChangeRecord::~ChangeRecord() = default;

std::vector<FileChange> ChangeRecord::changesIn(const FSRef& folder) const {
  std::vector<FileChange> changes = _recorder->changes();
  if (!nodes().contains(folder.node)) return changes;
  const std::string above = nodes().path(folder.node) + "/";
  for (FileChange& change : changes) {
    for (std::string* path : {&change.path, &change.newPath}) {
      if (path->starts_with(above)) path->erase(0, above.size());
    }
  }
  return changes;
}

}  // namespace cairnset
