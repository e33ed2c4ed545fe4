// 64-bit checksums of whole files.
//
//   file     content, padded by its writer to a multiple of 8 bytes, then the trailer
//   word     8 bytes of content from an offset that is a multiple of 8, as a big-endian number; a
//            last word of fewer bytes is filled up with zero bytes behind them
//   trailer  8 bytes: the sum of all words modulo 2^64, big-endian
//
// The same for a file in memory, and the variants for words in the opposite byte order, are members
// of VirtualFile. All of them answer alike whatever the byte order of the machine.
#pragma once

namespace cairnset {

/// Told how far the check has come, 0 to 1; anything but 0 as its answer ends the check.
using ChecksumProgress = long (*)(float fraction, long refCon);

/// Checks an open fork against its trailer in blocks of 128 KiB, so in the same memory whatever
/// its size. 1 where they match, 0 where not, -1 when `progress` (may be null) ended it. `progress`
/// is called once before the first block, after every whole block i of n with i / (n + 1), and with
/// 1 before the trailer is compared. Errors of the fork are not looked at: what could not be read
/// counts as zeros, so an empty fork matches. A fork of fewer than 8 bytes has no content, and its
/// bytes stand at the start of the trailer. 0 too where memory ran out.
[[nodiscard]] int confirmChecksum(short forkRef, ChecksumProgress progress, long refCon);

}  // namespace cairnset
