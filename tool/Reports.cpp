#include "tool/Reports.h"

#include <iostream>

#include "host/ReportText.h"
#include "presets/PresetManager.h"
#include "tool/LeafIteration.h"
#include "tool/ReferrerIndex.h"
#include "tool/Session.h"

namespace cairnset {

namespace {

// One pass of -d. Answers whether every reference was found.
bool checkReferences(PresetList* referrers, const PresetReference& reference, PresetList* referred,
                     const char* uses) {
  bool all = true;
  forEachPreset(referrers, [&](Preset& preset) {
    const std::string name = reference.name(preset);
    const bool found = referred->findPreset(name.c_str()) != nullptr;
    all = all && found;
    std::cout << (found ? "   [ ok ]      " : " [ MISSING ]   ");
    preset.printTreeItemInfo(std::cout, 0);
    std::cout << uses;
    writeHeldName(std::cout, name);
    std::cout << (found ? "\" which is found.\n" : "\" which is MISSING.\n");
  });
  std::cout << "--------------------------------------\n";
  return all;
}

// One pass of -r.
void listReferrers(PresetList* referred, PresetList* referrers, const PresetReference& reference) {
  const ReferrerIndex index(referrers, reference);
  forEachPreset(referred, [&index](Preset& preset) {
    preset.printTreeItemInfo(std::cout, 0);
    std::cout << '\n';
    for (const Preset* referrer : index.referrersOf(preset.getTreeItemName())) {
      std::cout << "\t\t used by ";
      referrer->printTreeItemInfo(std::cout, 0);
      std::cout << '\n';
    }
  });
}

}  // namespace

void listPresets() {
  if (_pm == nullptr) return;
  for (const PresetList* list : {_v, _e, _p, _s}) {
    if (list != nullptr) list->listRecursively(std::cout, 0, 0);
  }
}

int listAllDependencies() {
  bool all = checkReferences(_p, kProgramEffectsReference, _e, " uses effect \"");
  all = checkReferences(_s, kSessionProgramReference, _p, " uses program \"") && all;
  all = checkReferences(_s, kSessionVelocityMapReference, _v, " uses velmap \"") && all;
  return all ? kSuccess : kMissingReferences;
}

void listParents() {
  listReferrers(_v, _s, kSessionVelocityMapReference);
  listReferrers(_e, _p, kProgramEffectsReference);
  listReferrers(_p, _s, kSessionProgramReference);
}

}  // namespace cairnset
