// Every place that the program has named, numbered.
//
// A node is an interned (folder node, name) pair: the same pair always has the same number, two
// pairs never share one, and a number is never given back. So a file reference is 4 bytes, is
// copied and compared without a system call, and cannot go stale as an inode number can. Whether
// anything exists at a place is not known here.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace cairnset {

class NodeTable {
 public:
  /// The volume's root folder, "/". 0 is no node.
  static constexpr std::uint32_t kRoot = 1;

  NodeTable();

  /// The number of the place `name` in `folder`, which must be a node of this table. `name` is a
  /// volume name (host/text/Names.h): any bytes but "/" and NUL.
  std::uint32_t intern(std::uint32_t folder, std::string_view name);

  bool contains(std::uint32_t node) const { return node != 0 && node < _nodes.size() - 1; }
  /// The folder that the place is in; 0 for the root.
  std::uint32_t folder(std::uint32_t node) const { return _nodes[node].folder; }
  /// The volume name; valid until the next intern. Empty for the root.
  std::string_view name(std::uint32_t node) const;
  /// How many folders the place is in; 0 for the root.
  std::uint32_t depth(std::uint32_t node) const { return _nodes[node].depth; }
  /// The folder so many levels above, which must not be more than the depth.
  std::uint32_t ancestor(std::uint32_t node, std::uint32_t levels) const;
  /// The absolute path, "/" for the root. It can be longer than the system takes in one call.
  std::string path(std::uint32_t node) const;
  /// The path from one of the folders that the place is in; empty for the folder itself.
  std::string path(std::uint32_t node, std::uint32_t from) const;

 private:
  struct Node {
    std::uint32_t folder;
    std::uint32_t nameStart;  // in _names, whose end is the next node's start
    std::uint32_t hash;
    std::uint32_t depth;
  };

  void growIndex();

  std::vector<Node> _nodes;           // by number; the entry past the last marks the end of _names
  std::string _names;                 // all names, one after the other
  std::vector<std::uint32_t> _index;  // open addressing, a power of two in size, 0 is empty
};

}  // namespace cairnset
