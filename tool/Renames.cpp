#include "tool/Renames.h"

#include <algorithm>
#include <array>
#include <set>
#include <utility>

#include "host/FileManager.h"
#include "host/PascalStrings.h"
#include "presets/Preset.h"
#include "presets/PresetReferences.h"
#include "tool/WriteFailures.h"

namespace cairnset {

namespace {

// To flush a volume also takes others' writes along, which can be many. From this number on it is
// the cheaper way all the same.
constexpr std::size_t kManyItems = 32;

struct Rewrite {
  Preset* preset;
  std::size_t told;
};

// Each write puts a RAM preset at its own place in the order of the indices. One that moves down in
// it must not pass any that is yet to be written, nor must one that moves up.
bool writesBefore(const Rewrite& a, const Rewrite& b) {
  const auto movesUp = [](const Preset& preset) { return preset.fileIndex() < preset.index(); };
  if (movesUp(*a.preset) != movesUp(*b.preset)) return movesUp(*b.preset);
  return movesUp(*a.preset) ? a.preset->index() > b.preset->index()
                            : a.preset->index() < b.preset->index();
}

bool isFlushedAtOnce(std::size_t items, const FSRef& one) {
  return items >= kManyItems && FSFlushVolume(&one) == noErr;
}

void flushFolders(const std::vector<Rename*>& renames) {
  std::set<unsigned long> folders;
  for (const Rename* rename : renames)
    folders.insert(rename->preset->getParentFolderID());
  if (renames.empty() || isFlushedAtOnce(folders.size(), renames.front()->preset->fileRef()))
    return;
  for (const unsigned long folder : folders) {
    const FSRef ref{static_cast<std::uint32_t>(folder)};
    // Where this fails the names are safe against all but a loss of power, and there is no better.
    (void)FSFlushObject(&ref);
  }
}

void flushFiles(const std::vector<Rewrite>& rewrites, Failures& failures) {
  if (rewrites.empty() || isFlushedAtOnce(rewrites.size(), rewrites.front().preset->fileRef())) {
    return;
  }
  for (const auto& [preset, told] : rewrites) {
    if (failures.contains(told)) continue;
    const OSErr result = FSFlushObject(&preset->fileRef());
    if (result != noErr) failures[told] = writeFailure(*preset, result);
  }
}

std::vector<Rewrite> rewriteReferrers(const std::vector<Rename*>& renames, Failures& failures) {
  std::vector<Rewrite> rewrites;
  for (const Rename* rename : renames) {
    for (std::size_t i = 0; i < rename->referrers.size(); ++i) {
      rename->reference->setName(*rename->referrers[i], rename->newName.c_str());
      rewrites.push_back({rename->referrers[i], rename->told[i]});
    }
  }
  std::stable_sort(rewrites.begin(), rewrites.end(), writesBefore);
  for (const auto& [preset, told] : rewrites) {
    if (std::string failure = writeAndTell(*preset); !failure.empty()) {
      failures[told] = std::move(failure);
    }
  }
  return rewrites;
}

}  // namespace

void renameAll(const std::vector<Rename*>& renames, Failures& failures) {
  const auto pascal = [](const Rename& rename) {
    Str255 name;
    C2PCopy(name, rename.newName.c_str());
    return std::to_array(name);
  };
  std::vector<Rename*> together, alone;
  for (Rename* rename : renames) {
    OSErr result = paramErr;
    if (rename->reference != nullptr) result = rename->preset->addName(pascal(*rename).data());
    // A name that is taken, or is none, fails the rename too, whenever that is tried.
    const bool needsNoRename = result == noErr || result == dupFNErr || result == bdNamErr;
    (needsNoRename ? together : alone).push_back(rename);
  }
  flushFolders(together);
  flushFiles(rewriteReferrers(together, failures), failures);
  for (Rename* rename : together)
    (void)rename->preset->rename(pascal(*rename).data());
  for (Rename* rename : alone) {
    (void)rename->preset->rename(pascal(*rename).data());
    rewriteReferrers({rename}, failures);
  }
}

}  // namespace cairnset
