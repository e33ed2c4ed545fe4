// Listing a folder: the iterators of host/FileManager.h.
#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/FileManager.h"
#include "host/Location.h"
#include "host/Names.h"
#include "host/NodeTable.h"
#include "host/SystemCalls.h"

namespace cairnset {

namespace {

class FolderListing {
 public:
  struct Item {
    FSRef ref;
    bool isFolder;
  };

  explicit FolderListing(const FSRef& folder) : _folder(folder) {}

  OSErr read();
  const FSRef& folder() const { return _folder; }

  /// The next item; while files come, the folder is kept open for them. At the end everything is
  /// let go, since an iterator need never be closed.
  bool next(Item& out) {
    if (_next == _items.size()) {
      _items = {};
      _next = 0;
      closeKeptFolder();
      return false;
    }
    out = _items[_next++];
    if (!out.isFolder) keepFolderOpen(_folder);
    return true;
  }

 private:
  FSRef _folder;
  std::vector<Item> _items;
  std::size_t _next = 0;
};

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
  if (systemCalls().lstat(folder, entry.d_name, &info) != 0) return resultFromErrno(errno);
  isFolder = S_ISDIR(info.st_mode);
  return isFolder || S_ISREG(info.st_mode) || S_ISLNK(info.st_mode) ? noErr : fnfErr;
}

OSErr readEntries(DIR* listing, Entries& entries) {
  const int folder = ::dirfd(listing);
  for (;;) {
    errno = 0;
    const struct dirent* entry = systemCalls().readdir(listing);
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

std::vector<std::unique_ptr<FolderListing>> listings;  // by iterator - 1
std::vector<FSIterator> freeNumbers;

FolderListing* listingAt(FSIterator iterator) {
  return iterator == 0 || iterator > listings.size() ? nullptr : listings[iterator - 1].get();
}

}  // namespace

OSErr FolderListing::read() {
  closeKeptFolder();
  const Location place(_folder);
  if (place.status() != noErr) return place.status();
  SystemCalls& calls = systemCalls();
  const int descriptor =
      calls.open(place.folder(), place.path(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC, 0);
  if (descriptor < 0) {
    return errno == ENOENT || errno == ELOOP ? dirNFErr : resultFromErrno(errno);
  }
  DIR* listing = calls.fdopendir(descriptor);
  if (listing == nullptr) {
    const OSErr result = resultFromErrno(errno);
    calls.close(descriptor);
    return result;
  }
  Entries entries;
  const OSErr result = readEntries(listing, entries);
  if (result != noErr) {
    calls.closedir(listing);
    return result;
  }
  keepFolderOpen(_folder, listing);
  entries.sort();
  _items.reserve(entries.list.size());
  for (const Entry& entry : entries.list) {
    _items.push_back(
        {{NodeTable::shared().intern(_folder.node, entries.name(entry))}, entry.isFolder});
  }
  return noErr;
}

OSErr FSOpenIterator(const FSRef* folder, std::uint32_t /*flags*/, FSIterator* iterator) {
  *iterator = 0;
  auto listing = std::make_unique<FolderListing>(*folder);
  if (const OSErr result = listing->read(); result != noErr) return result;
  if (freeNumbers.empty()) {
    listings.push_back(std::move(listing));
    *iterator = static_cast<FSIterator>(listings.size());
  } else {
    *iterator = freeNumbers.back();
    freeNumbers.pop_back();
    listings[*iterator - 1] = std::move(listing);
  }
  return noErr;
}

OSErr FSGetCatalogInfoBulk(FSIterator iterator, std::size_t maximum, std::size_t* actual,
                           FSCatalogInfoBitmap which, FSCatalogInfo* infos, FSRef* refs) {
  *actual = 0;
  constexpr FSCatalogInfoBitmap kListed =
      kFSCatInfoNodeFlags | kFSCatInfoNodeID | kFSCatInfoParentDirID;
  FolderListing* listing = listingAt(iterator);
  if (listing == nullptr || (which & ~kListed) != 0) return paramErr;
  for (FolderListing::Item item; *actual < maximum;) {
    if (!listing->next(item)) return errFSNoMoreItems;
    if (infos != nullptr) {
      FSCatalogInfo& info = infos[*actual];
      if ((which & kFSCatInfoNodeFlags) != 0) {
        info.nodeFlags = item.isFolder ? kFSNodeIsDirectoryMask : std::uint16_t{0};
      }
      if ((which & kFSCatInfoNodeID) != 0) info.nodeID = item.ref.node;
      if ((which & kFSCatInfoParentDirID) != 0) info.parentDirID = listing->folder().node;
    }
    if (refs != nullptr) refs[*actual] = item.ref;
    ++*actual;
  }
  return noErr;
}

OSErr FSCloseIterator(FSIterator iterator) {
  if (listingAt(iterator) == nullptr) return paramErr;
  closeKeptFolder();
  listings[iterator - 1].reset();
  freeNumbers.push_back(iterator);
  return noErr;
}

}  // namespace cairnset
