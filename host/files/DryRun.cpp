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

bool DryRun::hasMetReadOnly() const {
  return _overlay->hasMetReadOnly();
}

}  // namespace cairnset
