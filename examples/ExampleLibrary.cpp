#include "ExampleLibrary.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <span>
#include <string>
#include <tuple>
#include <unordered_map>
#include <vector>

#include "ExampleWords.h"
#include "params/Keysets.h"
#include "presets/EffectsPreset.h"
#include "presets/PresetList.h"
#include "presets/PresetReferences.h"
#include "presets/ProgramPreset.h"
#include "presets/SessionPreset.h"
#include "presets/VelocityMapPreset.h"

namespace cairnset {

namespace {

using words::Place;

constexpr std::size_t kPresetsInASmallFolder = 20;
constexpr std::size_t kReferrersOfABadName = 20;
constexpr std::size_t kMostBadNames = 1000;

enum KindNumber : std::size_t { kVelocityMaps, kEffects, kPrograms, kSessions };

// Same numbers everywhere: the standard library's distributions differ between implementations.
class Dice {
 public:
  std::uint32_t below(std::size_t bound) {
    _state = _state * 6364136223846793005u + 1442695040888963407u;
    return static_cast<std::uint32_t>((_state >> 33) % bound);
  }
  float between(int low, int high) {
    const auto span = static_cast<std::size_t>(high - low) + 1;
    return static_cast<float>(low + static_cast<int>(below(span)));
  }
  std::uint8_t flag() { return static_cast<std::uint8_t>(below(2)); }

 private:
  std::uint64_t _state = 20080711;
};

// A preset that is to be written.
struct Plan {
  std::string name = Preset::_default_preset_name;
  std::string folder;            // below the kind's root
  const Place* place = nullptr;  // null for the root's own "Default"
  bool rom = true;
  bool rejected = false;
  std::int32_t index = 0;
};

struct KindPlan {
  std::vector<Plan> presets;
  std::vector<std::size_t> rejected;  // positions of those whose names Windows rejects
};

bool isOneFolder(LibraryShape shape) {
  return shape == LibraryShape::kFewLarge || shape == LibraryShape::kEqualIndices ||
         shape == LibraryShape::kReverseIndices;
}

// The number of presets of each kind, without the "Default".
std::array<std::size_t, 4> shares(LibraryShape shape, std::size_t count) {
  switch (shape) {
    case LibraryShape::kOneHub:
      return {1, 1, (count - 2) / 2, count - 2 - (count - 2) / 2};
    case LibraryShape::kBadNames: {
      const std::size_t bad =
          std::clamp<std::size_t>(count / (kReferrersOfABadName + 1), 1, kMostBadNames);
      return {0, bad, count - bad, 0};
    }
    default: {
      const std::size_t eighth = count / 8, quarter = count / 4;
      return {eighth, quarter, count - eighth - 2 * quarter, quarter};
    }
  }
}

std::string numbered(const char* format, std::size_t number) {
  char text[32];
  std::snprintf(text, sizeof text, format, number);
  return text;
}

// The n-th name of a kind's place. All names of all places of a kind are different.
std::string goodName(std::span<const Place> places, std::size_t number, std::size_t n) {
  constexpr std::size_t kPairs = words::kAdjectives.size() * std::tuple_size_v<words::Nouns>;
  static_assert(kPairs == 256);
  // 97 is odd, so all pairs occur, in a mixed order. Each place starts with a different one.
  const std::size_t pair = (n * 97 + number * 77) % kPairs;
  const Place& place = places[number];
  std::string name = place.before;
  name += words::kAdjectives[pair % words::kAdjectives.size()];
  name += ' ';
  name += place.nouns[pair / words::kAdjectives.size()];
  if (n >= kPairs) name += numbered(" %zu", n / kPairs + 1);
  return name + place.after;
}

// "Default" in one of 125 other capitalisations. References use "DEFAULT", which is not one of
// them.
std::string otherCaseOfDefault(std::size_t n) {
  std::string name = "Default";
  for (std::size_t i = 0, ways = n % 125 + 1; i < name.size(); ++i) {
    if ((ways >> i & 1) != 0) name[i] = static_cast<char>(name[i] ^ 0x20);
  }
  return name;
}

std::string upperCase(std::string name) {
  for (char& c : name) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c ^ 0x20);
  }
  return name;
}

std::string folderFor(LibraryShape shape, const Place& place, std::size_t n) {
  if (isOneFolder(shape) || (shape == LibraryShape::kTypical && n % 50 == 2) ||
      (shape == LibraryShape::kLoose && n % 15 < 4)) {
    return "";  // kLoose: sessions are never sorted, so 4 in 15 of the others make 1 in 5 of all
  }
  switch (shape) {
    case LibraryShape::kManySmall:
      return numbered("Set %05zu", n / kPresetsInASmallFolder);
    case LibraryShape::kSameName:
    case LibraryShape::kDefaults:
      return numbered("Set %06zu", n);
    default:
      return place.folder;
  }
}

