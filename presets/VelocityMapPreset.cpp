#include "presets/VelocityMapPreset.h"

#include "params/ParamTables.h"

namespace cairnset {

namespace {

constexpr std::uint32_t kDefaultType = 0x6F726434;  // 'ord4'

}  // namespace

VelocityMapPreset::VelocityMapPreset(const FSRef& ref, const char* name, bool create)
    : PresetOfKind(ref, name, create) {
  if (!create) return;
  fields.type = kDefaultType;
  fields.hardness = Param_Defaults[kParamVelocityMapHardness];
  fields.minimumVelocity = static_cast<std::uint8_t>(Param_Defaults[kParamVelocityMapMinVel]);
  fields.maximumVelocity = static_cast<std::uint8_t>(Param_Defaults[kParamVelocityMapMaxVel]);
}

VelocityMapPreset::VelocityMapPreset(const VelocityMapPreset& source, const unsigned char* newName,
                                     const FSRef* folder)
    : PresetOfKind(source, newName, folder) {}

}  // namespace cairnset
