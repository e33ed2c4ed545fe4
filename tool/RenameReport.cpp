#include "tool/RenameReport.h"

#include <iostream>
#include <utility>

#include "host/files/FileSystemHelpers.h"
#include "host/terminal/ReportText.h"
#include "presets/PresetManager.h"
#include "presets/PresetReferences.h"
#include "tool/Reports.h"
#include "tool/Session.h"

namespace cairnset {

namespace {

PresetKind kindOf(const Preset& preset) {
  return static_cast<PresetKind>(preset.getPresetType());
}

void appendQuoted(std::string& text, const std::string& name, const char* after) {
  text += '"';
  appendHeldName(text, std::cout, name);
  text.append(1, '"').append(after);
}

// Says why old names are kept, if it is because of presets of this kind that were not loaded.
void reportPassedOver(PresetKind kind) {
  const std::size_t count = _pm->findings().passedOver(kind);
  const Finding* first = _pm->findings().firstPassedOver(kind);
  if (first == nullptr) return;
  char place[4096];
  if (convertFSRefToPath(&first->place, place, sizeof place) != noErr)
    getPlaceName(first->place, place, sizeof place);
  std::cerr << "### error " << first->result << " occurred while loading " << count
            << (count == 1 ? " file or folder of " : " files or folders of ")
            << (kind == kProgramKind ? "programs" : "sessions") << ", the first of them [";
  writeGivenText(std::cerr, place);
  std::cerr << "]; the old names of what may be used there are kept\n";
}

}  // namespace

const char* kindWord(PresetKind kind) {
  switch (kind) {
    case kVelocityMapKind:
      return "velmap";
    case kEffectsKind:
      return "effect";
    case kProgramKind:
      return "program";
    default:
      return "session";
  }
}

void RenameReport::addHeader(const char* doing, PresetKind kind, const std::string& oldName,
                             const std::string& newName) {
  _text.append(doing).append(1, ' ').append(kindWord(kind)).append(1, ' ');
  appendQuoted(_text, oldName, " to ");
  appendQuoted(_text, newName, "\n");
}

void RenameReport::fail(const char* doing, const Preset& preset, OSErr result,
                        const std::string& name) {
  _status = kReferencesNotWritten;
  writeText(std::cout, std::exchange(_text, {}));
  reportFailure(doing, preset, result, name.c_str());
}

void RenameReport::addRelinked(const std::vector<Relinked>& relinked) {
  for (const Relinked& referrer : relinked) {
    _text.append("\t relinking ").append(kindWord(kindOf(*referrer.preset))).append(1, ' ');
    appendQuoted(_text, referrer.name, "\n");
    const OSErr result = referrer.written != noErr ? referrer.written : referrer.flushed;
    if (result != noErr) fail("writing", *referrer.preset, result, referrer.name);
  }
}

void RenameReport::add(const Renamed& renamed) {
  addHeader("renaming", kindOf(*renamed.preset), renamed.oldName, renamed.newName);
  addRelinked(renamed.referrers);
  if (renamed.result != noErr && (_refused_is_failure || !isNameRefused(renamed.result)))
    fail("renaming", *renamed.preset, renamed.result, renamed.oldName);
  if (renamed.keepsOldName) {
    _status = kReferencesNotWritten;
    _needed.insert(referenceTo(*renamed.preset)->from);
  }
}

void RenameReport::add(PresetKind kind, const std::string& oldName, const std::string& newName,
                       const std::vector<Relinked>& relinked) {
  addHeader("relinking", kind, oldName, newName);
  addRelinked(relinked);
}

int RenameReport::end() {
  writeText(std::cout, std::exchange(_text, {}));
  for (const PresetKind kind : std::exchange(_needed, {}))
    reportPassedOver(kind);
  return _status;
}

}  // namespace cairnset
