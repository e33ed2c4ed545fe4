#include "presets/PresetComparison.h"

#include <algorithm>
#include <cstring>

#include "presets/Preset.h"

namespace cairnset {

int compareIntrinsic(float a, float b, ParamTag tag) {
  const auto* converter = Param_Converters[tag];
  return converter->quantizeIntrinsic(a) != converter->quantizeIntrinsic(b) ? 1 : 0;
}

int comparePresetNames(const char* a, const char* b, long n) {
  if (a[0] == '\0') a = Preset::_default_preset_name;
  if (b[0] == '\0') b = Preset::_default_preset_name;
  return std::strncmp(a, b, static_cast<std::size_t>(std::max(n, 0L)));
}

}  // namespace cairnset
