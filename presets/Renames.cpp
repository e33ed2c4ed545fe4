#include "presets/Renames.h"

#include <algorithm>
#include <functional>
#include <map>
#include <set>
#include <utility>

#include "host/files/FileManager.h"
#include "host/text/PascalStrings.h"
#include "presets/PresetManager.h"
#include "presets/PresetReferences.h"
#include "presets/ReferrerIndex.h"

namespace cairnset {

namespace {

// Flushing a volume also flushes other programs' writes, which can be many. From this number of
// items it is cheaper all the same.
constexpr std::size_t kManyItems = 32;

// Each write sets a RAM preset's index to its place. A preset that moves up or down the index order
// by this must not pass one that is still to be written.
bool writesBefore(const Relinked* a, const Relinked* b) {
  const auto movesUp = [](const Preset& preset) { return preset.fileIndex() < preset.index(); };
  if (movesUp(*a->preset) != movesUp(*b->preset)) return movesUp(*b->preset);
  return movesUp(*a->preset) ? a->preset->index() > b->preset->index()
                             : a->preset->index() < b->preset->index();
}

struct PascalName {
  explicit PascalName(const std::string& name) { C2PCopy(text, name.c_str()); }
  Str255 text;
};

bool flushVolumeIfMany(std::size_t items, const FSRef& one) {
  return items >= kManyItems && FSFlushVolume(&one) == noErr;
}

void flushFolders(const std::vector<Renamed*>& presets) {
  std::set<unsigned long> folders;
  for (const Renamed* renamed : presets)
    folders.insert(renamed->preset->getParentFolderID());
  if (presets.empty() || flushVolumeIfMany(folders.size(), presets.front()->preset->fileRef()))
    return;
  for (const unsigned long folder : folders) {
    const FSRef ref{static_cast<std::uint32_t>(folder)};
    // If this fails the names are safe against all but a loss of power; nothing more can be done.
    (void)FSFlushObject(&ref);
  }
}

void flushFiles(const std::vector<Relinked*>& rewrites) {
  if (rewrites.empty() || flushVolumeIfMany(rewrites.size(), rewrites.front()->preset->fileRef()))
    return;
  for (Relinked* relinked : rewrites) {
    if (relinked->written == noErr) relinked->flushed = FSFlushObject(&relinked->preset->fileRef());
  }
}

OSErr rewrite(Preset& preset, Relinks relinks) {
  const std::int32_t place = preset.index();
  // Places as indexes can change the order of presets, and so which of two of one name comes first.
  if (relinks == Relinks::kLedToIt) preset.setIndex(preset.fileIndex());
  (void)preset.writeOut();  // only the status reports a file that could not be opened
  preset.setIndex(place);
  return preset.status();
}

void rewriteInOrder(std::vector<Relinked*>& rewrites, Relinks relinks) {
  std::stable_sort(rewrites.begin(), rewrites.end(), writesBefore);
  for (Relinked* relinked : rewrites)
    relinked->written = rewrite(*relinked->preset, relinks);
}

std::vector<Relinked> asRelinked(const std::vector<Preset*>& referrers) {
  std::vector<Relinked> relinked;
  relinked.reserve(referrers.size());
  for (Preset* preset : referrers)
    relinked.push_back({preset, preset->getTreeItemName()});
  return relinked;
}

std::vector<Relinked*> rewriteReferrers(const std::vector<Renamed*>& presets, Relinks relinks) {
  std::vector<Relinked*> rewrites;
  for (Renamed* renamed : presets) {
    const PresetReference* reference = referenceTo(*renamed->preset);
    for (Relinked& relinked : renamed->referrers) {
      reference->setName(*relinked.preset, renamed->newName.c_str());
      rewrites.push_back(&relinked);
    }
  }
  rewriteInOrder(rewrites, relinks);
  return rewrites;
}

bool isNotSafe(const Relinked& relinked) {
  return relinked.written != noErr || relinked.flushed != noErr;
}

// Takes back the rewriting of the referrers of one preset. As far as that fails, they name it by
// its next name, which the next call gives it.
void putBack(Renamed& renamed, Relinks relinks) {
  const PresetReference* reference = referenceTo(*renamed.preset);
  for (Relinked& relinked : renamed.referrers) {
    reference->setName(*relinked.preset, renamed.oldName.c_str());
    if (relinked.written == noErr) relinked.written = rewrite(*relinked.preset, relinks);
  }
}

// Renames presets whose referrers are all of one kind, a kind that none of the presets has.
class RenamingTogether {
 public:
  RenamingTogether(const PresetManager& library, Relinks relinks)
      : _library(library), _relinks(relinks) {}

