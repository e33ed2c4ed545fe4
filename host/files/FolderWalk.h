// The first of the three steps of a load: which files and folders there are.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "host/files/FolderListing.h"

namespace cairnset {

/// Goes through a folder and all below it in load order: each folder's items in the order of its
/// listing, and what lies in a folder right after the folder itself. A folder is listed when it is
/// come to; nothing is kept open. Its memory is on the heap, for folders nested thousands deep.
class FolderWalk {
 public:
  struct Item {
    FSRef ref;
    bool isFolder;
    std::size_t depth;     // how many folders below the top it lies in
    OSErr listed = noErr;  // of a folder: how its listing went; its items come only after noErr
  };

  explicit FolderWalk(const FSRef& top);

  /// How the listing of the top went; there are no items unless it is noErr.
  OSErr listed() const { return _listed; }
  /// The next item; nothing at the end.
  std::optional<Item> next();

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
