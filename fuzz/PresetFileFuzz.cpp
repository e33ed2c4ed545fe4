// A preset file of any kind: the input is the file. Loaded from the disk and from memory, compared,
// swapped, relinked, written out and loaded again.
#include "fuzz/Fuzz.h"
#include "presets/EffectsPreset.h"
#include "presets/PresetReferences.h"
#include "presets/ProgramPreset.h"
#include "presets/SessionPreset.h"
#include "presets/VelocityMapPreset.h"
#include "tests/TestFolder.h"

namespace cairnset {
namespace {

std::unique_ptr<Preset> open(const FSRef& ref, const std::string& code) {
  if (code == "VMap") return std::make_unique<VelocityMapPreset>(ref, nullptr, false);
  if (code == "Effx") return std::make_unique<EffectsPreset>(ref, nullptr, false);
  if (code == "Prog") return std::make_unique<ProgramPreset>(nullptr, ref, nullptr, false);
  return std::make_unique<SessionPreset>(ref, nullptr, false);
}

std::string imageOf(Preset& preset) {
  const auto size = static_cast<std::size_t>(preset.getFlattenedPreset(nullptr));
  return {preset.flattenedData(), size};
}

void relink(Preset& preset, const PresetReference& reference, const std::string& name) {
  if (preset.getPresetType() != long{reference.from}) return;
  const std::string before = imageOf(preset);
  reference.setName(preset, name.c_str());
  check(reference.name(preset) == name.substr(0, PresetReference::kWidth), "a name is kept", name);
  std::string after = imageOf(preset);
  const auto first = static_cast<std::size_t>(reference.field(preset) -
                                              static_cast<const char*>(preset.getData()));
  after.replace(93 + first, PresetReference::kWidth, before, 93 + first, PresetReference::kWidth);
  check(after == before, "no other field is changed", name);
}

void checkFile(const TestFolder& folder, const std::string& bytes) {
  const std::string code = bytes.substr(std::min<std::size_t>(bytes.size(), 4), 4);
  folder.write("p", bytes);
  const FSRef ref = folder.ref("p");
  const auto preset = open(ref, code), twin = open(ref, code), blank = open(ref, code);
  preset->readIn();
  twin->setFlattenedPreset(bytes.data(), static_cast<long>(bytes.size()));
  const std::string image = imageOf(*preset);
  check(preset->status() == twin->status() && image == imageOf(*twin), "disk and memory agree");
  check(preset->status() == noErr || preset->equalParams(*blank),
        "what is refused changes nothing");
  if (preset->status() == noErr && bytes.size() == image.size()) {
    std::string same = bytes;  // but for the name and the declared length; what is reserved goes
    same.replace(12, 64, image, 12, 64).replace(76, 8, 8, '\0').replace(89, 4, image, 89, 4);
    check(image == same, "a sound file is kept byte for byte");
  }
  const std::string tail = bytes.size() > image.size() ? bytes.substr(image.size()) : "";
  check(preset->writeOut() == noErr && folder.read("p") == image + tail, "the image, and a tail");
  preset->readIn();
  check(preset->status() == (tail.empty() ? noErr : OSErr{Preset::kWrongSize}),
        "its size is right");
  check(imageOf(*preset) == image && preset->equalParams(*twin), "what was written is read again");
  const std::string name = bytes.substr(std::min<std::size_t>(bytes.size(), 12), 80).c_str();
  for (const auto* reference :
       {&kProgramEffectsReference, &kSessionProgramReference, &kSessionVelocityMapReference})
    relink(*preset, *reference, name);
}

}  // namespace
}  // namespace cairnset

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const cairnset::TestFolder folder;
  cairnset::checkFile(folder, {reinterpret_cast<const char*>(data), size});
  return 0;
}
