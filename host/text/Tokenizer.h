// Tokens of a text held in memory. `*pos` is the place reached and `end` is one past the last
// character; nothing at or beyond `end` is read, and `*pos` may be there.
#pragma once

namespace cairnset {

/// Moves over blanks, commas and tabs.
void skipJunk(char** pos, char* end);

/// Moves to just past the next LF or CR, of CR LF past the CR only; stops at a NUL.
void skipLine(char** pos, char* end);

/// Moves to the next token and returns its length in characters; the caller moves past it. A token
/// ends before a blank, tab, LF or CR, but not at a comma. One in double quotes is what follows the
/// quote, up to the next quote, tab, LF or CR; the closing quote is left to be read next. 0 where
/// there is none, and for null pointers.
long getToken(char** pos, char* end);

}  // namespace cairnset
