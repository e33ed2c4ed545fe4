#include "tool/Notes.h"

#include <algorithm>
#include <cstdint>
#include <iostream>
#include <map>
#include <set>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "host/files/FileSystemHelpers.h"
#include "host/terminal/ReportText.h"
#include "host/text/PascalStrings.h"
#include "presets/PresetManager.h"
#include "presets/PresetReferences.h"
#include "presets/Renames.h"

namespace cairnset {

namespace {

constexpr std::size_t kMostOfASort = 10;

bool isWanted = true;
std::set<OSErr> results;  // to be explained
NoteLines writtenLines;

const char* kindName(std::uint32_t kind) {
  switch (kind) {
    case kVelocityMapKind:
      return "velocity map";
    case kEffectsKind:
      return "effect";
    case kProgramKind:
      return "program";
    case kSessionKind:
      return "session";
    default:
      return "unknown";
  }
}

std::string kindOf(const Preset& preset) {
  return kindName(static_cast<std::uint32_t>(preset.getPresetType()));
}

std::string quoted(const std::string& heldName) {
  std::string text = "\"";
  appendHeldName(text, std::cerr, heldName);
  return text += '"';
}

std::string because(OSErr result) {
  return std::string(": ") + wordsFor(result) + " (" + std::to_string(result) + ')';
}

// The words for one library's findings. Paths are relative to its folder.
class Wording {
 public:
  explicit Wording(const PresetManager& library) : _items(library.itemsFolder()) {}

  std::string path(const FSRef& place) const { return getPlacePath(place, _items); }

  std::string of(const Finding& f) const {
    const std::string at = path(f.place);
    const std::string why = because(f.result);
    switch (f.sort) {
      case FindingSort::kFileNotOpened:
        return at + " was passed over, for it could not be opened" + why +
               "; make it readable and writable, and run this again";
      case FindingSort::kFileNotWritable:
        return at + " was passed over, for it can be read but not written" + why +
               "; make it writable, or work on a copy of the library";
      case FindingSort::kFileNotRead:
        return at + " was passed over, for it could not be read" + why +
               "; check the disk, and restore the file from a copy";
      case FindingSort::kFolderNotListed:
        return at + " was passed over with all that is in it, for it could not be listed" +
               (f.result == dirNFErr ? ": it is a link or no folder (-120)" : why) +
               "; put a folder there that you may read";
      case FindingSort::kKindFolderNotMade:
        return at + '/' + f.name + " could neither be found nor made" + why + "; no " +
               kindName(f.kind) + " was loaded";
      case FindingSort::kUserFolderNotMade:
        return at + '/' + f.name + " could neither be found nor made" + why + "; every " +
               kindName(f.kind) + " is loaded all the same, but none is made or moved";
      case FindingSort::kLinkNotFollowed:
        return at +
               " is a link, which is not followed; if it is part of the library, put the item "
               "itself there";
      case FindingSort::kOtherKind:
        return at + " was passed over, for it is of another kind (" + kindName(f.fileKind) +
               "); move it to the folder of its kind";
      case FindingSort::kDamaged:
        return at + " is damaged: " + sizes(f) + "; restore it from a copy";
      case FindingSort::kDefaultNotMade:
        return at + "/Default " +
               (f.result == dupFNErr
                    ? "is no " + std::string(kindName(f.kind)) +
                          " and stays as it is; move it away, and the next run makes a new one"
                    : "could not be made" + why + "; see that this folder can be written to");
      case FindingSort::kDefaultNotWritten:
        return at + " could not be made ROM with index 0" + why +
               "; see that this file can be written to";
      case FindingSort::kPresetsFolderMade:
        return "this folder had no \"Presets\", and a new library was made in it; if yours is "
               "elsewhere, give its folder with -e";
      case FindingSort::kInsideLibrary:
        return "this folder is within a library; to work on that one, give -e " +
               getPlacePath(f.place, FSRef());
      case FindingSort::kHoldsPresets:
        return "this folder itself looks like a part of a library; give with -e the folder that "
               "has \"Presets\" in it";
      case FindingSort::kReplaced:
        return at + " was replaced by " + path(f.from) +
               "; if you miss what was there, restore it from a copy under another name";
      case FindingSort::kNotMoved:
        return path(f.from) + " was not moved to " + at + '/' + f.name + because(f.result) +
               (f.result == dupFNErr ? "; rename one of the two" : "");
    }
    return "";
  }

