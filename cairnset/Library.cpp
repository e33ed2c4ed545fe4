#include "cairnset/Library.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstring>
#include <unordered_map>
#include <utility>

#include "host/files/ChangeRecord.h"
#include "host/files/DryRun.h"
#include "host/files/FileManager.h"
#include "host/files/FileSystemHelpers.h"
#include "host/files/HeldFolder.h"
#include "host/text/FileNameRules.h"
#include "host/text/MacRoman.h"
#include "host/text/Names.h"
#include "host/text/PascalStrings.h"
#include "presets/NameChanges.h"
#include "presets/PresetManager.h"
#include "presets/PresetReferences.h"
#include "presets/PresetSettings.h"
#include "presets/Renames.h"

namespace cairnset {

namespace {

constexpr std::chrono::milliseconds kMostWaiting{
    500};  // the load of another program mostly takes less

// By Library::Kind.
constexpr std::array kKindCodes = {kVelocityMapKind, kEffectsKind, kProgramKind, kSessionKind};

Library::Kind kindOf(std::uint32_t code) {
  const auto* const found = std::find(kKindCodes.begin(), kKindCodes.end(), code);
  return static_cast<Library::Kind>(found - kKindCodes.begin());
}

PresetKind codeOf(Library::Kind kind) {
  return kKindCodes[static_cast<std::size_t>(kind)];
}

std::string utf8(std::string_view heldText) {
  std::string text;
  appendUtf8FromMacRoman(heldText, text);
  return text;
}

Library::Error errorOf(OSStatus result, const std::string& what) {
  return {result, what + ": " + wordsFor(static_cast<OSErr>(result))};
}

const char* whyPassedOver(FindingSort sort) {
  switch (sort) {
    case FindingSort::kFileNotOpened:
      return "could not be opened";
    case FindingSort::kFileNotWritable:
      return "can be read but not written";
    case FindingSort::kFileNotRead:
      return "could not be read";
    case FindingSort::kFolderNotListed:
      return "could not be listed";
    default:
      return "could neither be found nor made";
  }
}

static_assert(static_cast<int>(FileChange::Kind::kMakeFolder) ==
                  static_cast<int>(Library::Change::Action::kMakeFolder) &&
              static_cast<int>(FileChange::Kind::kDelete) ==
                  static_cast<int>(Library::Change::Action::kDelete));

}  // namespace

// Members are destroyed from the last to the first: what a dry run has open must be closed before
// its end.
struct Library::State {
  State() { isAnyOpen = true; }
  ~State() { isAnyOpen = false; }
  State(const State&) = delete;
  State& operator=(const State&) = delete;

  Error load(const std::string& path, Access access);
  void lookAgain();
  Outcome make(const std::vector<NameChange>& changes);
  void make(const PlannedChange& change, Outcome& outcome);
  void addRewritten(const std::vector<Relinked>& relinked, Outcome& outcome) const;

  std::string pathOf(const FSRef& place) const {
    return getPlacePath(place, manager.presetsFolder());
  }

  static bool isAnyOpen;

