// The commands as a numbered menu on the terminal.
#pragma once

namespace cairnset {

void listMenu();

/// Shows the menu, reads a number, runs its command on the session, and again, until the input ends
/// or is no number. 0 ends the menu, and so does a number above 9 or below 0, but 7, 8 and 9 are
/// only called unrecognised; that is meant. The commands' results are not looked at. Answers 0.
int doInteractive();

}  // namespace cairnset
