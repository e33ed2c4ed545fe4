// Random libraries whose names clash, and runs that do not end as they should. A run that is
// stopped at any change and repeated ends as if it had never been stopped. Where calls fail, once
// or from some moment on, no reference breaks unreported, or for good. What others put into the
// library meanwhile is never lost.

#include <atomic>

#include "tests/PresetFile.h"
#include "tool/CommandLine.h"

namespace cairnset {
namespace {

using Items = std::map<std::string, std::string>;
using Fails = std::function<bool()>;
int failure = EROFS;

// A call that closes something does so even if it fails.
template <typename Result, typename... Args>
void failIf(std::function<Result(Args...)>& call, const Fails& fails, bool isDone = false) {
  intercept(call, [=](const auto& real, Args... args) -> Result {
    if (!fails()) return real(args...);
    if (isDone) real(args...);
    errno = failure;
    if constexpr (std::is_pointer_v<Result>) return nullptr;
    if constexpr (!std::is_pointer_v<Result>) return -1;
  });
}

// 1: a volume that can do all; 2: without the rename that never replaces; 3: also without links.
void setVolume(int volume) {
  const auto refuse = [](auto...) { return failWith(ENOTSUP); };
  host().calls = SystemCalls();
  host().calls.sleep = [](auto) {};
  if (volume > 1) host().calls.renameNoReplace = refuse;
  if (volume > 2) host().calls.link = refuse;
}

// Every call that changes something on the disk.
void failChangesIf(const Fails& fails) {
  SystemCalls& s = host().calls;
  failIf(s.pwrite, fails), failIf(s.ftruncate, fails), failIf(s.mkdir, fails);
  failIf(s.renameNoReplace, fails), failIf(s.rename, fails), failIf(s.link, fails);
  failIf(s.unlink, fails);
  intercept(s.open, [=](const auto& open, int folder, const char* path, int flags, mode_t mode) {
    return (flags & O_CREAT) != 0 && fails() ? failWith(EROFS) : open(folder, path, flags, mode);
  });
}

std::string upper(std::string name) {
  std::replace(name.begin(), name.end(), ':', '/');
  std::transform(name.begin(), name.end(), name.begin(), ::toupper);
  return name;
}

// The references that lead to no preset, each by its own preset's last byte.
std::set<std::string> broken(const Items& items) {
  std::set<std::string> names, lost;
  for (const auto& [path, item] : items)
    names.insert(path.substr(12, path.find('/', 12) - 12) + upper(path.substr(path.rfind('/'))));
  for (const auto& [path, item] : items) {
    for (std::size_t i = 0; item.size() > 94 && i < formatOf(path.substr(12)).references; ++i) {
      const KindFormat& kind = formatOf(path.substr(12));
      const std::string name = item.substr(94 + 64 * i, 64).c_str();
      if (!names.contains(kind.refersTo[i] + ("/" + upper(name))))
        lost.insert(kind.code + std::string(1, item.back()) + std::to_string(i));
    }
  }
  return lost;
}

class StoppedRunsTest : public FolderTest {
 protected:
  StoppedRunsTest() : FolderTest(fs::exists("/dev/shm") ? "/dev/shm" : fs::temp_directory_path()) {}

  // The last byte of each preset tells which one it is. The indexes of a kind differ: of equal ones
  // no order of writes keeps the places. Nothing keeps "default" from leaving the root folder.
  void choose(unsigned seed) {
    std::mt19937 random(seed);
    constexpr const char *kNames[] = {"a?", "a*", "a_", "b ", "b", "c?", "DEFAULT", "default"},
                         *kFolders[] = {"", "", "", "User/", "Factory/", "Mine/"};
    const auto name = [&] { return std::string(kNames[random() % 8]); };
    library.clear();
    for (const KindFormat& kind : kKinds) {
      for (unsigned i = 0; i < 6; ++i) {
        const std::string folder = kFolders[random() % 6];
        PresetFile preset{kind.folder + ("/" + folder) + name(), random() % 2 == 0,
                          i * 37 % 7 * 20};
        preset.references = {name(), name()};
        std::string bytes = preset.bytes();
        bytes.back() = static_cast<char>('0' + library.size());
        if (folder != "User/" || preset.path.size() < 20) library.emplace(preset.path, bytes);
      }
    }
  }
  void make() const {
    fs::remove_all(path("lib"));
    for (const auto& [place, bytes] : library)
      write("lib/Presets/" + place, bytes);
  }

