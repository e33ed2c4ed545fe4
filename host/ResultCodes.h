// Every result code that the host layer returns, and the one place that turns errno into them.
#pragma once

#include "host/HostTypes.h"

#pragma GCC visibility push(default)
namespace cairnset {

inline constexpr OSErr noErr = 0;
inline constexpr OSErr dskFulErr = -34;     // no space, or the quota is used up
inline constexpr OSErr nsvErr = -35;        // no such volume
inline constexpr OSErr ioErr = -36;         // anything without a code of its own
inline constexpr OSErr bdNamErr = -37;      // a name that the volume cannot hold
inline constexpr OSErr eofErr = -39;        // read past the end
inline constexpr OSErr tmfoErr = -42;       // too many files open
inline constexpr OSErr fnfErr = -43;        // nothing of that name in the folder
inline constexpr OSErr wPrErr = -44;        // the volume is locked by hardware; never returned here
inline constexpr OSErr vLckdErr = -46;      // the volume is read-only
inline constexpr OSErr fBsyErr = -47;       // a folder that is not empty
inline constexpr OSErr dupFNErr = -48;      // the name is taken
inline constexpr OSErr paramErr = -50;      // an argument that makes no sense
inline constexpr OSErr rfNumErr = -51;      // a fork number that is not open
inline constexpr OSErr permErr = -54;       // permission refused
inline constexpr OSErr dirNFErr = -120;     // the folder itself is missing, or is no folder
inline constexpr OSErr diffVolErr = -1303;  // a move between volumes
inline constexpr OSErr catChangedErr = -1304;  // it is no longer what was read: others changed it
inline constexpr OSErr errFSBadFSRef = -1401;  // a reference to nothing that was ever there
inline constexpr OSErr errFSRefsDifferent = -1420;  // two references that denote different places
inline constexpr OSErr errFSNoMoreItems = -1417;    // an iterator has come to its end

/// The result code for an errno value. ENOENT becomes fnfErr: only the caller can tell whether the
/// folder is missing too, and then returns dirNFErr instead. Throws std::bad_alloc for ENOMEM: what
/// is missing from a report for lack of memory must not look as if it were missing on the disk.
[[nodiscard]] OSErr resultFromErrno(int error);
/// A result code in words, those of the manual. Never null.
[[nodiscard]] const char* wordsFor(OSErr result);
/// The result code of a system call that has returned 0, or anything else and set errno.
[[nodiscard]] OSErr resultOf(int returned);

}  // namespace cairnset
#pragma GCC visibility pop