 private:
  static std::string sizes(const Finding& f) {
    const std::string size = std::to_string(f.size), whole = std::to_string(f.expectedSize);
    if (f.expectedSize == 0) return "it has only " + size + " bytes";
    if (f.size == f.expectedSize) return "its size is not the one that it states";
    return f.size < f.expectedSize ? "it has only " + size + " of " + whole + " bytes"
                                   : "it has " + size + " bytes instead of " + whole;
  }

  FSRef _items;
};

const char* ofTheRest(FindingSort sort) {
  switch (sort) {
    case FindingSort::kFileNotOpened:
      return "files could not be opened";
    case FindingSort::kFileNotWritable:
      return "files can be read but not written";
    case FindingSort::kFileNotRead:
      return "files could not be read";
    case FindingSort::kFolderNotListed:
      return "folders could not be listed";
    case FindingSort::kLinkNotFollowed:
      return "links were not followed";
    case FindingSort::kOtherKind:
      return "presets are in the folder of another kind";
    case FindingSort::kDamaged:
      return "presets are damaged";
    case FindingSort::kReplaced:
      return "presets were replaced";
    default:
      return "presets were not moved";
  }
}

// Cuts each sort of notes to ten.
class LimitedNotes {
 public:
  /// One of `all` notes of a sort, with the words for those that do not fit.
  void add(int sort, const std::string& line, std::size_t all, const char* rest) {
    const std::size_t written = ++_written[sort];
    if (written <= kMostOfASort) _lines.push_back(line);
    if (written == kMostOfASort && all > written)
      _lines.push_back(std::to_string(all - written) + " more " + rest);
  }

  bool hasRoomFor(int sort) { return _written[sort] < kMostOfASort; }

  NoteLines lines() { return std::move(_lines); }