  void operator()(const std::vector<Renamed*>& presets) {
    std::vector<Renamed*> linked, alone;
    for (Renamed* renamed : presets) {
      if (renamed->preset->isChangedByOthers()) {
        renamed->result = catChangedErr;
        keepOldName(*renamed);
        renamed->referrers.clear();
        continue;
      }
      renamed->result = paramErr;
      if (isChangeOfCase(*renamed)) {
        renamed->result = dupFNErr;
      } else if (referenceTo(*renamed->preset) != nullptr) {
        renamed->result = renamed->preset->addName(PascalName(renamed->newName).text);
        if (isNameRefused(renamed->result) && _relinks == Relinks::kLedToIt) {
          renamed->referrers.clear();
          continue;
        }
      }
      // A taken or invalid name makes the rename fail too, whenever it is tried.
      const bool canRewriteFirst = renamed->result == noErr || isNameRefused(renamed->result);
      (canRewriteFirst ? linked : alone).push_back(renamed);
    }
    flushFolders(linked);
    flushFiles(rewriteReferrers(linked, _relinks));
    for (const Renamed* renamed : linked)
      keepOldNameIfNeeded(*renamed);
    for (Renamed* renamed : linked)
      removeOldName(*renamed);
    for (Renamed* renamed : alone)
      renameAlone(*renamed);
  }

 private:
  // Both names lead to the preset, whichever the file has; and where the volume ignores case, it
  // cannot have both.
  static bool isChangeOfCase(const Renamed& renamed) {
    return fncmp(renamed.oldName.c_str(), renamed.newName.c_str()) == 0;
  }

  // Presets of one old name share their referrers.
  using OldName = std::pair<const PresetReference*, std::string>;

  static OldName oldNameOf(const Renamed& renamed) {
    return {referenceTo(*renamed.preset), renamed.oldName};
  }
  void keepOldName(const Renamed& renamed) { _kept.insert(oldNameOf(renamed)); }
  void keepOldNameIfNeeded(const Renamed& renamed) {
    for (const Relinked& referrer : renamed.referrers) {
      if (isNotSafe(referrer)) keepOldName(renamed);
      // Nobody knows what the preset that is there now refers to.
      if (referrer.written == catChangedErr) _changed.insert(referenceTo(*renamed.preset)->from);
    }
  }
  bool keepsOldName(const Renamed& renamed) const {
    const PresetReference* reference = referenceTo(*renamed.preset);
    return reference != nullptr && !isChangeOfCase(renamed) &&
           (_library.findings().passedOver(reference->from) > 0 ||
            _changed.contains(reference->from) || _kept.contains(oldNameOf(renamed)));
  }

  void removeOldName(Renamed& renamed) const {
    const PascalName newName(renamed.newName);
    renamed.keepsOldName = keepsOldName(renamed);
    if (isNameRefused(renamed.result)) {
      if (!renamed.keepsOldName) renamed.result = renamed.preset->rename(newName.text);
    } else if (renamed.keepsOldName) {
      renamed.result = renamed.preset->switchToAddedName(newName.text);
    } else {
      renamed.result = renamed.preset->rename(newName.text);
      // Both names led to the file; one of them no longer does.
      if (renamed.result == dupFNErr) renamed.result = catChangedErr;
    }
  }

