// How key velocity is mapped.
#pragma once

#include "presets/PresetKinds.h"
#include "presets/PresetOfKind.h"

#pragma GCC visibility push(default)
namespace cairnset {

/// Payload in the file, 14 bytes: declared length 10 (4), then the fields below in order without
/// the spare bytes.
struct VelocityMapFields {
  static constexpr std::uint32_t kKind = kVelocityMapKind;
  static constexpr const char* kTypeName = "[VMap]";
  static constexpr std::uint32_t kDeclaredLength = 10;

  std::uint32_t type;  // a four-character code
  float hardness;
  std::uint8_t minimumVelocity;
  std::uint8_t maximumVelocity;
  std::uint8_t spare[2];

  /// Calls `each` with all fields of the file, in its order.
  template <typename Self, typename Each>
  static void forEach(Self& f, Each each) {
    each(f.type, f.hardness, f.minimumVelocity, f.maximumVelocity);
  }

  /// The defaults of the parameter table.
  void setDefaults();
};
static_assert(sizeof(VelocityMapFields) == 12);

class VelocityMapPreset : public PresetOfKind<VelocityMapFields> {
 public:
  using PresetOfKind::PresetOfKind;
};

}  // namespace cairnset
#pragma GCC visibility pop
