// The commands as a numbered menu on the terminal.
#pragma once

namespace cairnset {

void listMenu();

/// Shows the menu, reads a number and runs its command on the session, until the input ends or is
/// not a number from 1 to 9. 7, 8 and 9 are only reported as unrecognised, on purpose. The
/// commands' results are ignored. Returns 0.
int doInteractive();

}  // namespace cairnset
