// How names reach the reader of a report.
#pragma once

#include <iosfwd>
#include <string_view>

namespace cairnset {

/// Writes a held name (Mac Roman, host/Names.h) as UTF-8. Every name in a report goes through here.
/// Unformatted: the stream's width and fill do not count.
void writeHeldName(std::ostream& os, std::string_view heldName);

}  // namespace cairnset