 private:
  NoteLines _lines;
  std::map<int, std::size_t> _written;
};

NoteLines notesOf(const PresetManager& library, bool ofSorting) {
  const Findings& findings = library.findings();
  const Wording wording(library);
  LimitedNotes notes;
  for (const Finding& finding : findings.kept()) {
    if ((finding.sort >= FindingSort::kReplaced) != ofSorting) continue;
    notes.add(static_cast<int>(finding.sort), wording.of(finding), findings.count(finding.sort),
              ofTheRest(finding.sort));
  }
  return notes.lines();
}

// The first preset of each renamed one's kind that has its new name too, or null.
std::vector<const Preset*> namesakesOf(PresetManager& library,
                                       const std::vector<Renamed>& renames) {
  std::vector<const Preset*> namesakes(renames.size(), nullptr);
  for (const PresetKind kind : {kVelocityMapKind, kEffectsKind, kProgramKind, kSessionKind}) {
    const PresetList* list = &library.listOf(kind);
    std::unordered_multimap<std::uint32_t, std::size_t> byName;
    for (std::size_t i = 0; i < renames.size(); ++i) {
      if (renames[i].preset->getPresetType() == list->getPresetType())
        byName.emplace(fncmpHash(renames[i].preset->getTreeItemName()), i);
    }
    if (byName.empty()) continue;
    for (const Preset* preset : list->presets()) {
      if (preset == nullptr || preset->getTreeItemName() == nullptr) continue;
      const auto [first, last] = byName.equal_range(fncmpHash(preset->getTreeItemName()));
      for (auto entry = first; entry != last; ++entry) {
        const Preset* renamed = renames[entry->second].preset;
        if (preset->fileRef() == renamed->fileRef() || namesakes[entry->second] != nullptr)
          continue;
        if (fncmp(preset->getTreeItemName(), renamed->getTreeItemName()) == 0)
          namesakes[entry->second] = preset;
      }
    }
  }
  return namesakes;
}

}  // namespace

NoteLines notesOfLoad(const PresetManager& library) {
  return notesOf(library, false);
}

NoteLines notesOfSorting(const PresetManager& library) {
  return notesOf(library, true);
}

std::vector<ReferenceTarget> targetsBefore(PresetManager& library,
                                           const std::vector<NewName>& names) {
  // By any other name than these, a reference leads to the same preset as before.
  std::unordered_set<std::uint32_t> hashes;
  for (const auto& [preset, name] : names)
    hashes.insert({fncmpHash(preset->getTreeItemName()), fncmpHash(name.c_str())});
  std::vector<ReferenceTarget> targets;
  for (const auto* reference :
       {&kProgramEffectsReference, &kSessionProgramReference, &kSessionVelocityMapReference}) {
    const PresetList& referred = library.listOf(reference->to);
    forEachPreset(&library.listOf(reference->from), [&](const Preset& preset) {
      const std::string name(reference->name(preset));
      if (hashes.contains(fncmpHash(name.c_str())))
        targets.push_back({reference, &preset, referred.findPreset(name.c_str())});
    });
  }
  return targets;
}

NoteLines notesOfRepair(PresetManager& library, const std::vector<Renamed>& renames,
                        const std::vector<ReferenceTarget>& before) {
  enum { kRefused, kShared, kRedirected };
  const Wording wording(library);
  LimitedNotes notes;
  const auto refused = static_cast<std::size_t>(std::count_if(
      renames.begin(), renames.end(), [](const Renamed& r) { return r.result != noErr; }));
  const std::vector<const Preset*> namesakes = namesakesOf(library, renames);
  std::size_t shared = 0;
  for (std::size_t i = 0; i < renames.size(); ++i)
    shared += renames[i].result == noErr && namesakes[i] != nullptr;
  for (std::size_t i = 0; i < renames.size(); ++i) {
    const Renamed& renamed = renames[i];
    const std::string which = kindOf(*renamed.preset) + ' ' + quoted(renamed.oldName);
    if (renamed.result != noErr) {
      notes.add(kRefused,
                which + " was not renamed to " + quoted(renamed.newName) + because(renamed.result) +
                    "; rename it by hand, and what refers to it",
                refused, "presets were not renamed");
    } else if (namesakes[i] != nullptr) {
      notes.add(kShared,
                which + " has the name of " + wording.path(namesakes[i]->fileRef()) +
                    " now; references by it lead to only one of the two",
                shared, "presets have the name of another now");
    }
  }
  std::vector<std::pair<const ReferenceTarget*, const Preset*>> redirected;
  for (const ReferenceTarget& target : before) {
    const std::string name(target.reference->name(*target.referrer));
    const Preset* now = library.listOf(target.reference->to).findPreset(name.c_str());
    // Two presets of one place: a repair was stopped when its file had both names.
    if (target.preset != nullptr && now != nullptr && now->fileRef() != target.preset->fileRef())
      redirected.emplace_back(&target, now);
  }
  for (const auto& [target, now] : redirected) {
    if (!notes.hasRoomFor(kRedirected)) break;
    notes.add(kRedirected,
              kindOf(*target->referrer) + ' ' + quoted(target->referrer->getTreeItemName()) +
                  " uses " + wording.path(now->fileRef()) + " now, no longer " +
                  wording.path(target->preset->fileRef()) + "; give one of them another name",
              redirected.size(), "references lead to another preset than before");
  }
  return notes.lines();
}

void addResultNote(OSErr result) {
  results.insert(result);
}

NoteLines takeResultNotes() {
  NoteLines notes;
  for (const OSErr result : std::exchange(results, {}))
    notes.push_back("error " + std::to_string(result) + " means: " + wordsFor(result));
  return notes;
}

void writeNotes(const NoteLines& notes) {
  if (!isWanted) return;
  for (std::string line : notes) {
    std::replace(line.begin(), line.end(), '\n', '?');  // in a name
    writeText(std::cerr, "Cairnset: note: " + line + '\n');
    writtenLines.push_back(std::move(line));
  }
}

const NoteLines& writtenNotes() {
  return writtenLines;
}

void setNotesWanted(bool wanted) {
  isWanted = wanted;
}

bool areNotesWanted() {
  return isWanted;
}

}  // namespace cairnset
