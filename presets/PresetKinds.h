// The four kinds of preset.
#pragma once

#include <cstdint>

#pragma GCC visibility push(default)
namespace cairnset {

/// A kind code: four characters, the second word of every preset file.
enum PresetKind : std::uint32_t {
  kAllKinds = 0,
  kVelocityMapKind = 0x564D6170,  // 'VMap'
  kEffectsKind = 0x45666678,      // 'Effx'
  kProgramKind = 0x50726F67,      // 'Prog'
  kSessionKind = 0x53657373,      // 'Sess'
};

}  // namespace cairnset
#pragma GCC visibility pop
