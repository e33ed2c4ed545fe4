// Dry runs of random libraries: each prints what the real run prints, sees what that makes of the
// library, lists the changes that lead there, and touches nothing.
#include <unordered_map>

#include "host/files/ChangeRecord.h"
#include "host/files/DryRun.h"
#include "presets/PresetManager.h"
#include "presets/PresetReferences.h"
#include "tests/PresetFile.h"
#include "tool/CommandLine.h"

namespace cairnset {
namespace {

using Items = std::map<std::string, std::string>;

class DryRunTest : public testing::TestWithParam<unsigned>, protected TestFolder {
 protected:
  std::size_t below(std::size_t end) { return _random() % end; }
  template <typename T, std::size_t kSize>
  const T& anyOf(const T (&values)[kSize]) {
    return values[below(kSize)];
  }

  std::string name() {
    static const std::string kNames[] = {"a?b",
                                         "a*b",
                                         "a_b",
                                         "?",
                                         "_",
                                         "x ",
                                         "x",
                                         "x.",
                                         "p:q",
                                         "P_Q",
                                         "p_q",
                                         "y",
                                         "z",
                                         "Default",
                                         "default",
                                         "User",
                                         "\xC3\xA9?",
                                         "A?B",
                                         "e\xCC\x81\xFF*",
                                         std::string(80, '?')};
    static const std::string kAlike[] = {"x", "X", "y", "Y", "z", "Z"};
    return _isClashing ? anyOf(kAlike) : anyOf(kNames);
  }

  static std::string repaired(std::string place) {
    std::replace(place.begin() + static_cast<std::ptrdiff_t>(place.rfind('/')), place.end(), '?',
                 '_');
    return place;
  }

  // Something in the library, unless there is something already.
  void add() {
    const KindFormat& kind = anyOf(kKinds);
    static const std::string kFolders[] = {"",         "",       "",     "User/",
                                           "Factory/", "Halls/", "a?b/", "deep/er/"};
    PresetFile preset{kind.folder + "/"s + anyOf(kFolders) + name(),
                      below(3) == 0,
                      static_cast<unsigned>(below(_isClashing ? 3 : 40)),
                      {name(), name()}};
    std::replace(preset.references[0].begin(), preset.references[0].end(), ':', '/');
    const std::string place = "lib/Presets/" + preset.path;
    std::error_code taken;
    fs::create_directories(fs::path(path(place)).parent_path(), taken);
    if (taken || exists(place)) return;
    std::string bytes = preset.bytes();
    switch (_isClashing ? 16 : below(16)) {
      case 0:
        return makeFolder(place);
      case 1:
        return symlink(_last.empty() ? "nowhere" : path(_last), place);
      case 2:
        if (_last.empty()) break;
        // As a repair that was stopped leaves it, or anywhere.
        return hardLink(_last, exists(repaired(_last)) ? place : repaired(_last));
      case 3:
        bytes.resize(below(bytes.size()));
        break;
      case 4:
        bytes[below(bytes.size())] ^= static_cast<char>(1 + below(255));
        break;
      case 5:
        bytes += "tail";
        break;
      default:
        break;
    }
    write(_last = place, bytes);
  }

  // One that clashes is complete and in order but for names and indexes that several presets have.
  void makeLibrary(bool clashes) {
    _isClashing = clashes;
    _last.clear();
    fs::remove_all(path("lib"));
    const std::size_t shape = clashes ? 19 : below(20);
    if (shape == 0) return;
    makeFolder("lib");
    if (shape == 1) write("lib/Presets", "");
    // Where a "Default" was missing, the order is another one the next time.
    for (const KindFormat& kind : kKinds)
      if (clashes) put(*this, {kind.folder + "/Default"s, true});
    for (std::size_t count = shape < 3 ? 0 : below(clashes ? 50 : 25); count > 0; --count)
      add();
  }

