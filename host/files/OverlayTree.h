// What an Overlay (host/files/Overlay.h) knows in place of the disk: the folders in use, every name
// in them that is otherwise than on the disk, and the items that these lead to. Makes no system
// call. Internal to the overlay.
#pragma once

#include <cstddef>
#include <ctime>
#include <deque>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <unordered_map>
#include <utility>
#include <vector>

namespace cairnset {

/// A folder in use, or a file or link that was changed, made, or given another name. It lives as
/// long as its tree, whatever becomes of its names: open descriptors may lead to it.
struct OverlayItem {
  struct Hash : std::hash<std::string_view> {
    using is_transparent = void;
  };
  /// Null where a name was taken away.
  using Entries = std::unordered_map<std::string, OverlayItem*, Hash, std::equal_to<>>;

  /// Of a file, a link, or a folder that was made, as lstat returns it. Of another folder only the
  /// kind counts: the disk has the rest.
  struct stat info = {};
  /// The name that it was given last, and the folder; null for the root.
  OverlayItem* parent = nullptr;
  std::string name;
  /// A real folder that is where it is on the disk, below its parent. Any other item has its place
  /// on the disk in `real`, which is empty where it was made.
  bool isInPlace = false;
  std::string real;
  Entries entries;                                // of a folder
  bool hasBytes = false;                          // of a file: or else the disk has them
  std::string bytes;                              // of a file, or a link's target
  std::map<std::string, std::string> attributes;  // those that were set

  bool isFolder() const { return S_ISDIR(info.st_mode); }
  bool isLink() const { return S_ISLNK(info.st_mode); }
  bool isReal() const { return isInPlace || !real.empty(); }

  /// Changes its times, as the system does.
  void touch(bool bytesToo);
  /// Absolute paths: on the disk, "" where it was made; and by the name that it was given last.
  /// The root is "", so that what lies in a folder is always its path, "/" and the name.
  std::string realPath() const;
  std::string path() const;
};

class OverlayTree {
 public:
  OverlayTree();

  OverlayItem& root() { return _items.front(); }
  /// A new item, to which no name leads yet.
  OverlayItem& add(mode_t kind);
  /// The folder in use at a path of real folders and made ones, none of which is a link, below
  /// `start`.
  OverlayItem& folderAt(OverlayItem& start, std::string_view path);

  /// Where a path leads.
  struct Found {
    int error = 0;                       // an errno, where nothing can be there
    OverlayItem* item = nullptr;         // what is there, if the overlay has it
    const OverlayItem* above = nullptr;  // else the last folder on the way that it has,
    std::string_view rest = {};          // and the way on from there, as it is on the disk
    /// The path leads to the same place on the disk.
    bool isStraight = true;
  };
  /// ELOOP where a link that the overlay has is on the way.
  Found find(OverlayItem& start, std::string_view path);

  // Names in a folder.
  void setName(OverlayItem& folder, const std::string& name, OverlayItem& item);
  void removeName(OverlayItem& folder, const std::string& name, OverlayItem& item);

 private:
  std::deque<OverlayItem> _items;
  ino_t _last_number = 0;
};

}  // namespace cairnset
