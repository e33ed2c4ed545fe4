#include "host/files/FolderListing.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <fcntl.h>
#include <string>
#include <string_view>

#include "host/Host.h"
#include "host/files/Location.h"
#include "host/text/Names.h"

namespace cairnset {

namespace {

// One listed name; the texts lie in buffers that the whole listing shares.
struct Entry {
  std::uint64_t keyBegins;  // the first bytes of the key as a number, which mostly tells the order
  std::size_t keyStart, nameStart;
  std::uint32_t keyLength, nameLength;
  bool isFolder;
};

// Zeros follow a short key. No key has any itself, so the numbers are ordered as the keys are.
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
    std::sort(list.begin(), list.end(), [this](const Entry& a, const Entry& b) {
      if (a.keyBegins != b.keyBegins) return a.keyBegins < b.keyBegins;
      const int order = key(a).compare(key(b));
      return order != 0 ? order < 0 : name(a) < name(b);
    });
  }
};

// An entry whose kind cannot be told is an error too: a folder taken for a file is a folder lost.
// One that has gone since it was listed is told from the rest by fnfErr. FIFOs, sockets and devices
// are passed over like it: they have no fork, and opening some of them does things.
OSErr isFolderEntry(int folder, const struct dirent& entry, bool& isFolder) {
  isFolder = entry.d_type == DT_DIR;
  if (isFolder || entry.d_type == DT_REG || entry.d_type == DT_LNK) return noErr;
  if (entry.d_type != DT_UNKNOWN) return fnfErr;
  struct stat info;
  if (host().calls.lstat(folder, entry.d_name, &info) != 0) return resultFromErrno(errno);
  isFolder = S_ISDIR(info.st_mode);
  return isFolder || S_ISREG(info.st_mode) || S_ISLNK(info.st_mode) ? noErr : fnfErr;
}

OSErr readEntries(DIR* listing, Entries& entries) {
  const int folder = ::dirfd(listing);
  for (;;) {
    errno = 0;
    const struct dirent* entry = host().calls.readdir(listing);
    // A listing cut short would make presets look missing, and missing ones are made anew.
    if (entry == nullptr) return resultFromErrno(errno);
    const std::string_view name = entry->d_name;
    if (name == "." || name == "..") continue;
    bool isFolder = false;
    const OSErr result = isFolderEntry(folder, *entry, isFolder);
    if (result == fnfErr) continue;
    if (result != noErr) return result;
    entries.add(name, isFolder);
  }
}

}  // namespace

FolderListing listFolder(const FSRef& folder) {
  const Location place(folder);
  if (place.status() != noErr) return {place.status(), folder, {}};
  const SystemCalls& calls = host().calls;
  const int descriptor =
      calls.open(place.folder(), place.path(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC, 0);
  if (descriptor < 0) {
    return {errno == ENOENT || errno == ELOOP ? dirNFErr : resultFromErrno(errno), folder, {}};
  }
  DIR* const entriesOf = calls.fdopendir(descriptor);
  if (entriesOf == nullptr) {
    const OSErr result = resultFromErrno(errno);
    calls.close(descriptor);
    return {result, folder, {}};
  }
  Entries entries;
  FolderListing listing{readEntries(entriesOf, entries), folder, {}};
  calls.closedir(entriesOf);
  if (listing.result != noErr) return listing;
  entries.sort();
  listing.items.reserve(entries.list.size());
  NodeTable& nodes = host().nodes;
  for (const Entry& entry : entries.list)
    listing.items.push_back({{nodes.intern(folder.node, entries.name(entry))}, entry.isFolder});
  return listing;
}

}  // namespace cairnset
