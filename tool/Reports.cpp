#include "tool/Reports.h"

#include <iostream>
#include <string>
#include <utility>

#include "host/terminal/ReportText.h"
#include "presets/PresetManager.h"
#include "presets/ReferrerIndex.h"
#include "tool/Notes.h"
#include "tool/Session.h"

namespace cairnset {

namespace {

// One preset can be used by all others: their lines are written in pieces of about this size.
constexpr std::size_t kMostText = 1 << 16;

// One pass of -d. Returns whether every reference was found.
bool checkReferences(PresetList* referrers, const PresetReference& reference, PresetList* referred,
                     const char* uses) {
  bool all = true;
  std::string line;
  forEachPreset(referrers, [&](Preset& preset) {
    const std::string name(reference.name(preset));
    const bool found = referred->findPreset(name.c_str()) != nullptr;
    all = all && found;
    line = found ? "   [ ok ]      " : " [ MISSING ]   ";
    preset.appendTreeItemInfo(line, std::cout);
    line += uses;
    appendHeldName(line, std::cout, name);
    line += found ? "\" which is found.\n" : "\" which is MISSING.\n";
    writeText(std::cout, line);
  });
  std::cout << "--------------------------------------\n";
  return all;
}

// One pass of -r.
void listReferrers(PresetList* referred, PresetList* referrers, const PresetReference& reference) {
  const ReferrerIndex index(referrers, reference);
  std::string text;
  forEachPreset(referred, [&](Preset& preset) {
    text.clear();
    preset.appendTreeItemInfo(text, std::cout);
    text += '\n';
    index.forEachReferrerOf(preset.getTreeItemName(), [&](const Preset& referrer) {
      text += "\t\t used by ";
      referrer.appendTreeItemInfo(text, std::cout);
      text += '\n';
      if (text.size() > kMostText) writeText(std::cout, std::exchange(text, {}));
    });
    writeText(std::cout, text);
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

void reportFailure(const char* doing, const Preset& preset, OSErr result, const char* name) {
  if (result == noErr) return;
  std::string line = "### error " + std::to_string(result) + " occurred while " + doing + ' ';
  preset.appendTreeItemInfo(line, std::cerr, name);
  writeText(std::cerr, line.append(1, '\n'));
  addResultNote(result);
}

}  // namespace cairnset
