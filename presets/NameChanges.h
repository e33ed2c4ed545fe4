// Renaming presets and redirecting references as a user asks for it: by paths and names, several
// changes in one go, all or none.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "presets/PresetKinds.h"

namespace cairnset {

class Preset;
class PresetManager;
struct PresetReference;

/// A change that is asked for. Texts are UTF-8.
struct NameChange {
  /// To redirect references: the kind that they are to. kAllKinds: to rename a preset.
  PresetKind referred;
  /// The path of the preset's file: below "Presets", or any other that leads there, as from the
  /// library's folder. Or the name that the references have, as reports show it.
  std::string what;
  /// The preset's new name, or the name of the preset that the references will lead to.
  std::string newName;
};

enum class Refusal {
  kNone,
  kNoPreset,        // none at the path, or none of the name that references are to get
  kSeveralPresets,  // the path fits several, by what reports show of it
  kIsDefault,       // a kind's "Default" cannot be renamed
  kNameEmpty,       // the new name
  kNameTooLong,     // more than the 63 characters that a reference can hold
  kNameNotHeld,     // a character has no Mac Roman form; also of the old name of references
  kNameIllegal,     // Windows rejects it, or no file can have it
  kNameUnchanged,
  kNameInFolder,     // something else in the preset's folder has it
  kNameInKind,       // another preset of the kind has it, case ignored
  kNamesakesSwap,    // references would lead to another preset of their name than now
  kReferrerDamaged,  // a file that must be rewritten is not a whole preset
};

/// The reason in words, for a message. Never null.
[[nodiscard]] const char* wordsFor(Refusal refusal, bool isRename);

/// A change that can be made. Names are Mac Roman.
struct PlannedChange {
  const PresetReference* reference;  // to the kind; null for sessions
  Preset* preset;                    // to be renamed; null to redirect references only
  std::string oldName;
  std::string newName;
  bool isMade = false;  // there is nothing to do: the file has been renamed before
  /// How many references already have the new name and lead nowhere: they will lead to the preset.
  std::size_t dangling = 0;
};

struct NameChangePlan {
  std::vector<PlannedChange> changes;
  // Of the first change that is refused; there are no planned changes then.
  Refusal refusal = Refusal::kNone;
  std::size_t refused = 0;
  const Preset* because = nullptr;  // the other preset, where there is one
};

/// Checks all changes, each against the library as those before it will leave it. Changes nothing
/// on the disk.
///
/// A run of the same changes may have been stopped before. If a file has its old and its new name,
/// the rename is planned again; the preset that was loaded for the new name is removed from the
/// list, even if the changes are refused. If the old name is gone and a preset in that folder has
/// the new one, the rename counts as made; but if that holds for all changes they are refused, for
/// then the path is more likely wrong.
[[nodiscard]] NameChangePlan planNameChanges(PresetManager& library,
                                             const std::vector<NameChange>& changes);

}  // namespace cairnset
