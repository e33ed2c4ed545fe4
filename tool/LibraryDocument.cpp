#include "tool/LibraryDocument.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "host/files/FileSystemHelpers.h"
#include "host/text/Utf8.h"
#include "presets/LimbWalk.h"
#include "presets/PresetManager.h"
#include "presets/PresetReferences.h"
#include "presets/PresetSettings.h"
#include "tool/FilenameRepair.h"
#include "tool/JsonWriter.h"
#include "tool/Notes.h"
#include "tool/Session.h"

namespace cairnset {

namespace {

constexpr std::int64_t kFormat = 1;

const char* kindName(long kind) {
  switch (kind) {
    case kVelocityMapKind:
      return "velocityMap";
    case kEffectsKind:
      return "effects";
    case kProgramKind:
      return "program";
    default:
      return "session";
  }
}

PresetList* listOf(long kind) {
  for (PresetList* list : {_v, _e, _p, _s}) {
    if (list != nullptr && list->getPresetType() == kind) return list;
  }
  return nullptr;
}

bool isUtf8(std::string_view bytes) {
  while (!bytes.empty()) {
    bytes.remove_prefix(asciiLength(bytes));
    if (bytes.empty()) break;
    const char32_t c = takeUtf8(bytes);
    if (c >= 0xDC00 && c <= 0xDCFF) return false;
  }
  return true;
}

std::string hexadecimal(std::string_view bytes) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string out;
  for (const char byte : bytes) {
    const auto b = static_cast<unsigned char>(byte);
    out.append(1, kDigits[b >> 4]).append(1, kDigits[b & 15]);
  }
  return out;
}

// The path, and its bytes where the text cannot give them.
void writePath(JsonWriter& json, const std::string& path, const char* key = "path",
               const char* keyOfBytes = "pathBytes") {
  json.key(key).text(path);
  if (!isUtf8(path)) json.key(keyOfBytes).text(hexadecimal(path));
}

// A path as text that no other path has: "%" and bytes that are not UTF-8 are escaped.
std::string identifier(std::string path) {
  if (path.find('%') == std::string::npos && isUtf8(path)) return path;
  std::string out;
  for (std::string_view rest = path; !rest.empty();) {
    const std::string_view from = rest;
    const char32_t c = takeUtf8(rest);
    const std::string_view bytes = from.substr(0, from.size() - rest.size());
    const bool isEscaped = c == '%' || (c >= 0xDC00 && c <= 0xDCFF);
    isEscaped ? out.append("%").append(hexadecimal(bytes)) : out.append(bytes);
  }
  return out;
}

// Settings as members of an object. Most presets share most of their values, so the texts are kept;
// a new one replaces the old one in its slot.
class SettingTexts {
 public:
  const std::string& textOf(const Setting& setting) {
    const auto* text = std::get_if<std::string_view>(&setting.stored);
    const auto* whole = std::get_if<std::int64_t>(&setting.stored);
    const auto* real = std::get_if<float>(&setting.stored);
    const auto bits = whole != nullptr  ? static_cast<std::uint32_t>(*whole)
                      : real != nullptr ? std::bit_cast<std::uint32_t>(*real)
                                        : 0;
    const std::uint64_t key = std::uint64_t{setting.tag} << 32 | bits;
    Slot& slot = _slots[static_cast<std::size_t>(key * kSpread >> (64 - kSlotBits))];
    if (slot.key == key && text == nullptr) return slot.text;
    slot = {key, ""};
    JsonWriter json([&slot](std::string_view piece) { slot.text += piece; });
    json.key(setting.name).beginObject();
    json.key("value").heldText(shownValue(setting));
    if (setting.unit[0] != '\0') json.key("unit").text(setting.unit);
    if (whole != nullptr) json.key("number").number(*whole);
    if (real != nullptr) json.key("number").number(*real);
    json.endObject();
    json.flush();
    return slot.text;
  }

 private:
  static constexpr int kSlotBits = 12;
  static constexpr std::uint64_t kSpread = 0x9E3779B97F4A7C15;

  struct Slot {
    std::uint64_t key = ~std::uint64_t{0};
    std::string text;
  };
  std::vector<Slot> _slots = std::vector<Slot>(1 << kSlotBits);
};

class LibraryWriter {
 public:
  explicit LibraryWriter(JsonWriter& json) : _json(json) {
    if (_s != nullptr) _presets_folder = _pm->presetsFolder();
    for (const PresetReference* reference : kPresetReferences) {
      forEachPreset(listOf(reference->from), [&](const Preset& preset) {
        if (const Preset* used = findUsed(preset, *reference)) _users.emplace_back(used, &preset);
      });
    }
    std::stable_sort(_users.begin(), _users.end(),
                     [](const User& a, const User& b) { return std::less<>()(a.first, b.first); });
  }

  void writeLibrary();
  void writeFolders();
  void writePresets();

 private:
  using User = std::pair<const Preset*, const Preset*>;  // a preset and one that uses it

