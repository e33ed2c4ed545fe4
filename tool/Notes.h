// Notes: lines on standard error that tell the owner of a library what its reports cannot say.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "host/ResultCodes.h"

namespace cairnset {

class Preset;
class PresetManager;
struct NewName;
struct PresetReference;
struct Renamed;

/// Notes as they are written, each one line without its beginning and end. Of a sort there are at
/// most ten, and a line with the number of the rest. A library in order gives none.
using NoteLines = std::vector<std::string>;

/// What the load of the library has passed over or could not do.
[[nodiscard]] NoteLines notesOfLoad(const PresetManager& library);
/// What sorting has replaced or left where it was.
[[nodiscard]] NoteLines notesOfSorting(const PresetManager& library);

/// A reference, and the preset that it led to, or null.
struct ReferenceTarget {
  const PresetReference* reference;
  const Preset* referrer;
  const Preset* preset;
};
/// Those that renaming these presets can lead elsewhere.
[[nodiscard]] std::vector<ReferenceTarget> targetsBefore(PresetManager& library,
                                                         const std::vector<NewName>& names);
/// Refused renames, names that two presets have by now, and references that lead to another preset
/// than before.
[[nodiscard]] NoteLines notesOfRepair(PresetManager& library, const std::vector<Renamed>& renames,
                                      const std::vector<ReferenceTarget>& before);

/// Remembers to explain a result code that a line on standard error has given.
void addResultNote(OSErr result);
/// Explains those added since the last call, each once.
[[nodiscard]] NoteLines takeResultNotes();

/// Writes each with "Cairnset: note: " in front.
void writeNotes(const NoteLines& notes);

/// All that writeNotes has written.
[[nodiscard]] const NoteLines& writtenNotes();

/// Without notes, writeNotes does nothing. Computing them is then a waste.
void setNotesWanted(bool wanted);
[[nodiscard]] bool areNotesWanted();

}  // namespace cairnset
