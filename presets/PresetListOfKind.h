// The lists of the four kinds, which do nearly everything alike.
#pragma once

#include <type_traits>

#include "host/text/FileNameRules.h"
#include "host/text/PascalStrings.h"
#include "presets/EffectsPreset.h"
#include "presets/PresetList.h"
#include "presets/ProgramPreset.h"
#include "presets/SessionPreset.h"
#include "presets/VelocityMapPreset.h"

#pragma GCC visibility push(default)
namespace cairnset {

/// The list of the presets of class `Kind`. Programs are always made without keymaps.
template <typename Kind>
class PresetListOfKind : public PresetList {
 public:
  explicit PresetListOfKind(PresetManager* manager) : PresetList(manager) {}
  /// The copy has no presets: its own list is empty. On purpose.
  PresetListOfKind(const PresetListOfKind&) = default;

  long getPresetType() const override { return Kind::kKind; }

  Preset* openPreset(const FSRef& file, const FileStart* start = nullptr) override {
    if (!confirmed()) return nullptr;
    if (Preset* open = findPresetUsingFileSpec(file); open != nullptr) return open;
    Kind* preset = make(file, static_cast<const char*>(nullptr), false);
    if (preset->status() != noErr) {
      delete preset;
      return nullptr;
    }
    // A file that cannot be read is still a preset, a blank one.
    start != nullptr ? preset->readFrom(*start) : preset->readIn();
    addPtr(static_cast<Preset*>(preset));
    return preset;
  }

  OSStatus newPreset(unsigned char* name, bool /*unused*/, bool inUserFolder) override {
    if (!confirmed()) return noErr;
    if (whyNothingMade() != noErr) return whyNothingMade();
    RemoveAllIllegalFilenameCharsInPlace(name);
    char text[256];
    P2CCopy(text, name);
    return keep(make(newPresetFolder(inUserFolder), static_cast<const char*>(text), true));
  }

  OSStatus duplicatePreset(long index, unsigned char* newName) override {
    const auto* source = static_cast<const Kind*>(presetAt(index));
    if (!confirmed() || source == nullptr) return noErr;
    if (whyNothingMade() != noErr) return whyNothingMade();
    RemoveAllIllegalFilenameCharsInPlace(newName);
    return keep(make(*source, static_cast<const unsigned char*>(newName), &newPresetFolder(true)));
  }

  void deletePreset(long index) override {
    if (Preset* preset = presetAt(index); preset != nullptr) destroyWithFile(preset);
  }

  /// Moves the files directly in the root folder into its sub-folders (presets/BrowserSorting.h).
  /// Returns the status of the last look-up or move.
  virtual OSStatus sortForBrowser() = 0;

 private:
  template <typename... Args>
  static Kind* make(const Args&... args) {
    if constexpr (std::is_constructible_v<Kind, KeymapManager*, const Args&...>) {
      return new Kind(static_cast<KeymapManager*>(nullptr), args...);
    } else {
      return new Kind(args...);
    }
  }

  OSStatus keep(Kind* preset) {
    if (const OSErr status = preset->status(); status != noErr) {
      delete preset;
      return status;
    }
    if (whyExistingKept() != noErr) preset->neverWrite(whyExistingKept());
    preset->writeOut();
    addPtr(static_cast<Preset*>(preset));
    return noErr;
  }
};

class VelocityMapPresetList : public PresetListOfKind<VelocityMapPreset> {
 public:
  using PresetListOfKind::PresetListOfKind;

  /// Unlike the other kinds, closes the file of a preset that is already in the list.
  Preset* openPreset(const FSRef& file, const FileStart* start = nullptr) override {
    Preset* open = confirmed() ? findPresetUsingFileSpec(file) : nullptr;
    if (open != nullptr) open->close();
    return open != nullptr ? open : PresetListOfKind::openPreset(file, start);
  }
  OSStatus sortForBrowser() override;
};

class EffectsPresetList : public PresetListOfKind<EffectsPreset> {
 public:
  using PresetListOfKind::PresetListOfKind;
  OSStatus sortForBrowser() override;
};

class ProgramPresetList : public PresetListOfKind<ProgramPreset> {
 public:
  using PresetListOfKind::PresetListOfKind;
  OSStatus sortForBrowser() override;
};

class SessionPresetList : public PresetListOfKind<SessionPreset> {
 public:
  using PresetListOfKind::PresetListOfKind;

  /// Unlike the other kinds, deletes only in a confirmed list.
  void deletePreset(long index) override {
    if (confirmed()) PresetListOfKind::deletePreset(index);
  }
  /// Does nothing: sessions are never sorted.
  OSStatus sortForBrowser() override { return noErr; }
};

}  // namespace cairnset
#pragma GCC visibility pop
