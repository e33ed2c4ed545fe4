// The two forms of string used side by side: the Pascal string (Str255: a length byte, then up to
// 255 characters, no terminator) and the C string. Characters are bytes, Mac Roman from 0x80 up.
//
// Null pointers are tolerated only where it is said. A Pascal result never takes more than the 256
// bytes of a Str255, and a source may lie within its destination unless it is appended.
#pragma once

#include <cstdint>

#pragma GCC visibility push(default)
namespace cairnset {

// --- Conversions -----------------------------------------------------------------------------

/// In place; the buffer holds at least the length + 1 bytes.
void P2CInPlace(unsigned char* s);
void P2CInPlace(char* s);
/// In place. All characters move back by one, however many they are; the length byte is their
/// count modulo 256.
void C2PInPlace(unsigned char* s);
void C2PInPlace(char* s);
void P2CCopy(char* dst, const unsigned char* src);
/// The length byte is the count modulo 256, and that many characters are copied.
void C2PCopy(unsigned char* dst, const char* src);
void P2CAppendInPlace(char* dst, const unsigned char* src);
/// Not clamped, unlike PStrCat: the length byte becomes the sum modulo 256, so that 200 and 200
/// characters make a string of 144. On purpose.
void C2PAppendInPlace(unsigned char* dst, const char* src);
/// As C2PInPlace, but takes the first 255 characters of a longer string.
void CtoPstr(char* s);
/// As P2CInPlace.
void PtoCstr(char* s);

// --- Copying and appending within one form ---------------------------------------------------

/// Takes as many characters as make 255 in all. Returns `dst`.
unsigned char* PStrCat(unsigned char* dst, const unsigned char* src);
/// Returns `dst`.
unsigned char* PStrCopy(unsigned char* dst, const unsigned char* src);
/// Appends what fits in a buffer of `size` bytes, NUL included; nothing where either pointer is
/// null, `size` is 0 or no room is left. Returns `dst`.
char* CStrNCat(char* dst, unsigned long size, const char* src);

// --- Comparing ---------------------------------------------------------------------------------

/// Whether the strings are equal; without `caseSensitive`, "a" to "z" count as "A" to "Z", and no
/// other letters do. False where either is null, both included.
bool equalCString(const char* a, const char* b, bool caseSensitive);
/// The same for Pascal strings: their lengths must agree, and what comes before the first NUL.
bool equalPString(const unsigned char* a, const unsigned char* b, bool caseSensitive);

/// Compares file names by their first 255 bytes, ignoring case but not marks: 0 where they are
/// equal and 1 where they differ. It gives no order.
int fncmp(const char* a, const char* b);
/// A hash of a name for tables in which names that fncmp takes for equal are one.
std::uint32_t fncmpHash(const char* name);

}  // namespace cairnset
#pragma GCC visibility pop
