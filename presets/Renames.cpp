#include "presets/Renames.h"

#include <algorithm>
#include <array>
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

std::vector<Relinked*> rewriteReferrers(const std::vector<Renamed*>& presets) {
  std::vector<Relinked*> rewrites;
  for (Renamed* renamed : presets) {
    const PresetReference* reference = referenceTo(*renamed->preset);
    for (Relinked& relinked : renamed->referrers) {
      reference->setName(*relinked.preset, renamed->newName.c_str());
      rewrites.push_back(&relinked);
    }
  }
  std::stable_sort(rewrites.begin(), rewrites.end(), writesBefore);
  for (Relinked* relinked : rewrites) {
    // Only the status reports a file that could not be opened.
    (void)relinked->preset->writeOut();
    relinked->written = relinked->preset->status();
  }
  return rewrites;
}

// Renames presets whose referrers are all of one kind, a kind that none of the presets has.
void renameTogether(const std::vector<Renamed*>& presets) {
  const auto pascal = [](const Renamed& renamed) {
    Str255 name;
    C2PCopy(name, renamed.newName.c_str());
    return std::to_array(name);
  };
  const auto rename = [&pascal](Renamed& renamed) {
    renamed.result = renamed.preset->rename(pascal(renamed).data());
  };
  std::vector<Renamed*> linked, alone;
  for (Renamed* renamed : presets) {
    OSErr result = paramErr;
    if (referenceTo(*renamed->preset) != nullptr)
      result = renamed->preset->addName(pascal(*renamed).data());
    // A taken or invalid name makes the rename fail too, whenever it is tried.
    const bool canRewriteFirst = result == noErr || result == dupFNErr || result == bdNamErr;
    (canRewriteFirst ? linked : alone).push_back(renamed);
  }
  flushFolders(linked);
  flushFiles(rewriteReferrers(linked));
  for (Renamed* renamed : linked)
    rename(*renamed);
  for (Renamed* renamed : alone) {
    rename(*renamed);
    rewriteReferrers({renamed});
  }
}

}  // namespace

std::vector<Renamed> renamePresets(PresetManager& library, const std::vector<NewName>& names) {
  std::vector<Renamed> presets;
  std::map<const PresetReference*, ReferrerIndex> indexes;
  std::set<std::pair<const PresetReference*, std::string>> relinked;
  for (const auto& [preset, name] : names) {
    Renamed& renamed = presets.emplace_back(Renamed{preset, preset->getTreeItemName(), name, {}});
    const PresetReference* reference = referenceTo(*preset);
    if (reference == nullptr || !relinked.emplace(reference, renamed.oldName).second) continue;
    PresetList* list = &library.sessions();
    if (reference->from == kProgramKind) list = &library.programs();
    const ReferrerIndex& index = indexes.try_emplace(reference, list, *reference).first->second;
    index.forEachReferrerOf(renamed.oldName, [&renamed](Preset& referrer) {
      renamed.referrers.push_back({&referrer, referrer.getTreeItemName()});
    });
  }
  // Rewrite the references held by a kind before renaming that kind. Sessions, which name two
  // kinds, are rewritten together; no preset names them.
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

}  // namespace cairnset
