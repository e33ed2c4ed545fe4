// Checks for what must hold in unit tests and fuzz targets alike.
#pragma once

#include <stdexcept>
#include <string>

namespace cairnset {

/// Throws where what must hold does not: a unit test fails then, and a fuzz target has a finding.
inline void check(bool holds, const std::string& what, const std::string& detail = "") {
  if (!holds) throw std::logic_error("DOES NOT HOLD: " + what + ": " + detail);
}

}  // namespace cairnset
