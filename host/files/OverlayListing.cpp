#include <dirent.h>
#include <memory>
#include <optional>

#include "host/files/OverlayCalls.h"

namespace cairnset {

// First what the disk has, then what the overlay has.
struct Overlay::Calls::Listing {
  int number;
  DIR* real;  // null for a folder that is only in memory
  const Item* folder;
  std::optional<std::vector<std::pair<std::string, const Item*>>> added = {};
  std::size_t next = 0;
  struct dirent entry = {};
};

DIR* Overlay::Calls::fdopendir(int number) {
  const Lock lock(_mutex);
  Open* const open = opened(number);
  if (open == nullptr) return fail(EBADF), nullptr;
  if (itemOf(*open) == nullptr || !open->item->isFolder()) return fail(ENOTDIR), nullptr;
  DIR* folder = nullptr;
  if (open->real >= 0 && (folder = real.fdopendir(open->real)) == nullptr) return nullptr;
  return reinterpret_cast<DIR*>(new Listing{number, folder, open->item});
}

struct dirent* Overlay::Calls::readdir(DIR* handle) {
  Listing& listing = *reinterpret_cast<Listing*>(handle);
  const Lock lock(_mutex);
  if (!listing.added) {
    struct dirent* entry = nullptr;
    errno = 0;
    while (listing.real != nullptr && (entry = real.readdir(listing.real)) != nullptr) {
      const auto known = listing.folder->entries.find(std::string_view(entry->d_name));
      if (known == listing.folder->entries.end()) return entry;
      if (known->second != nullptr && known->second->isInPlace) return entry;
    }
    if (listing.real != nullptr && errno != 0) return nullptr;
    listing.added.emplace();
    for (const auto& [name, item] : listing.folder->entries) {
      if (item != nullptr && !item->isInPlace) listing.added->emplace_back(name, item);
    }
  }
  errno = 0;
  if (listing.next == listing.added->size()) return nullptr;
  const auto& [name, item] = (*listing.added)[listing.next++];
  listing.entry.d_ino = item->info.st_ino;
  listing.entry.d_type = static_cast<unsigned char>(IFTODT(item->info.st_mode));
  listing.entry.d_name[name.copy(listing.entry.d_name, kLongestName)] = '\0';
  return &listing.entry;
}

int Overlay::Calls::closedir(DIR* handle) {
  const std::unique_ptr<Listing> listing(reinterpret_cast<Listing*>(handle));
  const Lock lock(_mutex);
  free(listing->number);
  return listing->real != nullptr ? real.closedir(listing->real) : 0;
}

bool Overlay::Calls::isEmpty(const Item& folder) {
  for (const auto& [name, item] : folder.entries) {
    if (item != nullptr) return false;
  }
  if (!folder.isReal()) return true;
  const int descriptor = onDisk(folder.realPath(), [this](int at, const char* way) {
    return openReal(at, way, O_DIRECTORY | O_CLOEXEC).descriptor;
  });
  DIR* const listing = descriptor >= 0 ? real.fdopendir(descriptor) : nullptr;
  if (listing == nullptr) {
    if (descriptor >= 0) real.close(descriptor);
    return false;
  }
  bool isEmpty = true;
  while (const struct dirent* entry = real.readdir(listing)) {
    const std::string_view name = entry->d_name;
    if (name != "." && name != ".." && !folder.entries.contains(name)) isEmpty = false;
  }
  real.closedir(listing);
  return isEmpty;
}

}  // namespace cairnset
