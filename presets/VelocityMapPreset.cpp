#include "presets/VelocityMapPreset.h"

#include "params/ParamTables.h"

namespace cairnset {

namespace {

constexpr std::uint32_t kDefaultType = 0x6F726434;  // 'ord4'

}  // namespace

void VelocityMapFields::setDefaults() {
  type = kDefaultType;
  hardness = Param_Defaults[kParamVelocityMapHardness];
  minimumVelocity = static_cast<std::uint8_t>(Param_Defaults[kParamVelocityMapMinVel]);
  maximumVelocity = static_cast<std::uint8_t>(Param_Defaults[kParamVelocityMapMaxVel]);
}

}  // namespace cairnset
