#include "host/files/FileChange.h"

#include "host/Host.h"

namespace cairnset {

std::vector<FileChange> relativeTo(const FSRef& folder, std::vector<FileChange> changes) {
  if (!nodes().contains(folder.node)) return changes;
  const std::string above = nodes().path(folder.node) + "/";
  for (FileChange& change : changes) {
    for (std::string* path : {&change.path, &change.newPath}) {
      if (path->starts_with(above)) path->erase(0, above.size());
    }
  }
  return changes;
}

}  // namespace cairnset