  Items run(std::vector<std::string> options) {
    options.insert(options.begin(), {"cairnset", "-e", path("lib")});
    std::vector<char*> arguments;
    for (std::string& word : options)
      arguments.push_back(word.data());
    arguments.push_back(nullptr);
    std::ostringstream out, err;
    const auto before = std::pair(std::cout.rdbuf(out.rdbuf()), std::cerr.rdbuf(err.rdbuf()));
    const int status = runCommandLine(static_cast<int>(options.size()), arguments.data());
    std::cout.rdbuf(before.first), std::cerr.rdbuf(before.second);
    isReported = status != 0 && !err.str().empty();
    return items("lib/Presets");
  }

  Items library;
  bool isReported = false;
};

TEST_F(StoppedRunsTest, ARepeatedRunEndsAsIfItHadNotBeenStopped) {
  for (unsigned seed = 0; seed < 5; ++seed) {
    choose(seed);
    for (const std::string options : {"-p", "-s", "-z", "-sz"}) {
      setVolume(1), make();
      const Items expected = run({options});
      long changes = 0;
      for (int first = 1; changes + 1 >= first && !HasFailure(); first += sample()) {
        setVolume(1 + first % 2), make();
        changes = 0;
        failChangesIf([&] { return ++changes >= first; });
        run({options});
        setVolume(1);
        EXPECT_EQ(run({options}), expected)
            << "library " << seed << options << ", change " << first;
      }
    }
  }
}

// Each call of the table fails: always, from some time on, or once. EVERY_FAULT=1 in the
// environment leaves none out.
TEST_F(StoppedRunsTest, NoReferenceBreaksUnreportedOrForGood) {
  SystemCalls& s = host().calls;
  const std::pair<const char*, std::function<void(const Fails&)>> kFailing[] = {
      {"open", [&s](const Fails& fails) { failIf(s.open, fails); }},
      {"close", [&s](const Fails& fails) { failIf(s.close, fails, true); }},
      {"fstat", [&s](const Fails& fails) { failIf(s.fstat, fails); }},
      {"pread", [&s](const Fails& fails) { failIf(s.pread, fails); }},
      {"pwrite", [&s](const Fails& fails) { failIf(s.pwrite, fails); }},
      {"ftruncate", [&s](const Fails& fails) { failIf(s.ftruncate, fails); }},
      {"lstat", [&s](const Fails& fails) { failIf(s.lstat, fails); }},
      {"mkdir", [&s](const Fails& fails) { failIf(s.mkdir, fails); }},
      {"renameNoReplace", [&s](const Fails& fails) { failIf(s.renameNoReplace, fails); }},
      {"rename", [&s](const Fails& fails) { failIf(s.rename, fails); }},
      {"link", [&s](const Fails& fails) { failIf(s.link, fails); }},
      {"unlink", [&s](const Fails& fails) { failIf(s.unlink, fails); }},
      {"realpath", [&s](const Fails& fails) { failIf(s.realpath, fails); }},
      {"fdopendir", [&s](const Fails& fails) { failIf(s.fdopendir, fails); }},
      {"readdir", [&s](const Fails& fails) { failIf(s.readdir, fails); }},
      {"closedir", [&s](const Fails& fails) { failIf(s.closedir, fails, true); }},
      {"flush", [&s](const Fails& fails) { failIf(s.flush, fails); }},
      {"flushVolume", [&s](const Fails& fails) { failIf(s.flushVolume, fails); }},
      {"flock", [&s](const Fails& fails) { failIf(s.flock, fails); }},
      {"every change", failChangesIf}};
  const std::vector<std::string> kCommands[] = {
      {"-s"},
      {"-z"},
      {"-sz"},
      {"--rename", "Effects/a?", "--to", "new", "--rename", "Programs/b", "--to", "other"},
      {"--relink", "effect/a?", "--to", "b"}};
  const PresetFile kPresets[] = {{"Velocity Maps/Default", true, 0},
                                 {"Sessions/Default", true, 0},
                                 {"Velocity Maps/a?", false, 60},
                                 {"Effects/Default", true, 0},
                                 {"Effects/a?", false, 20},
                                 {"Effects/b", true, 9},
                                 {"Effects/User/c ", false, 10},
                                 {"Effects/Mine/a*", true, 3},
                                 {"Programs/Default", true, 0, {"a?"}},
                                 {"Programs/b", false, 40, {"a?"}},
                                 {"Programs/Mine/c?", false, 30, {"c "}},
                                 {"Programs/User/d", false, 60, {"a*"}},
                                 {"Sessions/s?", false, 20, {"a?", "b"}},
                                 {"Sessions/Mine/t", false, 10, {"a?", "c?"}}};
  for (const PresetFile& preset : kPresets) {
    library.emplace(preset.path, preset.bytes());
    library.at(preset.path).back() = static_cast<char>('0' + library.size());
  }
  int runs = 0;
  const bool isComplete = std::getenv("EVERY_FAULT") != nullptr;
  for (const auto& command : kCommands) {
    setVolume(1), make();
    const Items start = items("lib/Presets"), end = run(command);
    EXPECT_FALSE(isReported) << command.front();
    const std::set<std::string> before = broken(start), after = broken(end);
    const auto breaks = [&](const Items& items) {
      const std::set<std::string> now = broken(items);
      return std::any_of(now.begin(), now.end(), [&](const std::string& reference) {
        return !before.contains(reference) && !after.contains(reference);
      });
    };
    // By the last byte of each.
    std::map<char, std::set<std::string>> allowed;
    for (const Items* items : {&start, &end}) {
      for (const auto& [path, item] : *items)
        allowed[item.back()].insert(item);
    }
    const auto isOnlyWhatChanges = [&](const Items& items) {
      return std::all_of(items.begin(), items.end(), [&](const auto& item) {
        const auto& known = allowed[item.second.back()];
        return known.size() > 1 || known.contains(item.second) || item.first.ends_with("/Default");
      });
    };
    for (const auto& [volume, error] : {std::pair(1, EIO), {1, EACCES}, {2, EACCES}, {3, EIO}}) {
      for (const auto& [name, failing] : kFailing) {
        for (const bool isForEver : {true, false}) {
          std::atomic<long> calls = 0;  // also by threads that read ahead
          for (long first = isForEver || isComplete ? 1 : 1 + runs % 29;
               calls + 1 >= first && !HasFailure(); first += isComplete ? 1 : 71) {
            SCOPED_TRACE(command.front() + ", volume " + std::to_string(volume) + ", " + name +
                         ' ' + std::to_string(first) + (isForEver ? " on, error " : ", error ") +
                         std::to_string(error));
            setVolume(volume), make();
            calls = 0, ++runs;
            failure = error;
            failing([&] {
              const long call = ++calls;
              return call == first || (isForEver && call > first);
            });
            const Items left = run(command);
            EXPECT_TRUE(isReported || !breaks(left)) << "unreported";
            EXPECT_TRUE(isOnlyWhatChanges(left));
            setVolume(volume);
            EXPECT_FALSE(breaks(run(command))) << "for good";
          }
        }
      }
    }
  }
  RecordProperty("runs", runs);
}

TEST_F(StoppedRunsTest, NothingIsLostThatOthersPutThere) {
  const std::string places[] = {"Sessions/p", "Sessions/q"}, map = "Velocity Maps/a?";
  library = {{map, PresetFile{map}.bytes()}};
  for (const std::string& place : places)
    library.emplace(place, PresetFile{place, true, 1, {"a?"}}.bytes());
  bool isMet = true;
  for (long at = 1; isMet; ++at) {
    for (const std::string& place : {places[0], places[1], map}) {
      setVolume(1), make();
      std::string theirs = library.at(place);
      theirs.back() = '~';
      write("theirs", theirs);
      std::atomic<long> calls = 0;
      const auto act = [&, at] {
        return ++calls == at && (fs::rename(path("theirs"), path("lib/Presets/" + place)), false);
      };
      // Not before unlink: no system removes a name only as long as it leads to one file.
      SystemCalls& s = host().calls;
      failIf(s.open, act), failIf(s.fstat, act), failIf(s.pread, act), failIf(s.pwrite, act);
      failIf(s.lstat, act), failIf(s.renameNoReplace, act), failIf(s.link, act);
      failIf(s.flush, act), failIf(s.close, act);
      const Items items = run({"-z"});
      isMet = calls >= at;
      EXPECT_TRUE(!isMet || std::any_of(items.begin(), items.end(),
                                        [](const auto& item) { return item.second.back() == '~'; }))
          << place << " at call " << at;
    }
  }
}

}  // namespace
}  // namespace cairnset
