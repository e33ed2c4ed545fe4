// When two settings, or two references, count as the same.
#pragma once

#include <algorithm>
#include <cstring>

#include "params/ParamTables.h"
#include "presets/Preset.h"

namespace cairnset {

/// 0 if both values fall on the same step of the parameter, however far apart they are; else 1.
inline int compareIntrinsic(float a, float b, ParamTag tag) {
  const auto* converter = Param_Converters[tag];
  return converter->quantizeIntrinsic(a) != converter->quantizeIntrinsic(b) ? 1 : 0;
}

/// Compares two references to presets, by at most `n` characters, as strncmp does. An empty one
/// means the preset "Default".
inline int comparePresetNames(const char* a, const char* b, long n) {
  if (a[0] == '\0') a = Preset::_default_preset_name;
  if (b[0] == '\0') b = Preset::_default_preset_name;
  return std::strncmp(a, b, static_cast<std::size_t>(std::max(n, 0L)));
}

}  // namespace cairnset
