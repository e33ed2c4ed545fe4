// What makes a file name acceptable to the Windows file system. Names are Mac Roman; the Pascal
// forms do the same, and end a name that holds a NUL there.
#pragma once

#pragma GCC visibility push(default)
namespace cairnset {

/// Replaces each illegal character by "_"; the length stays. Illegal are the control bytes 0x01 to
/// 0x1F and " * / < > ? \ |. The colon is not among them, and neither is any byte from 0x7F up,
/// on purpose.
void RemoveIllegalFilenameCharsInPlace(char* name);
void RemoveIllegalFilenameCharsInPlace(unsigned char* name);

/// Removes blanks and full stops from the end of the name. One made of nothing else becomes empty.
void RemoveIllegalTrailingFilenameCharsInPlace(char* name);
void RemoveIllegalTrailingFilenameCharsInPlace(unsigned char* name);

/// Both, in this order: an illegal character at the end becomes "_" and stays.
void RemoveAllIllegalFilenameCharsInPlace(char* name);
void RemoveAllIllegalFilenameCharsInPlace(unsigned char* name);

}  // namespace cairnset
#pragma GCC visibility pop