  static Preset* findUsed(const Preset& preset, const PresetReference& reference) {
    const PresetList* list = listOf(reference.to);
    const std::string name(reference.name(preset));
    return list != nullptr ? list->findPreset(name.c_str()) : nullptr;
  }

  std::string idOf(const FSRef& ref) const {
    return identifier(getPlacePath(ref, _presets_folder));
  }
  void writePreset(const Preset& preset);
  void writeReference(const Preset& preset, const PresetReference& reference);

  JsonWriter& _json;
  SettingTexts _settings;
  FSRef _presets_folder;
  std::vector<User> _users;  // sorted by the used preset, then in the order of the library
};

void LibraryWriter::writeLibrary() {
  std::string path = path_string;
  if (_s != nullptr) path = getPlacePath(_pm->itemsFolder(), {});
  _json.key("library").beginObject();
  writePath(_json, path);
  _json.endObject();
}

void LibraryWriter::writeFolders() {
  _json.key("folders").beginArray();
  for (const PresetList* list : {_v, _e, _p, _s}) {
    if (list == nullptr) continue;
    LimbWalk walk(*list);
    while (const auto* limb = static_cast<PresetLimb*>(walk.next())) {
      _json.breakLine();
      _json.beginObject();
      _json.key("id").text(idOf(limb->folder()));
      _json.key("kind").text(kindName(list->getPresetType()));
      const char* name = limb->getTreeItemName();
      _json.key("name").heldText(name != nullptr ? name : "");
      _json.endObject();
    }
  }
  _json.endArray();
}

void LibraryWriter::writeReference(const Preset& preset, const PresetReference& reference) {
  const Preset* used = findUsed(preset, reference);
  _json.beginObject();
  _json.key("kind").text(kindName(reference.to));
  _json.key("name").heldText(reference.name(preset));
  _json.key("id");
  used != nullptr ? _json.text(idOf(used->fileRef())) : _json.null();
  _json.endObject();
}

void LibraryWriter::writePreset(const Preset& preset) {
  const std::string path = getPlacePath(preset.fileRef(), _presets_folder);
  const char* name = preset.getTreeItemName();
  _json.key("id").text(identifier(path));
  _json.key("kind").text(kindName(preset.getPresetType()));
  _json.key("name").heldText(name);
  writePath(_json, path);
  _json.key("number").number(static_cast<std::int64_t>(preset.getTreeItemIndex()));
  _json.key("rom").boolean(preset.isROM());
  _json.key("index").number(std::int64_t{preset.index()});
  _json.key("damaged").boolean(!preset.isFileWhole());
  if (const char* corrected = isIllegalFilename(name)) {
    _json.key("windowsName").heldText(corrected);
  }

  _json.key("references").beginArray();
  for (const PresetReference* reference : kPresetReferences) {
    if (static_cast<long>(reference->from) == preset.getPresetType())
      writeReference(preset, *reference);
  }
  _json.endArray();

  _json.key("usedBy").beginArray();
  const auto isLess = [](const User& user, const Preset* used) {
    return std::less<>()(user.first, used);
  };
  for (auto user = std::lower_bound(_users.begin(), _users.end(), &preset, isLess);
       user != _users.end() && user->first == &preset; ++user) {
    _json.text(idOf(user->second->fileRef()));
  }
  _json.endArray();

  _json.key("settings").beginObject();
  if (preset.isFileRead()) {
    forEachSetting(preset,
                   [this](const Setting& setting) { _json.written(_settings.textOf(setting)); });
  }
  _json.endObject();
}

void LibraryWriter::writePresets() {
  _json.key("presets").beginArray();
  for (PresetList* list : {_v, _e, _p, _s}) {
    forEachPreset(list, [this](const Preset& preset) {
      _json.breakLine();
      _json.beginObject();
      writePreset(preset);
      _json.endObject();
    });
  }
  _json.endArray();
}

}  // namespace

void writeLibraryDocument(JsonWriter& json, const RunResult& run) {
  json.beginObject();
  json.key("program").text("Cairnset");
  json.key("version").text(CAIRNSET_VERSION);
  json.key("format").number(kFormat);
  LibraryWriter library(json);
  library.writeLibrary();
  library.writeFolders();
  library.writePresets();
  json.key("notes").beginArray();
  for (const std::string& note : writtenNotes()) {
    json.beginObject();
    json.key("text").text(note);
    json.endObject();
  }
  json.endArray();
  json.key("changes").beginArray();
  for (const FileChange& change : run.changes) {
    json.beginObject();
    json.key("change").text(wordsFor(change.kind));
    writePath(json, change.path);
    if (!change.newPath.empty()) writePath(json, change.newPath, "newPath", "newPathBytes");
    json.endObject();
  }
  json.endArray();
  json.key("status").number(std::int64_t{run.status});
  json.endObject();
  json.breakLine();
  json.flush();
}

}  // namespace cairnset