  // --rename or --relink of what there is, or not, to a name that is mostly free.
  void addChange(std::vector<std::string>& options) {
    static const std::string kFree[] = {"b", "e", "m", "q", "u", "zz"};
    std::string what = _last;
    for (const auto& [item, content] : items()) {
      if (content.front() == '=' && below(6) == 0) what = item;
    }
    if (below(4) == 0) {
      constexpr const char* kReferred[] = {"velmap/", "effect/", "program/"};
      options.insert(options.end(), {"--relink", anyOf(kReferred) + name()});
    } else {
      options.insert(options.end(),
                     {"--rename", what.substr(std::min<std::size_t>(12, what.size()))});
    }
    options.insert(options.end(), {"--to", below(6) == 0 ? name() : anyOf(kFree)});
  }

  // Of files and folders, or all that can be seen of them without a look inside.
  void setWritable(bool isWritable) {
    for (const auto& [item, content] : items()) {
      if (content.front() != '-')
        fs::permissions(path(item), fs::perms::owner_write | fs::perms::group_write,
                        isWritable ? fs::perm_options::add : fs::perm_options::remove);
    }
  }
  // Makes it long ago that the items were last read.
  void age(const Items& all) const {
    const struct timespec longAgo[] = {{}, {0, UTIME_OMIT}};
    for (const auto& [item, content] : all)
      ::utimensat(AT_FDCWD, path(item).c_str(), longAgo, AT_SYMLINK_NOFOLLOW);
  }
  // All that a run could leave of its work.
  std::string traces(const Items& all) const {
    std::ostringstream text;
    for (const auto& [item, content] : all) {
      struct stat info;
      ::lstat(path(item).c_str(), &info);
      text << item << ' ' << info.st_ino << ' ' << info.st_nlink << ' ' << info.st_mode;
      if (S_ISLNK(info.st_mode)) info.st_atim = {};  // the test looked where it leads
      for (const auto& time : {info.st_mtim, info.st_ctim, info.st_atim})
        text << ' ' << time.tv_sec << '.' << time.tv_nsec;
      text << '\n';
    }
    return text.str();
  }

  struct Run {
    std::string output;
    Items items;
    std::vector<FileChange> changes;
  };

  Run run(const std::vector<std::string>& options, bool isDry) {
    Host fresh;
    const HostInUse inUse(fresh);
    std::optional<DryRun> dry;
    if (isDry) dry.emplace();
    const ChangeRecord record;
    TreeItem::_current_index = 1;
    Preset::_index_count = 100000;
    std::ostringstream out, err;
    std::streambuf* const before[] = {std::cout.rdbuf(out.rdbuf()), std::cerr.rdbuf(err.rdbuf())};
    std::vector<std::string> words{"cairnset", "-e", path("lib")};
    words.insert(words.end(), options.begin(), options.end());
    std::vector<char*> arguments;
    for (std::string& word : words)
      arguments.push_back(word.data());
    arguments.push_back(nullptr);
    const int status = runCommandLine(static_cast<int>(words.size()), arguments.data());
    std::cout.rdbuf(before[0]), std::cerr.rdbuf(before[1]);
    Run result{out.str() + "--\n" + err.str() + "--\n" + std::to_string(status), {}, {}};
    _seen = &host().calls;
    result.items = items();
    _seen = nullptr;
    FSRef top;
    if (FSPathMakeRef(path("").c_str(), &top, nullptr) == noErr)
      result.changes = record.changesIn(top);
    return result;
  }

  // The files on the disk that refer to one another.
  std::set<std::pair<ino_t, ino_t>> references() {
    Host fresh;
    const HostInUse inUse(fresh);
    const DryRun dry;
    PresetManager library(nullptr);
    FSRef folder;
    if (FSPathMakeRef(path("lib").c_str(), &folder, nullptr) != noErr) return {};
    if (library.setOlvanItemsFSRef(folder) == noErr) library.openAllPresets();
    const auto number = [](const Preset& preset) {
      char place[4096] = "";
      struct stat info = {};
      (void)FSRefMakePath(&preset.fileRef(), place, sizeof place);
      return ::lstat(place, &info) == 0 ? info.st_ino : 0;
    };
    std::set<std::pair<ino_t, ino_t>> all;
    for (const auto* reference :
         {&kProgramEffectsReference, &kSessionProgramReference, &kSessionVelocityMapReference}) {
      forEachPreset(library.listsOf(reference->from).front(), [&](const Preset& from) {
        const std::string name(reference->name(from));
        const Preset* to = library.listsOf(reference->to).front()->findPreset(name.c_str());
        if (to != nullptr && number(*to) * number(from) != 0)
          all.emplace(number(from), number(*to));
      });
    }
    return all;
  }