KindPlan planKind(KindNumber kind, LibraryShape shape, std::size_t count) {
  KindPlan plan;
  plan.presets.resize(count + 1);  // the first is "Default"
  const auto places = words::kKinds[kind].places;
  std::vector<std::size_t> namesUsed(places.size());
  for (std::size_t n = 0; n < count; ++n) {
    Plan& preset = plan.presets[n + 1];
    const std::size_t number = n % places.size();
    const Place& place = places[number];
    const std::size_t nth = namesUsed[number]++;
    preset.place = &place;
    preset.rom = place.rom;
    preset.folder = folderFor(shape, place, n);
    preset.index =
        static_cast<std::int32_t>(place.rom ? nth / static_cast<std::size_t>(place.width) * 1000 +
                                                  nth % static_cast<std::size_t>(place.width) +
                                                  static_cast<std::size_t>(place.first)
                                            : 100000 + n);
    preset.name = goodName(places, number, nth);
    switch (shape) {
      case LibraryShape::kEqualIndices:
        preset.index = 7;
        break;
      case LibraryShape::kReverseIndices:
        preset.index = static_cast<std::int32_t>(count - n);
        preset.name = numbered("%06zu ", n) + preset.name;
        break;
      case LibraryShape::kSameName:
        preset.name = goodName(places, 0, 0);
        break;
      case LibraryShape::kDefaults:
        preset.name = otherCaseOfDefault(n);
        break;
      case LibraryShape::kTypical:
        preset.rejected = n % 50 == 1;
        break;
      case LibraryShape::kBadNames:
        preset.rejected = kind == kEffects;
        break;
      default:
        break;
    }
    if (preset.rejected) {
      preset.name += words::kRejectedEndings[(plan.rejected.size() + kind) %
                                             std::size(words::kRejectedEndings)];
      plan.rejected.push_back(n + 1);
    }
  }
  return plan;
}

class Writer {
 public:
  Writer(const FSRef& items, std::size_t count, LibraryShape shape, LibrarySummary& summary)
      : _items(items), _shape(shape), _summary(summary) {
    const auto counts = shares(shape, count - words::kKinds.size());
    for (std::size_t kind = 0; kind < _plans.size(); ++kind) {
      _plans[kind] = planKind(static_cast<KindNumber>(kind), shape, counts[kind]);
    }
  }

  OSStatus write() {
    OSStatus status = addFolder(_items, "Presets", _presets);
    for (std::size_t kind = 0; status == noErr && kind < _plans.size(); ++kind) {
      status = writeKind(static_cast<KindNumber>(kind));
    }
    return status;
  }

 private:
  OSStatus addFolder(const FSRef& parent, const std::string& name, FSRef& out) {
    const OSStatus status = PresetList::findFolder(parent, name.c_str(), true, out);
    if (status == noErr) ++_summary.folders;
    return status;
  }

  // The folder at a path below the kind's root, created if new. ExampleWords.h limits the depth.
  // NOLINTNEXTLINE(misc-no-recursion)
  OSStatus folderAt(const std::string& path, FSRef& out) {
    if (const auto known = _folders.find(path); known != _folders.end()) {
      out = known->second;
      return noErr;
    }
    const std::size_t slash = path.rfind('/');
    FSRef parent;
    OSStatus status = folderAt(slash == std::string::npos ? "" : path.substr(0, slash), parent);
    if (status == noErr) status = addFolder(parent, path.substr(slash + 1), out);
    if (status == noErr) _folders.emplace(path, out);
    return status;
  }

  OSStatus writeKind(KindNumber kind) {
    _folders.clear();
    OSStatus status = addFolder(_presets, words::kKinds[kind].folder, _folders[""]);
    FSRef folder;
    if (status == noErr && words::kKinds[kind].hasUserFolder) status = folderAt("User", folder);
    const std::vector<Plan>& presets = _plans[kind].presets;
    for (std::size_t n = 0; status == noErr && n < presets.size(); ++n) {
      status = folderAt(presets[n].folder, folder);
      if (status == noErr) status = writePreset(kind, presets[n], n, folder);
      if (status != noErr) break;
      ++_summary.presets[kind];
      if (presets[n].rejected) ++_summary.rejectedNames;
      if (n > 0 && presets[n].folder.empty()) ++_summary.loose;
    }
    return status;
  }

  OSStatus writePreset(KindNumber kind, const Plan& plan, std::size_t n, const FSRef& folder) {
    // Uses the constructors, not a list: a list would correct the names.
    switch (kind) {
      case kVelocityMaps: {
        VelocityMapPreset preset(folder, plan.name.c_str(), true);
        return finish(preset, plan, n);
      }
      case kEffects: {
        EffectsPreset preset(folder, plan.name.c_str(), true);
        return finish(preset, plan, n);
      }
      case kPrograms: {
        ProgramPreset preset(nullptr, folder, plan.name.c_str(), true);
        return finish(preset, plan, n);
      }
      default: {
        SessionPreset preset(folder, plan.name.c_str(), true);
        return finish(preset, plan, n);
      }
    }
  }

