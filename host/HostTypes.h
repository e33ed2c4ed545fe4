// The value types of the host layer: result codes, file references, names.
#pragma once

#include <cstdint>

#pragma GCC visibility push(default)
namespace cairnset {

/// A result code as most calls give it: 0 for success, negative for a failure (host/ResultCodes.h).
using OSErr = std::int16_t;
/// A result code of 32 bits.
using OSStatus = std::int32_t;

/// A Pascal string: a length byte, then up to 255 characters; no terminator.
using Str255 = unsigned char[256];

using UniChar = char16_t;

/// A file name: up to 255 UTF-16 units, which identify the exact bytes of the name on the volume
/// (host/text/Names.h), so that two files are never confused.
struct HFSUniStr255 {
  std::uint16_t length = 0;
  UniChar unicode[255] = {};
};

/// A reference to one place on the volume: the number of an interned (folder, name) pair, see
/// host/files/NodeTable.h. 0 is no place, so a zeroed reference is invalid. It holds no descriptor
/// and costs nothing to copy. Whether anything is at the place, only the volume knows.
struct FSRef {
  std::uint32_t node = 0;
  friend bool operator==(const FSRef&, const FSRef&) = default;
};

/// The older reference: a volume, a folder's node number and a Mac Roman name of at most 63 bytes.
struct FSSpec {
  std::int16_t vRefNum = 0;
  std::uint32_t parID = 0;
  unsigned char name[64] = {};
};

/// Hint given with a Unicode name: the encoding that it came from is not known.
inline constexpr std::uint32_t kTextEncodingUnknown = 0xFFFF;

/// The name of the one volume that this layer shows.
inline constexpr const char* kDefaultVolumeName = "Root";

}  // namespace cairnset
#pragma GCC visibility pop
