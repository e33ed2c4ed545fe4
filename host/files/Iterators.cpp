// Listing a folder: the iterators of host/files/FileManager.h.
#include "host/Host.h"
#include "host/files/FileManager.h"

namespace cairnset {

OSErr FSOpenIterator(const FSRef* folder, std::uint32_t /*flags*/, FSIterator* iterator) {
  *iterator = 0;
  FolderListing listing = listFolder(*folder);
  if (listing.result != noErr) return listing.result;
  *iterator = ++host().lastIterator;
  host().listings[*iterator] = {std::move(listing)};
  return noErr;
}

OSErr FSGetCatalogInfoBulk(FSIterator iterator, std::size_t maximum, std::size_t* actual,
                           FSCatalogInfoBitmap which, FSCatalogInfo* infos, FSRef* refs) {
  *actual = 0;
  constexpr FSCatalogInfoBitmap kListed =
      kFSCatInfoNodeFlags | kFSCatInfoNodeID | kFSCatInfoParentDirID;
  const auto found = host().listings.find(iterator);
  if (found == host().listings.end() || (which & ~kListed) != 0) return paramErr;
  auto& [listing, next] = found->second;
  for (; *actual < maximum; ++*actual, ++next) {
    if (next == listing.items.size()) {
      listing.items = {};  // an iterator need never be closed
      next = 0;
      return errFSNoMoreItems;
    }
    const ListedItem& item = listing.items[next];
    if (infos != nullptr) {
      FSCatalogInfo& info = infos[*actual];
      if ((which & kFSCatInfoNodeFlags) != 0) {
        info.nodeFlags = item.isFolder ? kFSNodeIsDirectoryMask : std::uint16_t{0};
      }
      if ((which & kFSCatInfoNodeID) != 0) info.nodeID = item.ref.node;
      if ((which & kFSCatInfoParentDirID) != 0) info.parentDirID = listing.folder.node;
    }
    if (refs != nullptr) refs[*actual] = item.ref;
  }
  return noErr;
}

OSErr FSCloseIterator(FSIterator iterator) {
  return host().listings.erase(iterator) > 0 ? noErr : paramErr;
}

}  // namespace cairnset
