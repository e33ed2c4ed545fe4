#include "host/files/FolderWalk.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "host/Host.h"
#include "host/files/Location.h"
#include "host/text/Names.h"

namespace cairnset {

namespace {

// One listed name; the texts are in buffers that the whole listing shares.
struct Entry {
  std::uint64_t keyBegins;  // the first bytes of the key as a number, which mostly decides
  std::size_t keyStart, nameStart;
  std::uint32_t keyLength, nameLength;
  bool isFolder;
};

// A short key is padded with zeros. Keys hold none, so the numbers are in the order of the keys.
std::uint64_t beginningOf(std::string_view key) {
  std::uint64_t number = 0;
  for (std::size_t i = 0; i < sizeof number; ++i)
    number = number << 8 | (i < key.size() ? static_cast<unsigned char>(key[i]) : 0u);
  return number;
}

struct Entries {
  std::vector<Entry> list;
  std::string keys, names;

  std::string_view key(const Entry& e) const { return {keys.data() + e.keyStart, e.keyLength}; }
  std::string_view name(const Entry& e) const { return {names.data() + e.nameStart, e.nameLength}; }

  void add(std::string_view name, bool isFolder) {
    const std::size_t keyStart = keys.size();
    appendSortKey(name, keys);
    list.push_back({beginningOf(std::string_view(keys).substr(keyStart)), keyStart, names.size(),
                    static_cast<std::uint32_t>(keys.size() - keyStart),
                    static_cast<std::uint32_t>(name.size()), isFolder});
    names.append(name);
  }

  void sort() {
    std::sort(list.begin(), list.end(),
              [this](const Entry& a, const Entry& b) { return isBefore(a, b); });
  }

  bool isBefore(const Entry& a, const Entry& b) const {
    if (a.keyBegins != b.keyBegins) return a.keyBegins < b.keyBegins;
    const int order = key(a).compare(key(b));
    return order != 0 ? order < 0 : name(a) < name(b);
  }
};

struct EntryKind {
  int error;  // ENOENT for an entry to skip
  bool isFolder = false;
};

// An entry of unknown kind is an error: a folder taken for a file would be lost. To be skipped are
// entries gone since they were listed, and FIFOs, sockets and devices, which have no fork and may
// act when opened.
EntryKind kindOf(int folder, const struct dirent& entry) {
  if (entry.d_type == DT_DIR) return {0, true};
  if (entry.d_type == DT_REG || entry.d_type == DT_LNK) return {0};
  if (entry.d_type != DT_UNKNOWN) return {ENOENT};
  struct stat info;
  if (host().calls.lstat(folder, entry.d_name, &info) != 0) return {errno};
  if (S_ISDIR(info.st_mode)) return {0, true};
  return {S_ISREG(info.st_mode) || S_ISLNK(info.st_mode) ? 0 : ENOENT};
}

// 0 or why it failed.
int readEntries(int folder, DIR* listing, Entries& entries) {
  for (;;) {
    errno = 0;
    const struct dirent* entry = host().calls.readdir(listing);
    // A listing cut short would make presets look missing, and missing ones are created.
    if (entry == nullptr) return errno;
    const std::string_view name = entry->d_name;
    if (name == "." || name == "..") continue;
    const auto [error, isFolder] = kindOf(folder, *entry);
    if (error == ENOENT) continue;
    if (error != 0) return error;
    entries.add(name, isFolder);
  }
}

// Lists the folder from its beginning; returns as a system call does.
int list(const Location& place, Entries& entries) {
  const SystemCalls& calls = host().calls;
  entries = {};
  const int descriptor =
      calls.open(place.folder(), place.path(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC, 0);
  if (descriptor < 0) return -1;
  DIR* const listing = calls.fdopendir(descriptor);
  const int error = listing == nullptr ? errno : readEntries(descriptor, listing, entries);
  listing == nullptr ? calls.close(descriptor) : calls.closedir(listing);
  errno = error;
  return error == 0 ? 0 : -1;
}

}  // namespace

FolderListing listFolder(const FSRef& folder) {
  const Location place(folder);
  if (place.status() != noErr) return {place.status(), folder, {}};
  Entries entries;
  if (retried([&] { return list(place, entries); }) != 0) return {folderFailure(errno), folder, {}};
  FolderListing listing{noErr, folder, {}};
  entries.sort();
  listing.items.reserve(entries.list.size());
  NodeTable& table = nodes();
  for (const Entry& entry : entries.list)
    listing.items.push_back({{table.intern(folder.node, entries.name(entry))}, entry.isFolder});
  return listing;
}

bool isWalkedBefore(const FSRef& a, const FSRef& b) {
  const NodeTable& table = nodes();
  const std::uint32_t depth = std::min(table.depth(a.node), table.depth(b.node));
  std::uint32_t one = table.ancestor(a.node, table.depth(a.node) - depth);
  std::uint32_t other = table.ancestor(b.node, table.depth(b.node) - depth);
  while (table.folder(one) != table.folder(other)) {
    one = table.folder(one);
    other = table.folder(other);
  }
  if (one == other) return table.depth(a.node) < table.depth(b.node);
  Entries entries;
  entries.add(table.name(one), false);
  entries.add(table.name(other), false);
  return entries.isBefore(entries.list.front(), entries.list.back());
}

FolderWalk::FolderWalk(const FSRef& top) : _listed(enter(top)) {}

OSErr FolderWalk::enter(const FSRef& folder) {
  FolderListing listing = listFolder(folder);
  if (listing.result == noErr) _levels.push_back({std::move(listing.items), 0});
  return listing.result;
}

std::optional<FolderWalk::Item> FolderWalk::next() {
  while (!_levels.empty()) {
    Level& level = _levels.back();
    if (level.next == level.items.size()) {
      _levels.pop_back();
      continue;
    }
    const auto [ref, isFolder] = level.items[level.next++];
    const std::size_t depth = _levels.size() - 1;
    return Item{ref, isFolder, depth, isFolder ? enter(ref) : noErr};
  }
  return std::nullopt;
}

}  // namespace cairnset