  void renameAlone(Renamed& renamed) {
    renamed.keepsOldName = keepsOldName(renamed);
    if (renamed.keepsOldName) {
      renamed.result = noErr;
      renamed.referrers.clear();
      return;
    }
    rewriteReferrers({&renamed}, _relinks);
    keepOldNameIfNeeded(renamed);
    renamed.keepsOldName = keepsOldName(renamed);
    renamed.result = noErr;
    if (renamed.keepsOldName) {
      putBack(renamed, _relinks);
    } else {
      renamed.result = renamed.preset->rename(PascalName(renamed.newName).text);
      if (renamed.result != noErr && _relinks == Relinks::kLedToIt) {
        putBack(renamed, _relinks);
        std::erase_if(renamed.referrers, std::not_fn(isNotSafe));
      }
    }
  }

  const PresetManager& _library;
  const Relinks _relinks;
  std::set<OldName> _kept;
  std::set<PresetKind> _changed;  // kinds of referrers that others have changed meanwhile
};

}  // namespace

bool isNameRefused(OSErr result) {
  return result == dupFNErr || result == bdNamErr;
}

std::vector<Renamed> renamePresets(PresetManager& library, const std::vector<NewName>& names,
                                   Relinks relinks) {
  std::vector<Renamed> presets;
  std::map<const PresetReference*, ReferrerIndex> indexes;
  std::set<std::pair<const PresetReference*, std::string>> relinked;
  for (const auto& [preset, name] : names) {
    Renamed& renamed = presets.emplace_back(Renamed{preset, preset->getTreeItemName(), name, {}});
    const PresetReference* reference = referenceTo(*preset);
    if (reference == nullptr || !relinked.emplace(reference, renamed.oldName).second) continue;
    if (relinks == Relinks::kLedToIt) {
      if (library.listOf(reference->to).findPreset(renamed.oldName.c_str()) == preset)
        renamed.referrers = asRelinked(referrersTo(library, *reference, renamed.oldName));
      continue;
    }
    PresetList* list = &library.sessions();
    if (reference->from == kProgramKind) list = &library.programs();
    const ReferrerIndex& index = indexes.try_emplace(reference, list, *reference).first->second;
    index.forEachReferrerOf(renamed.oldName, [&renamed](Preset& referrer) {
      renamed.referrers.push_back({&referrer, referrer.getTreeItemName()});
    });
  }
  // Rewrite the references held by a kind before renaming that kind. Sessions, which name two
  // kinds, are rewritten together; no preset names them.
  RenamingTogether renameTogether(library, relinks);
  for (const PresetKind referrers : {kProgramKind, kSessionKind, kAllKinds}) {
    std::vector<Renamed*> together;
    for (Renamed& renamed : presets) {
      const PresetReference* reference = referenceTo(*renamed.preset);
      if ((reference != nullptr ? reference->from : kAllKinds) == referrers)
        together.push_back(&renamed);
    }
    renameTogether(together);
  }
  return presets;
}

std::vector<Relinked> relinkReferences(PresetManager& library, const PresetReference& reference,
                                       const std::string& oldName, const std::string& newName) {
  std::vector<Preset*> referrers = referrersTo(library, reference, oldName);
  std::erase_if(referrers, [&](Preset* preset) { return reference.name(*preset) == newName; });
  std::vector<Relinked> relinked = asRelinked(referrers);
  std::vector<Relinked*> rewrites;
  for (Relinked& referrer : relinked) {
    reference.setName(*referrer.preset, newName.c_str());
    rewrites.push_back(&referrer);
  }
  rewriteInOrder(rewrites, Relinks::kLedToIt);
  flushFiles(rewrites);
  return relinked;
}

std::vector<Preset*> referrersTo(PresetManager& library, const PresetReference& reference,
                                 const std::string& name) {
  std::vector<Preset*> referrers;
  forEachPreset(&library.listOf(reference.from), [&](Preset& preset) {
    const std::string referred(reference.name(preset));
    const bool isKnown = !referred.empty() || preset.isFileWhole();
    if (isKnown && fncmp(referred.c_str(), name.c_str()) == 0) referrers.push_back(&preset);
  });
  return referrers;
}

}  // namespace cairnset
