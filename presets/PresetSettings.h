// The settings of a preset, under the names of the instrument's parameters and as it shows them.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <variant>

#include "params/ParamTables.h"

namespace cairnset {

class Preset;

struct Setting {
  ParamTag tag;      // of the parameter; kNumParams for a text
  const char* name;  // ASCII, unique in the preset
  const char* unit;  // shown after the value; empty if the value has none or includes it
  /// As the file stores it, which for the stereo width is a fraction and for the buffer size a
  /// step. Octave and transpose are read as signed. A text is Mac Roman and in the preset.
  std::variant<std::string_view, std::int64_t, float> stored;
};

/// Calls `each` for every setting, in the order of the file. References are not settings.
void forEachSetting(const Preset& preset, const std::function<void(const Setting&)>& each);

/// The value as the instrument shows it, Mac Roman: as the parameter's converter does, limited to
/// the range of the control. With two exceptions, where a converter would show a mere number: a
/// piano keyset has its display name, if there is one, and the type of a curve or of an ambience
/// its four characters.
[[nodiscard]] std::string shownValue(const Setting& setting);

}  // namespace cairnset
