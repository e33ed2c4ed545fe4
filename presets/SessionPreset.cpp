#include "presets/SessionPreset.h"

#include "params/ParamTables.h"
#include "presets/PresetFields.h"

namespace cairnset {

void SessionFields::setDefaults() {
  setNameInField(velocityMapName, Preset::_default_preset_name);
  setNameInField(programName, Preset::_default_preset_name);
  stereoPerspective = static_cast<std::uint8_t>(Param_Defaults[kParamStereoPerspective]);
  tuning = static_cast<std::uint8_t>(Param_Defaults[kParamTuning]);
  voices = static_cast<std::uint16_t>(Param_Defaults[kParamNumberOfVoices]);
  bufferSize = static_cast<std::uint16_t>(
      Param_Converters[kParamBufferSize]->rawToIndex(Param_Defaults[kParamBufferSize]));
  octave = static_cast<std::uint16_t>(Param_Defaults[kParamTuneOctave]);
  transpose = static_cast<std::uint16_t>(Param_Defaults[kParamTuneTranspose]);
  fineTune = static_cast<std::int32_t>(Param_Defaults[kParamTuneFine]);
  gain = Param_Defaults[kParamGain];
  a440 = Param_Defaults[kParamTuneA440];
}

}  // namespace cairnset
