// When two settings, or two references, count as the same.
#pragma once

#include "params/ParamTables.h"

namespace cairnset {

/// 0 where both values fall on the same step of the parameter, however far apart they are; else 1.
int compareIntrinsic(float a, float b, ParamTag tag);

/// Compares two references to presets, by at most `n` characters, as strncmp does. An empty one
/// stands for the preset "Default".
int comparePresetNames(const char* a, const char* b, long n);

}  // namespace cairnset
