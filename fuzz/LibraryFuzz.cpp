// Runs every command of the program on a library made from the input. Nothing may be lost except
// the files that -s replaces, a second run changes nothing, references still resolve, and nothing
// outside the library is touched. Files are identified by inode numbers, which must not be reused:
// the temporary folder has to be on a tmpfs.
#include <fuzzer/FuzzedDataProvider.h>

#include "host/text/Names.h"
#include "host/text/PascalStrings.h"
#include "presets/Preset.h"
#include "tests/PresetFile.h"
#include "tool/CommandLine.h"
#include "tool/FilenameRepair.h"
#include "tool/Session.h"

namespace cairnset {
namespace {

using Input = FuzzedDataProvider;

const std::string kPresets = "lib/Presets/";
const TestFolder& world() {
  static const TestFolder folder;
  return folder;
}

// --- A library from the input ---

std::string takeName(Input& input) {
  static const std::string kNames[] = {
      "Default", "default",  "DEFAULT", "Default.", "User",  "Factory", "Synth",    "a",
      "a?",      "a*",       "A?",      "a_",       "a.",    "a:b",     "a_b",      "...",
      "\u00E9?", "e\u0301?", "\u00E9_", "__",       "\xFF?", "\u65E5?", "Default?", "A"};
  const int how = input.ConsumeIntegralInRange(0, 9);
  std::string name = how > 5 ? input.ConsumeRandomLengthString(40) : input.PickValueInArray(kNames);
  if (how > 8) name.insert(0, input.ConsumeIntegralInRange<std::size_t>(50, 214), 'x');
  std::erase(name, '/'), std::erase(name, '\0');
  return name.empty() || name == "." || name == ".." ? "x" : name;
}

void makeItem(const std::string& path, std::vector<std::string>& folders, Input& input) {
  const std::string full = kPresets + path, there = world().path(full);
  if (path.size() > 1500 || world().exists(full)) return;
  const int how = input.ConsumeIntegralInRange(0, 15);
  PresetFile preset{path, input.ConsumeBool(), input.ConsumeIntegralInRange(0u, 2100u)};
  for (int i = 0; i < 2; ++i)
    preset.references.push_back(heldNameFromVolumeName(takeName(input)));
  if (how == 0) return fs::create_symlink(input.ConsumeBool() ? "../../../outside/p" : ".", there);
  if (how == 1) return (void)::mkfifo(there.c_str(), 0666);
  if (how == 2) return folders.push_back(path), world().makeFolder(full);
  if (how == 3) preset.path = std::string(input.PickValueInArray(kKinds).folder) + "/x";
  std::string bytes = preset.bytes();
  if (how < 6 && input.ConsumeBool()) bytes.resize(input.ConsumeIntegralInRange(0ul, 400ul), 't');
  if (how < 5 && bytes.size() > 11) bytes.replace(8, 4, bigEndian(bytes.size()));
  if (how == 6) bytes[input.ConsumeIntegralInRange(0ul, 102ul)] = input.ConsumeIntegral<char>();
  world().write(full, bytes);
}

void makeLibrary(Input& input) {
  for (const char* name : {"lib", "outside"})
    fs::remove_all(world().path(name));
  world().write("outside/p", PresetFile{"Effects/p", true}.bytes());
  world().makeFolder(kPresets);
  std::vector<std::string> folders;
  for (const KindFormat& kind : kKinds) {
    const int how = input.ConsumeIntegralInRange(0, 20);
    const std::string folder = kPresets + kind.folder;
    if (how == 0) fs::create_symlink("../../outside", world().path(folder));
    if (how == 1) world().write(folder, "text");
    if (how > 2) folders.push_back(kind.folder), world().makeFolder(folder);
  }
  for (int i = 0; i < 40 && !folders.empty() && input.remaining_bytes() > 0; ++i) {
    const auto at = input.ConsumeIntegralInRange<std::size_t>(0, folders.size() - 1);
    makeItem(folders[at] + "/" + takeName(input), folders, input);
  }
}

// --- What is on the disk ---

struct File {
  std::string folder, name, bytes;  // of a link, its target
  bool isFolder = false;
  const KindFormat* kind = nullptr;  // null outside the kinds' folders
  bool operator==(const File&) const = default;

