// Where folders are, as the ...at calls take it: a path that starts at an open folder. Internal to
// the host layer.
#pragma once

#include <cstdint>
#include <fcntl.h>
#include <memory>
#include <string>
#include <sys/types.h>
#include <unordered_map>
#include <vector>

#include "host/HostTypes.h"
#include "host/ResultCodes.h"
#include "host/files/NodeTable.h"
#include "host/files/SystemCalls.h"

namespace cairnset {

/// A folder that is open to find things in, until the last that uses it is gone.
class OpenFolder {
 public:
  OpenFolder(const SystemCalls& calls, int descriptor) : _calls(calls), _descriptor(descriptor) {}
  ~OpenFolder() { _calls.close(_descriptor); }
  OpenFolder(const OpenFolder&) = delete;
  OpenFolder& operator=(const OpenFolder&) = delete;

  int descriptor() const { return _descriptor; }

 private:
  const SystemCalls& _calls;
  int _descriptor;
};

/// A folder's place.
struct FolderPath {
  OSErr result = noErr;   // why there is none
  int base = AT_FDCWD;    // the folder that the path starts at
  std::string path = {};  // absolute if the base is AT_FDCWD; empty for the base itself
  /// Keeps a base open that lies deep below the held folder. Threads that have descriptors of their
  /// own do not know it. Null for the other bases.
  std::shared_ptr<const OpenFolder> deep = {};
};

/// The places of all folders. One folder can be held: it is kept open, and all that is below it is
/// found from there, wherever it has been moved and whatever its path leads to.
///
/// Paths from there would still be as long as folders can be nested. So for folders more than kStep
/// levels below the held one there are further bases, each of them kStep levels below another: a
/// few, those in use last, stay open. A load costs no more for each folder however deep it is.
class FolderPaths {
 public:
  /// Walks and changes go on at a few places at once, each of which needs one base.
  static constexpr std::size_t kMostOpen = 4;
  static constexpr std::uint32_t kStep = 64;

  FolderPaths(const SystemCalls& calls, const NodeTable& nodes) : _calls(calls), _nodes(nodes) {}

  /// The place of a folder, which must be a node; valid until the next call.
  const FolderPath& of(std::uint32_t folder);

  /// Holds the folder, in place of any before, or none for 0. Returns why it could not be opened;
  /// then none is held. It may have been opened without the permission to list it.
  OSErr hold(std::uint32_t folder);
  /// The held folder; 0 and -1 if there is none.
  std::uint32_t held() const { return _held_node; }
  int descriptor() const { return _held != nullptr ? _held->descriptor() : -1; }

 private:
  using Folder = std::shared_ptr<const OpenFolder>;
  struct Base {
    std::uint32_t node;
    Folder folder;
  };
  struct Identity {
    dev_t device;
    ino_t inode;
  };

  FolderPath find(std::uint32_t folder);
  FolderPath openBase(std::uint32_t node);
  Folder openBaseAbove(std::uint32_t node);
  Folder knownBase(std::uint32_t node);
  FolderPath use(std::uint32_t node, Folder folder);

  const SystemCalls& _calls;
  const NodeTable& _nodes;
  std::uint32_t _held_node = 0;
  Folder _held;
  std::vector<Base> _bases;                                 // the one in use last is the last
  std::unordered_map<std::uint32_t, Identity> _identities;  // of all bases so far, by node
  // The files of a folder come one after the other.
  std::uint32_t _last_folder = 0;
  FolderPath _last;
};

}  // namespace cairnset
