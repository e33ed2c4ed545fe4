#include "host/files/DryRun.h"

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
  return relativeTo(folder, _overlay->changes());
}

bool DryRun::hasMetReadOnly() const {
  return _overlay->hasMetReadOnly();
}

}  // namespace cairnset