  std::string root() const { return kPresets + kind->folder; }
  std::string held() const { return heldNameFromVolumeName(name).substr(0, 239); }
  bool isIllegal() const { return isIllegalFilename(held().c_str()) != nullptr; }
  bool isPreset() const { return kind && bytes.starts_with("OlPs"s + kind->code); }
  bool isLoose() const { return isPreset() && folder == root(); }
  bool isLoaded() const { return isPreset() && bytes.compare(8, 4, bigEndian(bytes.size())) == 0; }
  bool isWhole() const { return isLoaded() && bytes.size() == 93 + kind->payload; }
  std::string reference(std::size_t i) const { return bytes.substr(93 + 64 * i, 64).c_str(); }
  bool isDefault() const {
    const char* good = isIllegalFilename(held().c_str());
    return kind != nullptr && fncmp(good != nullptr ? good : held().c_str(), "Default") == 0;
  }
  // Whether `after` is this file rewritten with another ROM flag, or otherwise with other
  // references. A file that could not be read loses its settings, and a longer one keeps its tail.
  // On purpose.
  bool isWrittenAs(std::string after, bool forROM) const {
    const std::size_t size = 93 + kind->payload, width = forROM ? 1 : 64 * kind->references;
    std::string before = bytes;
    if (after.size() != std::max(before.size(), size) || !isWhole())
      return after.size() == std::max(before.size(), size);
    for (std::string* b : {&before, &after})
      for (const auto& [at, count] : {std::pair(12ul, 72ul), {85, 8}, {forROM ? 84 : 93, width}})
        b->replace(at, count, count, '0');
    return before == after;
  }
};

using Tree = std::map<ino_t, File>;

Tree tree() {
  Tree all;
  for (const auto& entry : fs::recursive_directory_iterator(world().path(""))) {
    const auto path = entry.path().lexically_relative(world().path(""));
    struct stat info;
    check(::lstat(entry.path().c_str(), &info) == 0, "what is listed is there", path);
    File& file = all[info.st_ino];
    file = {path.parent_path(), path.filename(), "", S_ISDIR(info.st_mode)};
    if (S_ISREG(info.st_mode)) file.bytes = world().read(path);
    if (S_ISLNK(info.st_mode)) file.bytes = fs::read_symlink(entry);
    for (const KindFormat& kind : kKinds)
      if ((file.folder + "/").starts_with(kPresets + kind.folder + "/")) file.kind = &kind;
  }
  return all;
}

bool isAny(const Tree& tree, const std::function<bool(const File&)>& matches) {
  return std::any_of(tree.begin(), tree.end(), [&](auto& item) { return matches(item.second); });
}

// --- Runs and checks ---

std::ostringstream report;

int run(std::vector<std::string> options) {
  options.insert(options.begin(), {"cairnset", "-e", world().path("lib")});
  std::vector<char*> arguments;
  for (std::string& option : options)
    arguments.push_back(option.data());
  report.str("");
  return runCommandLine(static_cast<int>(arguments.size()), arguments.data());
}

void checkTree(char command, const Tree& before, const Tree& after) {
  for (const auto& [inode, file] : before) {
    const auto found = after.find(inode);
    if (found == after.end()) {  // a loose factory preset has replaced it
      const auto isThere = [lost = file](const File& now) {
        return now.isPreset() && now.folder == lost.folder && now.name == lost.name;
      };
      check(command == 's' && isAny(after, isThere), "a file is lost", file.name);
      continue;
    }
    const File& now = found->second;
    // Any file at the path of a "Default" is taken over.
    const bool isTaken = file.isDefault() && (file.isPreset() || file.folder == file.root());
    check(file.bytes == now.bytes || ((command == 'z' ? file.isLoaded() : isTaken) &&
                                      file.isWrittenAs(now.bytes, command != 'z')),
          "a file is changed", file.name);
    const bool isSorted = command == 's' && file.isLoose() && now.folder.starts_with(file.root());
    check(now.folder == file.folder || isSorted, "it is where it belongs", file.name);
    check(now.name == file.name || (command == 'z' && file.isIllegal() && file.isPreset()),
          "its name is kept", file.name);
  }
  for (const auto& [inode, file] : after)
    check(before.contains(inode) || (command != 'z' && file.isFolder) ||
              (command == 'e' && file.name == "Default" && file.folder == file.root()),
          "it is new", file.name);
}

void checkCommand(char command) {
  const std::string option{'-', command};
  const Tree before = tree();
  const int status = run({option});
  // Old names stay where something was passed over that may need them.
  if (command == 'z' && status == kReferencesNotWritten) return;
  check(status == kSuccess, "it succeeds", option);
  Tree after = tree();
  checkTree(command, before, after);
  // It can take several runs. If there are several "Default"s, another one can now be the first and
  // moves. A preset whose move failed because a loose preset had its folder's name moves too.
  int rounds = 3;
  for (Tree next; run({option}), next = tree(), next != after; after = next)
    check(rounds-- > 0, "it comes to an end", option);
  for (const auto& [inode, file] : before) {
    const auto now = after.find(inode);
    // A file of the wrong size loses its references when it is written.
    for (std::size_t i = 0; file.isWhole() && now != after.end() && i < file.kind->references;
         ++i) {
      const std::string name = file.reference(i), newName = now->second.reference(i);
      const KindFormat& kind = formatOf(file.kind->refersTo[i]);
      const auto isKind = [&](const File& f) { return f.isPreset() && f.kind == &kind; };
      const auto isNamed = [&](const File& f) { return isKind(f) && f.held() == name; };
      const auto isExcused = [&](const File& f) {  // found, or could not be renamed
        return (isKind(f) && fncmp(f.held().c_str(), newName.c_str()) == 0) ||
               (f.isIllegal() && f.held() == name);
      };
      check(!isAny(before, isNamed) || isAny(after, isExcused), "it leads nowhere", name);
    }
  }
}

void checkLibrary(Input& input) {
  makeLibrary(input);
  const bool sortsFirst = input.ConsumeBool();
  const Tree made = tree();
  check(run({}) == kSuccess, "a library loads");
  checkTree('e', made, tree());
  run({});  // a "Default" that was not a preset keeps its tail, and is now a damaged preset
  Tree before = tree();
  const int names = run({"-y", "-p"}), missing = run({"-rdp"});
  check((names == 0 || names == 10) && (missing == 0 || missing == 11), "statuses");
  check(tree() == before, "a report changes nothing");
  for (const bool sorts : {sortsFirst, !sortsFirst})
    checkCommand(sorts ? 's' : 'z');
  // -s can now move a preset with a repaired name, and the reverse.
  for (int rounds = 0; before != tree(); ++rounds) {
    before = tree();
    const int all = run({"-hszpd", "-r"});
    if (all == kReferencesNotWritten) return;
    check((all == 0 || all == 11) && rounds < 10, "all commands at once come to an end");
  }
}

}  // namespace
}  // namespace cairnset

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace cairnset;
  std::cout.rdbuf(report.rdbuf());
  std::cerr.rdbuf(report.rdbuf());
  // Each input starts with the state of a new process, so that runs are reproducible.
  Host fresh;
  const HostInUse inUse(fresh);
  TreeItem::_current_index = 0;
  Preset::_index_count = 100000;
  FuzzedDataProvider input(data, size);
  checkLibrary(input);
  return 0;
}
