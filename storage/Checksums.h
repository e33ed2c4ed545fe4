// 64-bit checksums of whole files.
//
//   file     content, padded by its writer to a multiple of 8 bytes, then the trailer
//   word     8 bytes of content from an offset that is a multiple of 8, as a big-endian number; a
//            shorter last word is padded with zero bytes at its end
//   trailer  8 bytes: the sum of all words modulo 2^64, big-endian
//
// VirtualFile has the same for a file in memory, and the variants for words in the opposite byte
// order. No result depends on the byte order of the machine.
#pragma once

namespace cairnset {

/// Receives the progress, 0 to 1; a nonzero result ends the check.
using ChecksumProgress = long (*)(float fraction, long refCon);

/// Checks an open fork of any size against its trailer, in blocks of 128 KiB. Returns 1 if they
/// match, 0 if not or if memory ran out, -1 if `progress` (may be null) ended it. `progress` is
/// called once before the first block, after every whole block i of n with i / (n + 1), and with 1
/// before the trailer is compared. Read errors are ignored: what could not be read counts as zeros,
/// so an empty fork matches. A fork of fewer than 8 bytes has no content, and its bytes are the
/// start of the trailer.
[[nodiscard]] int confirmChecksum(short forkRef, ChecksumProgress progress, long refCon);

}  // namespace cairnset