  // What the changes make of the items. Of what they make or rewrite, the dry run has the bytes.
  Items applied(const std::vector<FileChange>& changes, const Items& seen) {
    std::map<std::string, int> files;  // one number for all names of a file
    std::map<int, std::string> contents;
    int last = 0;
    std::map<ino_t, int> numbers;
    for (const auto& [item, content] : items()) {
      struct stat info;
      ::lstat(path(item).c_str(), &info);
      int& number = numbers[info.st_ino];
      if (number == 0) number = ++last;
      contents[files[item] = number] = content;
    }
    for (const auto& [kind, from, to] : changes) {
      using Kind = FileChange::Kind;
      const bool isNew = kind == Kind::kMake || kind == Kind::kMakeFolder;
      EXPECT_EQ(files.count(from), isNew ? 0u : 1u) << from;
      EXPECT_EQ(files.count(to), kind == Kind::kReplace ? 1u : 0u) << to;
      if (isNew) files[from] = ++last;
      if (isNew) contents[last] = kind == Kind::kMake ? "?" : "/";
      if (kind == Kind::kRewrite) {
        EXPECT_NE(std::exchange(contents[files[from]], "?"), "?") << from << " is told twice";
      }
      if (!to.empty()) files[to] = files[from];
      if (!to.empty() || kind == Kind::kDelete) files.erase(from);
    }
    Items all;
    for (const auto& [item, number] : files) {
      const auto content = seen.find(item);
      all[item] =
          contents[number] == "?" && content != seen.end() ? content->second : contents[number];
    }
    return all;
  }

 private:
  const SystemCalls& toSee() const override {
    return _seen != nullptr ? *_seen : TestFolder::toSee();
  }

  const SystemCalls* _seen = nullptr;  // of the run
  std::mt19937 _random{GetParam()};
  std::string _last;
  bool _isClashing = false;
};

TEST_P(DryRunTest, ForeseesTheRealRun) {
  constexpr const char* kCommands[] = {"-s", "-z", "-s", "-z", "-y", "-p", "-d", "-r", "-h"};
  for (int library = 0; library < 250 / sample(); ++library) {
    SCOPED_TRACE(testing::Message() << "library " << library << " of " << GetParam());
    const bool isRename = below(3) == 0;
    makeLibrary(isRename);
    std::vector<std::string> options;
    for (std::size_t count = below(4); count > 0; --count)
      options.emplace_back(anyOf(kCommands));
    // Renames alone must leave every reference where it leads.
    if (isRename) options.clear();
    for (std::size_t count = isRename ? 1 + below(2) : below(3); count > 0; --count)
      addChange(options);
    const auto led = references();
    const bool isReadOnly = below(4) == 0;
    if (isReadOnly) setWritable(false);
    const Items all = items();
    age(all);
    const std::string before = traces(all);
    const Run dry = run(options, true);
    ASSERT_EQ(traces(all), before);
    ASSERT_EQ(items(), all);
    if (isReadOnly) setWritable(true);
    const Items expected = applied(dry.changes, dry.items);
    const Run real = run(options, false);
    ASSERT_EQ(dry.output, real.output);
    ASSERT_EQ(dry.items, real.items);
    ASSERT_EQ(dry.changes, real.changes);
    ASSERT_EQ(expected, real.items);
    if (!isRename || !real.output.ends_with("--\n0")) continue;
    if (std::count(options.begin(), options.end(), "--relink") != 0) continue;
    const auto lead = references();
    ASSERT_TRUE(std::includes(lead.begin(), lead.end(), led.begin(), led.end()))
        << testing::PrintToString(options) << real.output;
  }
}

INSTANTIATE_TEST_SUITE_P(Libraries, DryRunTest, testing::Range(0u, 8u));

}  // namespace
}  // namespace cairnset
