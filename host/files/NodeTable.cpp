#include "host/files/NodeTable.h"

#include <functional>

namespace cairnset {

namespace {

std::uint32_t hashOf(std::uint32_t folder, std::string_view name) {
  const std::uint64_t hash = std::hash<std::string_view>{}(name) ^ folder * 0x9E3779B97F4A7C15u;
  return static_cast<std::uint32_t>(hash ^ hash >> 32);
}

}  // namespace

NodeTable::NodeTable() : _index(64, 0) {
  _nodes.push_back({0, 0, 0, 0});  // no node
  _nodes.push_back({0, 0, 0, 0});  // the root, which is found by no name
  _nodes.push_back({0, 0, 0, 0});  // the end mark
}

std::uint32_t NodeTable::intern(std::uint32_t folder, std::string_view name) {
  const std::uint32_t hash = hashOf(folder, name);
  std::size_t slot = hash & (_index.size() - 1);
  for (; _index[slot] != 0; slot = (slot + 1) & (_index.size() - 1)) {
    const std::uint32_t node = _index[slot];
    if (_nodes[node].hash == hash && _nodes[node].folder == folder && this->name(node) == name) {
      return node;
    }
  }
  const auto node = static_cast<std::uint32_t>(_nodes.size() - 1);
  _names.append(name);
  _nodes.back().folder = folder;
  _nodes.back().hash = hash;
  _nodes.back().depth = _nodes[folder].depth + 1;
  _nodes.push_back({0, static_cast<std::uint32_t>(_names.size()), 0, 0});
  _index[slot] = node;
  if (_nodes.size() * 3 > _index.size() * 2) growIndex();
  return node;
}

std::string_view NodeTable::name(std::uint32_t node) const {
  const std::uint32_t start = _nodes[node].nameStart;
  return std::string_view(_names).substr(start, _nodes[node + 1].nameStart - start);
}

std::uint32_t NodeTable::ancestor(std::uint32_t node, std::uint32_t levels) const {
  for (; levels > 0; --levels)
    node = folder(node);
  return node;
}

std::string NodeTable::path(std::uint32_t node) const {
  return "/" + path(node, kRoot);
}

std::string NodeTable::path(std::uint32_t node, std::uint32_t from) const {
  std::size_t length = 0;
  for (std::uint32_t n = node; n != from; n = folder(n))
    length += 1 + name(n).size();
  if (length > 0) --length;  // one "/" less than names
  std::string path(length, '/');
  std::size_t end = length + 1;
  for (std::uint32_t n = node; n != from; n = folder(n)) {
    const std::string_view part = name(n);
    end -= part.size() + 1;
    path.replace(end, part.size(), part);
  }
  return path;
}

void NodeTable::growIndex() {
  std::vector<std::uint32_t> index(_index.size() * 2, 0);
  for (const std::uint32_t node : _index) {
    if (node == 0) continue;
    std::size_t slot = _nodes[node].hash & (index.size() - 1);
    while (index[slot] != 0)
      slot = (slot + 1) & (index.size() - 1);
    index[slot] = node;
  }
  _index.swap(index);
}

}  // namespace cairnset
