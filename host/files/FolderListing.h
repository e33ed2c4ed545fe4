// What lies in a folder, in the order of the instrument's host.
#pragma once

#include <vector>

#include "host/HostTypes.h"
#include "host/ResultCodes.h"

namespace cairnset {

struct ListedItem {
  FSRef ref;
  bool isFolder;
};

struct FolderListing {
  OSErr result = noErr;  // a listing that fails half-way has failed, and has no items
  FSRef folder;
  std::vector<ListedItem> items;
};

/// Lists a folder: folders, files and aliases together, by the sort keys of host/text/Names.h.
/// FIFOs, sockets and devices are left out, so that nobody opens one.
[[nodiscard]] FolderListing listFolder(const FSRef& folder);

}  // namespace cairnset
