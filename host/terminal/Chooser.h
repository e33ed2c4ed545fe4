// The host's folder and file choosers, which ask on the terminal.
//
// A chooser writes its message and a prompt, reads one line, and checks that the answer is an item
// of the right sort; where it is not it says so and asks again, three times in all. It is cancelled
// by an empty line, the end of input, a line longer than any path, a third wrong answer, and where
// standard input is no terminal by no whole line coming within five seconds of any of the three
// questions: a run that nobody watches must end. The last line of an input needs no line feed.
// Questions go to standard error, since standard output is for the reports.
//
// An answer is a path, relative or absolute, links resolved. Blanks around it, one pair of quotes
// around it ("..." or '...') and slashes after it do not count; "~" in front is the home folder.
#pragma once

#include <cstdint>
#include <iosfwd>

#include "host/HostTypes.h"

namespace cairnset {

// --- What a filter is asked about ----------------------------------------------------------------

inline constexpr std::uint32_t typeFSS = 0x66737320;  // 'fss ': an FSSpec

/// The item, as an FSSpec where the type is typeFSS. There is no other type on this host.
struct AEDesc {
  std::uint32_t descriptorType = typeFSS;
  FSSpec fsSpec;
};

struct NavFileOrFolderInfo {
  bool isFolder = false;
  bool visible = true;  // the name does not begin with "."
};

/// What a filter is asked for: the list of items to choose from, or (not 0) anything else.
inline constexpr short kNavFilteringBrowserList = 0;

/// Whether an item may be chosen; `info` is a NavFileOrFolderInfo.
using NavObjectFilterUPP = bool (*)(AEDesc* item, void* info, void* callBackUD, short filterMode);

/// What happens in a chooser on the screen. A terminal has no such events, so that no chooser here
/// calls one.
struct NavCBRec;
using NavEventUPP = void (*)(long event, NavCBRec* parameters, void* callBackUD);

// --- Choosers ------------------------------------------------------------------------------------

/// False, and `choice` left as it was, where the user cancels.
bool chooseFolder(const char* message, FSRef* choice);
/// The same for a file that `filter` accepts; null accepts every file.
bool chooseFile(const char* message, NavObjectFilterUPP filter, FSRef* choice);

/// Where the choosers ask. Answers are read from the descriptor, not through std::cin, which must
/// not have read ahead before; no byte behind an answer is read. A test puts its own streams here,
/// and the old ones back.
struct ChooserStreams {
  int answers;
  std::ostream* questions;
  int patienceMilliseconds;  // for a whole line; a terminal is waited for without end
};
ChooserStreams& chooserStreams();

}  // namespace cairnset
