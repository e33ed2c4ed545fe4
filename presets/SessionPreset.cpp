#include "presets/SessionPreset.h"

#include "params/ParamTables.h"
#include "presets/PresetFields.h"

namespace cairnset {

SessionPreset::SessionPreset(const FSRef& ref, const char* name, bool create)
    : PresetOfKind(ref, name, create) {
  if (!create) return;
  setNameInField(fields.velocityMapName, _default_preset_name);
  setNameInField(fields.programName, _default_preset_name);
  fields.stereoPerspective = static_cast<std::uint8_t>(Param_Defaults[kParamStereoPerspective]);
  fields.tuning = static_cast<std::uint8_t>(Param_Defaults[kParamTuning]);
  fields.voices = static_cast<std::uint16_t>(Param_Defaults[kParamNumberOfVoices]);
  fields.bufferSize = static_cast<std::uint16_t>(
      Param_Converters[kParamBufferSize]->rawToIndex(Param_Defaults[kParamBufferSize]));
  fields.octave = static_cast<std::uint16_t>(Param_Defaults[kParamTuneOctave]);
  fields.transpose = static_cast<std::uint16_t>(Param_Defaults[kParamTuneTranspose]);
  fields.fineTune = static_cast<std::int32_t>(Param_Defaults[kParamTuneFine]);
  fields.gain = Param_Defaults[kParamGain];
  fields.a440 = Param_Defaults[kParamTuneA440];
}

SessionPreset::SessionPreset(const SessionPreset& source, const unsigned char* newName,
                             const FSRef* folder)
    : PresetOfKind(source, newName, folder) {}

}  // namespace cairnset
