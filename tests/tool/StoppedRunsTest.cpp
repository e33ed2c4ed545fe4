// Random libraries whose names clash, and runs that do not end as they should. A run that is
// stopped at any change and repeated ends as if it had never been stopped. Where calls fail, once
// or from some moment on, no reference breaks unreported, or for good. What others put into the
// library meanwhile is never lost.

#include "tests/PresetFile.h"
#include "tool/CommandLine.h"

namespace cairnset {
namespace {

using Items = std::map<std::string, std::string>;
using Fails = std::function<bool()>;

template <typename Result, typename... Args>
void failIf(std::function<Result(Args...)>& call, const Fails& fails) {
  intercept(call, [=](const auto& real, Args... args) -> Result {
    return fails() ? failWith(EROFS) : real(args...);
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

  Items run(std::string options) {
    std::string words[] = {"cairnset", "-e", path("lib")};
    char* arguments[] = {words[0].data(), words[1].data(), words[2].data(), options.data(),
                         nullptr};
    std::ostringstream out, err;
    const auto before = std::pair(std::cout.rdbuf(out.rdbuf()), std::cerr.rdbuf(err.rdbuf()));
    isReported = runCommandLine(4, arguments) == 20 && err.str().find("###") != std::string::npos;
    std::cout.rdbuf(before.first), std::cerr.rdbuf(before.second);
    return items("lib/Presets");
  }

  Items library;
  bool isReported = false;
};

TEST_F(StoppedRunsTest, ARepeatedRunEndsAsIfItHadNotBeenStopped) {
  for (unsigned seed = 0; seed < 5; ++seed) {
    choose(seed);
    for (const char* options : {"-p", "-s", "-z", "-sz"}) {
      setVolume(1), make();
      const Items expected = run(options);
      long changes = 0;
      for (int first = 1; changes + 1 >= first && !HasFailure(); ++first) {
        setVolume(1 + first % 2), make();
        changes = 0;
        failChangesIf([&] { return ++changes >= first; });
        run(options);
        setVolume(1);
        EXPECT_EQ(run(options), expected) << "library " << seed << options << ", change " << first;
      }
    }
  }
}

TEST_F(StoppedRunsTest, NoReferenceBreaksUnreportedOrForGood) {
  SystemCalls& s = host().calls;
  const std::function<void(const Fails&)> kFailing[] = {
      [&s](const Fails& fails) { failIf(s.open, fails); },
      [&s](const Fails& fails) { failIf(s.pread, fails); },
      [&s](const Fails& fails) { failIf(s.pwrite, fails); },
      [&s](const Fails& fails) { failIf(s.renameNoReplace, fails); },
      [&s](const Fails& fails) { failIf(s.link, fails); },
      [&s](const Fails& fails) { failIf(s.unlink, fails); },
      [&s](const Fails& fails) { failIf(s.flush, fails); },
      failChangesIf};
  choose(0), make();
  const std::set<std::string> before = broken(items("lib/Presets")), after = broken(run("-z"));
  const auto breaks = [&](const Items& items) {
    const std::set<std::string> now = broken(items);
    return std::any_of(now.begin(), now.end(), [&](const std::string& reference) {
      return !before.contains(reference) && !after.contains(reference);
    });
  };
  for (int volume = 1; volume <= 3; ++volume) {
    for (const auto& failing : kFailing) {
      for (const bool isForEver : {false, true}) {
        long calls = 0;
        for (long first = 1; calls + 1 >= first && !HasFailure(); ++first) {
          setVolume(volume), make();
          calls = 0;
          failing([&] { return ++calls == first || (isForEver && calls > first); });
          const bool isBroken = breaks(run("-z"));
          EXPECT_TRUE(isReported || !isBroken)
              << "volume " << volume << ", " << &failing - kFailing << ", call " << first;
          setVolume(volume);
          EXPECT_FALSE(breaks(run("-z"))) << volume << ' ' << &failing - kFailing << ' ' << first;
        }
      }
    }
  }
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
      long calls = 0;
      const auto act = [&, at] {
        return ++calls == at && (fs::rename(path("theirs"), path("lib/Presets/" + place)), false);
      };
      // Not before unlink: no system removes a name only as long as it leads to one file.
      SystemCalls& s = host().calls;
      failIf(s.open, act), failIf(s.fstat, act), failIf(s.pread, act), failIf(s.pwrite, act);
      failIf(s.lstat, act), failIf(s.renameNoReplace, act), failIf(s.link, act);
      failIf(s.flush, act), failIf(s.close, act);
      const Items items = run("-z");
      isMet = calls >= at;
      EXPECT_TRUE(!isMet || std::any_of(items.begin(), items.end(),
                                        [](const auto& item) { return item.second.back() == '~'; }))
          << place << " at call " << at;
    }
  }
}

}  // namespace
}  // namespace cairnset
