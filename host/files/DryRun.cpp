#include "host/files/DryRun.h"

#include <string>

#include "host/Host.h"
#include "host/files/Overlay.h"

namespace cairnset {

DryRun::DryRun() : _overlay(std::make_unique<Overlay>(host().calls)) {
  host().calls = _overlay->calls();
}

DryRun::~DryRun() {
  host().calls = _overlay->real();
}

std::vector<FileChange> DryRun::changesIn(const FSRef& folder) const {
  std::vector<FileChange> changes = _overlay->changes();
  if (!nodes().contains(folder.node)) return changes;
  const std::string above = nodes().path(folder.node) + "/";
  for (FileChange& change : changes) {
    for (std::string* path : {&change.path, &change.newPath}) {
      if (path->starts_with(above)) path->erase(0, above.size());
    }
  }
  return changes;
}

bool DryRun::hasMetReadOnly() const {
  return _overlay->hasMetReadOnly();
}

}  // namespace cairnset
