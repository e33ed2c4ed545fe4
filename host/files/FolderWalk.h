// The first of the three steps of a load: which files and folders there are, in the order of the
// instrument's host.
#pragma once

#include <cstddef>
#include <optional>
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

/// Whether the one comes before the other in the walk of a folder that both are below. Read off the
/// references: nothing need be there.
[[nodiscard]] bool isWalkedBefore(const FSRef& a, const FSRef& b);

/// Goes through a folder and all below it in load order: each folder's items in the order of its
/// listing, and what is in a folder right after the folder itself. A folder is listed when the
/// walk reaches it; nothing is kept open. No recursion: folders may be nested thousands deep.
class FolderWalk {
 public:
  struct Item {
    FSRef ref;
    bool isFolder;
    std::size_t depth;     // how many folders below the top it is
    OSErr listed = noErr;  // of a folder: how its listing went; its items come only after noErr
  };

  explicit FolderWalk(const FSRef& top);

  /// How the listing of the top went; there are no items unless it is noErr.
  [[nodiscard]] OSErr listed() const { return _listed; }
  /// The next item; nothing at the end.
  [[nodiscard]] std::optional<Item> next();

 private:
  struct Level {
    std::vector<ListedItem> items;
    std::size_t next;
  };

  OSErr enter(const FSRef& folder);

  std::vector<Level> _levels;  // from the outermost folder to the innermost
  OSErr _listed;
};

}  // namespace cairnset