  template <typename Kind>
  OSStatus finish(Kind& preset, const Plan& plan, std::size_t n) {
    if (preset.status() != noErr) return preset.status();
    preset.setROM(plan.rom);
    preset.setIndex(plan.index);
    if (plan.place != nullptr) fill(preset, *plan.place, n);
    preset.writeOut();
    return preset.status();
  }

  void fill(VelocityMapPreset& preset, const Place& /*place*/, std::size_t /*n*/) {
    preset.fields.hardness = _dice.between(-50, 50);
    preset.fields.minimumVelocity = static_cast<std::uint8_t>(_dice.below(20));
    preset.fields.maximumVelocity = static_cast<std::uint8_t>(127 - _dice.below(20));
  }

  void fill(EffectsPreset& preset, const Place& place, std::size_t /*n*/) {
    EffectsFields& f = preset.fields;
    f.eqOn = place.eqOn;
    f.chorusOn = place.chorusOn;
    f.ambienceOn = place.ambienceOn;
    f.highShelfGain = _dice.between(-6, 6);
    f.lowShelfGain = _dice.between(-6, 6);
    f.chorusWetDry = _dice.between(-90, 0);
    f.chorusDetune = _dice.between(20, 80);
    f.ambienceWetDry = _dice.between(-60, 60);
    f.ambienceSize = _dice.between(50, 200) / 100;
    f.ambiencePreDelay = _dice.between(0, 100);
  }

  void fill(ProgramPreset& preset, const Place& place, std::size_t n) {
    refer(preset, kProgramEffectsReference, _plans[kEffects], n);
    ProgramFields& f = preset.fields;
    std::vector<const KeysetRow*> keysets;
    for (const KeysetRow* row = keysetIDList; row->name != nullptr; ++row) {
      if (row->instrumentID == place.instrument) keysets.push_back(row);
    }
    const KeysetRow& keyset = *keysets[_dice.below(keysets.size())];
    f.pianoKeyset = keyset.keysetID;
    setNameInField(f.pianoKeysetName, keyset.name);
    f.softPedalSamplesOn = _dice.flag();
    f.releaseSamplesOn = _dice.flag();
    f.sustainResonanceOn = _dice.flag();
    f.dynamicRange = _dice.between(20, 50);
    f.keyNoise = _dice.between(-12, 6);
    f.stereoWidth = _dice.between(50, 100) / 100;
  }

  void fill(SessionPreset& preset, const Place& /*place*/, std::size_t n) {
    refer(preset, kSessionVelocityMapReference, _plans[kVelocityMaps], n);
    // n + 1: broken and rejected program names go to other sessions than those of velocity maps.
    refer(preset, kSessionProgramReference, _plans[kPrograms], n + 1);
    preset.fields.voices = static_cast<std::uint16_t>(24 + 8 * _dice.below(14));
    preset.fields.fineTune = static_cast<std::int32_t>(_dice.below(21)) - 10;
    preset.fields.gain = _dice.between(-6, 0);
    preset.fields.a440 = _dice.between(438, 443);
  }

  void refer(Preset& preset, const PresetReference& reference, const KindPlan& to, std::size_t n) {
    reference.setName(preset, referenceTo(to, n).c_str());
  }

  std::string referenceTo(const KindPlan& to, std::size_t n) {
    if (_shape == LibraryShape::kOneHub) return to.presets[1].name;
    if (_shape == LibraryShape::kSameName || _shape == LibraryShape::kDefaults) {
      // With the exact name, all of these would use every preset of that name, and the size of the
      // report would be quadratic.
      return n <= 3 ? to.presets[1].name : upperCase(to.presets[1].name);
    }
    if (_shape == LibraryShape::kBadNames) {
      const std::size_t turn = (n - 1) / kReferrersOfABadName;
      return to.presets[turn < to.rejected.size() ? to.rejected[turn] : 0].name;
    }
    if (_shape == LibraryShape::kTypical) {
      if (n % 50 == 4) {
        return words::kLostNames[_summary.lostReferences++ % std::size(words::kLostNames)];
      }
      if (n % 10 == 2) return to.presets[to.rejected[n / 10 % to.rejected.size()]].name;
    }
    const std::string& name = to.presets[_dice.below(to.presets.size())].name;
    return n % 100 == 6 ? upperCase(name) : name;  // the library still finds it
  }

  const FSRef& _items;
  const LibraryShape _shape;
  LibrarySummary& _summary;
  std::array<KindPlan, 4> _plans;
  FSRef _presets;
  std::unordered_map<std::string, FSRef> _folders;  // of the current kind, by path below its root
  Dice _dice;
};

}  // namespace

std::optional<LibraryShape> libraryShapeNamed(std::string_view name) {
  const auto found = std::find(kLibraryShapes.begin(), kLibraryShapes.end(), name);
  if (found == kLibraryShapes.end()) return std::nullopt;
  return static_cast<LibraryShape>(found - kLibraryShapes.begin());
}

OSStatus makeExampleLibrary(const FSRef& items, std::size_t count, LibraryShape shape,
                            LibrarySummary& summary) {
  return Writer(items, count, shape, summary).write();
}

}  // namespace cairnset
