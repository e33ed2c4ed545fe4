// How texts reach the reader of a report, and what a name cannot do to the reader's terminal.
#pragma once

#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>

namespace cairnset {

// All output is unformatted: the stream's width and fill do not count. Small writes to a stream are
// slow, so what is printed for every preset is put together first.

/// Writes a held name (Mac Roman, host/text/Names.h) as UTF-8. Every name in a report goes through
/// here or through appendHeldName.
void writeHeldName(std::ostream& os, std::string_view heldName);
/// The same of a whole message, whose line feeds are the program's own.
void writeHeldText(std::ostream& os, std::string_view heldText);
/// Writes bytes that came from the user, a path for example, as they are.
void writeGivenText(std::ostream& os, std::string_view text);

/// The held name as writeHeldName would show it on the stream: for messages that are put together
/// first.
std::string shownName(const std::ostream& os, std::string_view heldName);
/// Appends what writeHeldName would write on the stream to a text that is to be written there.
void appendHeldName(std::string& text, const std::ostream& os, std::string_view heldName);
/// Writes a text of the program's own, or one put together with appendHeldName.
void writeText(std::ostream& os, std::string_view text);

/// As long as it lives, control bytes (C0 but line feed and tab, DEL, C1) and bytes that are not
/// UTF-8 are shown as "?" where std::cout or std::cerr is a terminal, in names line feeds and tabs
/// too. Output to a pipe or a file stays as it is.
class MaskedTerminals {
 public:
  MaskedTerminals();
  ~MaskedTerminals();
  MaskedTerminals(const MaskedTerminals&) = delete;
  MaskedTerminals& operator=(const MaskedTerminals&) = delete;

 private:
  class Mask;
  std::unique_ptr<Mask> _masks[2];
};

}  // namespace cairnset