  std::optional<DryRun> dryRun;
  std::optional<ChangeRecord> record;  // of the dry run
  std::optional<HeldFolder> folder;
  PresetManager manager{nullptr};
  bool isStale = true;  // what follows
  std::vector<Preset> presets;
  std::vector<const cairnset::Preset*> held;  // the same ones
};

bool Library::State::isAnyOpen = false;

Library::Error Library::State::load(const std::string& path, Access access) {
  if (access == Access::kDryRun) {
    dryRun.emplace();
    record.emplace();
  }
  FSRef items, presetsFolder;
  bool isFolder = false;
  OSStatus result = FSPathMakeRef(path.c_str(), &items, &isFolder);
  if (result == noErr && !isFolder) result = dirNFErr;
  if (result != noErr) return errorOf(result, path);
  folder.emplace(items);
  if (!folder->lock(kMostWaiting))
    return {kBusy, path + ": another program is changing the library"};
  // The manager would make it, and so a library of any folder.
  result = PresetList::findFolder(items, "Presets", false, presetsFolder);
  if (result == fnfErr) return {kNoLibrary, path + ": there is no \"Presets\" in this folder"};
  if (result == noErr) result = manager.setOlvanItemsFSRef(items);
  if (result != noErr) return errorOf(result, path);
  manager.openAllPresets();
  if (dryRun) folder->unlock();
  return {};
}

void Library::State::lookAgain() {
  if (!std::exchange(isStale, false)) return;
  presets.clear();
  held.clear();
  std::unordered_map<const cairnset::Preset*, std::size_t> positions;
  for (const PresetKind code : kKindCodes) {
    const PresetList& list = manager.listOf(code);
    for (const cairnset::Preset* preset : list.presets()) {
      if (preset == nullptr) continue;
      positions.emplace(preset, presets.size());
      held.push_back(preset);
      presets.push_back({kindOf(code),
                         utf8(preset->getTreeItemName()),
                         pathOf(preset->fileRef()),
                         preset->isROM(),
                         preset->index(),
                         !preset->isFileWhole(),
                         {},
                         {}});
    }
  }
  for (std::size_t i = 0; i < presets.size(); ++i) {
    for (const PresetReference* reference : kPresetReferences) {
      if (reference->from != codeOf(presets[i].kind)) continue;
      const std::string name(reference->name(*held[i]));
      Reference& use =
          presets[i].uses.emplace_back(Reference{kindOf(reference->to), utf8(name), std::nullopt});
      const auto* target = manager.listOf(reference->to).findPreset(name.c_str());
      if (target == nullptr) continue;
      use.preset = positions.at(target);
      presets[*use.preset].users.push_back(i);
    }
  }
}

void Library::State::addRewritten(const std::vector<Relinked>& relinked, Outcome& outcome) const {
  for (const auto& [preset, name, written, flushed] : relinked) {
    const std::string path = pathOf(preset->fileRef());
    if (written == noErr) outcome.rewritten.push_back(path);
    const OSErr result = written != noErr ? written : flushed;
    if (result != noErr) outcome.errors.push_back(errorOf(result, "writing " + path));
  }
}

void Library::State::make(const PlannedChange& change, Outcome& outcome) {
  if (change.preset == nullptr) {
    addRewritten(relinkReferences(manager, *change.reference, change.oldName, change.newName),
                 outcome);
    return;
  }
  for (const Renamed& renamed :
       renamePresets(manager, {{change.preset, change.newName}}, Relinks::kLedToIt)) {
    addRewritten(renamed.referrers, outcome);
    const std::string path = pathOf(renamed.preset->fileRef());
    if (renamed.result == noErr) {
      outcome.renamed.push_back(path);
    } else {
      outcome.errors.push_back(errorOf(renamed.result, "renaming " + path));
    }
    if (renamed.keepsOldName)
      outcome.errors.push_back(
          {kKeepsOldName, path + " keeps the name \"" + utf8(renamed.oldName) +
                              "\" too, since not all that may refer to it were rewritten"});
  }
}

Library::Outcome Library::State::make(const std::vector<NameChange>& changes) {
  isStale = true;
  Outcome outcome;
  const NameChangePlan plan = planNameChanges(manager, changes);
  if (plan.refusal != Refusal::kNone) {
    const NameChange& refused = changes[plan.refused];
    std::string message = refused.what + " to " + refused.newName + ": " +
                          wordsFor(plan.refusal, refused.referred == kAllKinds);
    if (plan.because != nullptr) message += ": " + pathOf(plan.because->fileRef());
    outcome.errors.push_back({kRefused, message});
  }
  for (std::size_t i = 0; i < plan.changes.size() && outcome.errors.empty(); ++i) {
    const bool wasMade = changes[i].referred == kAllKinds && plan.changes[i].isMade;
    if (!wasMade) make(plan.changes[i], outcome);
  }
  return outcome;
}

Library::Library() = default;
Library::~Library() = default;
Library::Library(Library&&) noexcept = default;
Library& Library::operator=(Library&&) noexcept = default;

Library::Error Library::open(std::string_view folder, Access access) {
  close();
  const std::string path(folder);
  if (State::isAnyOpen) return {kAlreadyOpen, path + ": this program has a library open already"};
  _state = std::make_unique<State>();
  Error error = _state->load(path, access);
  if (error) close();
  return error;
}

void Library::close() {
  _state.reset();
}

std::span<const Library::Preset> Library::presets() const {
  if (!isOpen()) return {};
  _state->lookAgain();
  return _state->presets;
}

std::vector<Library::Setting> Library::settings(std::size_t preset) const {
  std::vector<Setting> settings;
  if (preset >= presets().size() || !_state->held[preset]->isFileRead()) return settings;
  forEachSetting(*_state->held[preset], [&settings](const cairnset::Setting& setting) {
    settings.push_back({setting.name, utf8(shownValue(setting) + setting.unit)});
  });
  return settings;
}

std::vector<std::size_t> Library::usersOf(Kind kind, std::string_view name) const {
  std::vector<std::size_t> users;
  const auto heldName = heldNameFromShownText(name);
  if (!heldName) return users;
  for (std::size_t i = 0; i < presets().size(); ++i) {
    for (const PresetReference* reference : kPresetReferences) {
      if (reference->to != codeOf(kind) || reference->from != codeOf(presets()[i].kind)) continue;
      const std::string referred(reference->name(*_state->held[i]));
      if (fncmp(referred.c_str(), heldName->c_str()) == 0) users.push_back(i);
    }
  }
  return users;
}

std::vector<Library::PassedOver> Library::passedOver() const {
  std::vector<PassedOver> items;
  if (!isOpen()) return items;
  for (const Finding& finding : _state->manager.findings().kept()) {
    if (!isPassedOver(finding.sort)) continue;
    std::string path = _state->pathOf(finding.place);
    if (finding.sort == FindingSort::kKindFolderNotMade) path = finding.name;
    const std::string what = path + ' ' + whyPassedOver(finding.sort);
    items.push_back({kindOf(finding.kind), path, errorOf(finding.result, what)});
  }
  return items;
}

std::size_t Library::passedOverCount() const {
  std::size_t count = 0;
  for (const PresetKind kind : kKindCodes)
    count += isOpen() ? _state->manager.findings().passedOver(kind) : 0;
  return count;
}

Library::Outcome Library::rename(std::span<const Rename> renames) {
  if (!isOpen()) return {{{kNotOpen, "no library is open"}}, {}, {}};
  std::vector<NameChange> changes;
  for (const auto& [path, newName] : renames)
    changes.push_back({kAllKinds, path, newName});
  return _state->make(changes);
}

Library::Outcome Library::relink(Kind kind, std::string_view name, std::string_view newName) {
  if (!isOpen()) return {{{kNotOpen, "no library is open"}}, {}, {}};
  if (kind == Kind::kSession) return {{{kRefused, "no preset refers to sessions"}}, {}, {}};
  return _state->make({{codeOf(kind), std::string(name), std::string(newName)}});
}

std::vector<Library::Rename> Library::nameRepairs() const {
  std::vector<Rename> repairs;
  for (std::size_t i = 0; i < presets().size(); ++i) {
    const std::string name = _state->held[i]->getTreeItemName();
    std::string corrected = name;
    RemoveAllIllegalFilenameCharsInPlace(corrected.data());
    corrected.resize(std::strlen(corrected.c_str()));
    if (corrected != name) repairs.push_back({presets()[i].path, utf8(corrected)});
  }
  return repairs;
}

std::vector<Library::Change> Library::changes() const {
  std::vector<Change> changes;
  if (!isOpen() || !_state->record) return changes;
  for (const FileChange& change : _state->record->changesIn(_state->manager.presetsFolder()))
    changes.push_back({static_cast<Change::Action>(change.kind), change.path, change.newPath});
  return changes;
}

PresetManager* Library::manager() {
  if (!isOpen()) return nullptr;
  _state->isStale = true;
  return &_state->manager;
}

}  // namespace cairnset
