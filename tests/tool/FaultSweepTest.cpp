// Every file operation of every changing command fails, in each of its ways. Whatever comes of
// it, a preset file is as it was or as it was meant to become, and none is gone. And before every
// operation someone swaps a folder for a link: nothing that it leads to is opened or changed.

#include <atomic>
#include <mutex>

#include "presets/PresetManager.h"
#include "tests/PresetFile.h"
#include "tool/BulkMaintenance.h"
#include "tool/FilenameRepair.h"
#include "tool/NameChanging.h"
#include "tool/Reports.h"
#include "tool/Session.h"

namespace cairnset {
namespace {

// Ways to fail beside errno values, which last as long as anyone tries again: only a part is moved,
// no more after it, nothing at all; an error although all is done, as over a network; and an error
// that passes.
enum : int { kShort = -1, kShortThenError = -2, kNothing = -3, kDone = 1 << 16, kOnce = 1 << 17 };
constexpr std::size_t kPart = 120;  // ends within the first reference of a program or session

long operations, failsAt, injected;
std::size_t way;
bool isLastWay;
struct {
  const void* call;
  int error, times;
} failsStill;

// What comes before an operation in place of a fault: one of these folders becomes a link to
// another of its kind, of which no item may ever be opened.
constexpr const char* kSwapped[] = {"lib/Presets", "lib/Presets/Programs"};
std::function<void()> swap;
std::set<ino_t> forbidden;
std::atomic<bool> isForbiddenOpened;
std::mutex deciding;  // files may be read ahead by several threads

template <typename Result, typename... Args>
void guard(std::function<Result(Args...)>& call, const std::vector<int>& ways) {
  intercept(call, [ways, which = &call](const auto& real, Args... args) -> Result {
    int error = 0;
    {
      const std::lock_guard lock(deciding);
      if (failsStill.call == which && failsStill.times > 0) {
        --failsStill.times;
        error = failsStill.error;
      } else if (++operations == failsAt) {
        ++injected;
        // With several threads it may be another call than the last time.
        isLastWay = way + 1 >= (swap ? std::size(kSwapped) : ways.size());
        swap ? swap() : void(error = ways[std::min(way, ways.size() - 1)]);
        if (error == kShortThenError)
          failsStill = {which, ways.front(), ways.front() == EIO ? 3 : 1};
        if (error == EIO || error == ENOMEM) failsStill = {which, error, 2};
      }
    }
    if (error == 0) return real(args...);
    // Where ssize_t is an int, only the offset tells the reads and writes from the other calls.
    using Last = std::tuple_element_t<sizeof...(Args) - 1, std::tuple<Args...>>;
    if constexpr (std::is_same_v<Last, off_t>) {
      const auto [descriptor, bytes, size, offset] = std::tuple(args...);
      if (error == kNothing) return 0;
      if (error < 0) return real(descriptor, bytes, std::min(size - 1, kPart), offset);
    }
    if (error > kDone && error < kOnce) real(args...);
    errno = error % kDone;
    if constexpr (std::is_pointer_v<Result>) return nullptr;
    if constexpr (!std::is_pointer_v<Result>) return -1;
  });
}

void guardAll(bool hasLinks) {
  SystemCalls& s = host().calls;
  s.sleep = [](auto) {};
  guard(s.open, {EIO, ENOENT, EACCES, EEXIST, ENOSPC});
  guard(s.close, {kDone + EIO, kDone + ENOSPC});
  guard(s.fstat, {EIO});
  guard(s.pread, {EIO, kShort, kShortThenError});
  guard(s.pwrite, {ENOSPC, EIO, kShort, kShortThenError, kNothing});
  // Where a rename may replace, nothing helps against a file that is there and is said not to be.
  guard(s.lstat, {EIO, EACCES, hasLinks ? ENOENT : EIO});
  guard(s.mkdir, {ENOSPC, EIO, ENOENT, EEXIST, EACCES});
  guard(s.renameNoReplace, {EIO, ENOENT, EEXIST, EACCES, ENOSPC, EINVAL, kDone + EIO});
  guard(s.rename, {EIO, ENOENT, EACCES, ENOSPC, kDone + EIO});
  guard(s.link, {EIO, ENOENT, EEXIST, EACCES, ENOSPC, EPERM, kDone + EIO});
  guard(s.unlink, {EIO, ENOENT, EACCES, kDone + EIO});
  guard(s.realpath, {EIO, ENOENT, EACCES});
  guard(s.fdopendir, {EIO});
  guard(s.readdir, {EIO});
  guard(s.closedir, {kDone + EIO});
  guard(s.flush, {EIO, ENOSPC});
  guard(s.flushVolume, {EIO, ENOSYS});
  intercept(s.open, [](const auto& open, auto... args) {
    const int descriptor = open(args...);
    struct stat info;
    if (descriptor >= 0 && ::fstat(descriptor, &info) == 0)
      if (forbidden.contains(info.st_ino)) isForbiddenOpened = true;
    return descriptor;
  });
}

const std::string kBad = "?" + std::string(50, 'x') + "?";  // a reference to it cannot tear unseen
const std::string kLost = "Programs/mine", kReplaced = "Programs/Factory/factory";

const PresetFile kLibrary[] = {{"Velocity Maps/" + kBad, true, 3, {"", ""}},
                               {"Effects/Default", false, 5, {"", ""}},
                               {"Effects/" + kBad, true, 1, {"", ""}},
                               {"Programs/Default", true, 0, {"Default", ""}},
                               {"Programs/" + kBad, true, 4, {kBad, ""}},
                               {"Programs/factory", true, 5, {"this", ""}},
                               {kReplaced, true, 6, {"that", ""}},
                               {"Programs/mine", false, 7, {"this", ""}},
                               {"Programs/User/mine", false, 8, {"that", ""}},
                               {"Sessions/s", false, 9, {kBad, kBad}}};

struct Command {
  std::string name;
  int (*run)();
  bool reports = false;    // tells of each preset that it could not write
  bool failsLoad = false;  // has its faults from the load before it on
  // 1: a volume that can do all; 2: also one without the rename that never replaces; 3: also one
  // without links.
  int volumes = 1;
};

// To the same names as -z.
int renameAndRelink() {
  const std::string good = "_" + std::string(50, 'x') + "_";
  return changeNames({{kAllKinds, "Effects/" + kBad, good},
                      {kAllKinds, "Programs/" + kBad, good},
                      {kAllKinds, "Velocity Maps/" + kBad, good},
                      {kProgramKind, kBad, good}});
}

const Command kCommands[] = {{"load", [] { return 0; }, false, true},
                             {"-s", [] { return sortIntoSubdirectories(), 0; }, false, false, 3},
                             {"-z", fixFilenames, true, true, 3},
                             {"--rename", renameAndRelink, true, false, 3},
                             {"ROM", [] { return makeAllROM(), 0; }, true},
                             {"save", [] { return _pm->saveAllPresets(), 0; }, false, true},
                             {"synchronise", [] {
                                fs::remove(path_string + ("/Presets/" + kLost));
                                return _pm->synchronizePresetList(0), 0;
                              }}};

std::string repaired(std::string text) {
  return std::replace(text.begin(), text.end(), '?', '_'), text;
}

// Whether the bytes are the preset's as it was or with its names repaired, each field for itself;
// ROM flag and index, which every load may set in a way of its own, do not count.
bool isIntact(const std::string& bytes, const PresetFile& preset) {
  const std::string before = preset.bytes();
  if (bytes.size() != before.size()) return false;
  constexpr std::size_t kFields[] = {0, 12, 76, 84, 89, 93, 157, 221, 999};
  for (std::size_t i = 0; i + 1 < std::size(kFields) && kFields[i] < bytes.size(); ++i) {
    const std::string field = bytes.substr(kFields[i], kFields[i + 1] - kFields[i]);
    const bool isName = i == 1 || i == 5 || i == 6;
    const std::string was = before.substr(kFields[i], field.size());
    if (i != 3 && field != was && (!isName || field != repaired(was))) return false;
  }
  return true;
}

// A path without the folders between the kind's and the file, and with its name repaired.
std::string identity(const std::string& path) {
  return repaired(path.substr(0, path.find('/')) + path.substr(path.rfind('/')));
}

class FaultSweepTest : public FolderTest {
 protected:
  // In memory unless told otherwise: the library is made anew thousands of times.
  FaultSweepTest()
      : FolderTest(std::getenv("TMPDIR") == nullptr && ::access("/dev/shm", W_OK) == 0
                       ? "/dev/shm"
                       : fs::temp_directory_path()) {}

  void makeLibrary() const {
    fs::remove_all(path("lib"));
    for (const PresetFile& preset : kLibrary)
      put(*this, preset);
  }

  void expectNoHarm(const Command& command) const {
    std::set<const PresetFile*> found;
    for (const auto& [file, item] : items("lib/Presets")) {
      if (item == "/") continue;
      const std::string name = file.substr(12), bytes = item.substr(1);
      const auto* preset = std::find_if(
          std::begin(kLibrary), std::end(kLibrary),
          [&](const auto& p) { return identity(p.path) == identity(name) && isIntact(bytes, p); });
      // What is made again may stay empty where its folder is no longer to be found.
      const bool isMadeAnew = (name == "Velocity Maps/Default" || name == "Sessions/Default" ||
                               (swap && name == kLost)) &&
                              (bytes.empty() || bytes.size() == PresetFile{name}.bytes().size());
      EXPECT_TRUE(preset != std::end(kLibrary) || isMadeAnew) << name << " was harmed";
      found.insert(preset);
    }
    for (const PresetFile& preset : kLibrary) {
      const bool goes = preset.path == (command.name == "synchronise" ? kLost : kReplaced);
      EXPECT_TRUE(found.contains(&preset) || goes) << preset.path << " is gone";
    }
  }

  // Every preset in memory is on the disk as it is in memory, or was told of.
  void expectTold(std::string errors) const {
    errors = repaired(errors);  // some are renamed after they were told of
    for (PresetList* list : {_v, _e, _p, _s}) {
      forEachPreset(list, [&](Preset& preset) {
        const std::string name = repaired(preset.getTreeItemName());
        const auto size = static_cast<std::size_t>(preset.getFlattenedPreset(nullptr));
        char place[1024];
        if (name == "Default" || FSRefMakePath(&preset.fileRef(), place, sizeof place) != noErr)
          return;
        const std::string image(preset.flattenedData(), size);
        const std::string file = read(fs::relative(place, path("")));
        EXPECT_TRUE((file[84] == image[84] && file.substr(89) == image.substr(89)) ||
                    errors.find('"' + name + '"') != std::string::npos)
            << name << " was not written, and nobody told";
      });
    }
  }

  void run(const Command& command, bool failsLoad) {
    std::ostringstream out, err;
    const auto before = std::pair(std::cout.rdbuf(out.rdbuf()), std::cerr.rdbuf(err.rdbuf()));
    failsStill = {};
    operations = failsLoad ? 0 : failsAt;
    const bool isLoaded = instantiate() == 0;
    if (!failsLoad) operations = 0;
    const int status = isLoaded ? command.run() : 0;
    operations = failsAt;  // what follows is no part of it
    if (exists("aside")) {
      fs::remove(path(kSwapped[way]));
      fs::rename(path("aside"), path(kSwapped[way]));
    }
    std::cout.rdbuf(before.first);
    std::cerr.rdbuf(before.second);
    if (isLoaded && command.reports) expectTold(err.str());
    const bool isTold = err.str().find("### error") != std::string::npos;
    EXPECT_EQ(status == 20, (command.name == "-z" || command.name == "--rename") && isTold);
    deinstantiate();
  }

  void sweep() {
    std::strcpy(path_string, path("lib").c_str());
    const auto refuse = [](auto...) { return failWith(ENOTSUP); };
    const int lowest = lowestFreeDescriptor();
    injected = 0;
    for (const Command& command : kCommands) {
      for (int volume = 1; volume <= command.volumes; ++volume) {
        host().calls = SystemCalls();
        if (volume > 1) host().calls.renameNoReplace = refuse;
        if (volume > 2) host().calls.link = refuse;
        guardAll(volume <= 2);
        long before = -1;
        for (failsAt = 1; injected != before && !HasFailure(); failsAt += sample()) {
          before = injected;
          for (way = 0, isLastWay = false; !isLastWay; ++way) {
            SCOPED_TRACE(command.name + " on volume " + std::to_string(volume) + ", operation " +
                         std::to_string(failsAt) + ", way " + std::to_string(way));
            makeLibrary();
            isLastWay = true;
            run(command, command.failsLoad && volume == 1);
            expectNoHarm(command);
            EXPECT_EQ(lowestFreeDescriptor(), lowest);
          }
        }
      }
    }
  }
};

TEST_F(FaultSweepTest, NoFaultHarmsAPreset) {
  sweep();
}

// An error that passes, of any call of a load, changes neither a report nor a byte.
TEST_F(FaultSweepTest, WhatPassesIsNotNoticed) {
  std::strcpy(path_string, path("lib").c_str());
  SystemCalls& s = host().calls;
  s.sleep = [](auto) {};
  const std::vector<int> ways{kOnce + EIO, kOnce + EINTR, kOnce + EMFILE, kOnce + EDQUOT};
  guard(s.open, ways), guard(s.fstat, ways), guard(s.pread, ways), guard(s.pwrite, ways);
  guard(s.lstat, ways), guard(s.mkdir, ways), guard(s.realpath, ways);
  guard(s.fdopendir, ways), guard(s.readdir, ways);
  std::string expected;
  long before = injected = 0;
  failsStill = {};
  for (failsAt = 0; failsAt <= sample() || injected != before; failsAt += sample()) {
    before = injected;
    for (way = 0, isLastWay = false; !isLastWay; ++way) {
      isLastWay = true;
      makeLibrary();
      TreeItem::_current_index = 0;
      testing::internal::CaptureStdout(), testing::internal::CaptureStderr();
      operations = 0;
      std::string report = std::to_string(instantiate());
      operations = failsAt;
      if (_pm != nullptr) listPresets(), listAllDependencies();
      deinstantiate();
      report += testing::internal::GetCapturedStdout() + testing::internal::GetCapturedStderr();
      report += look("lib");
      if (failsAt == 0) expected = report;
      ASSERT_EQ(report, expected) << "operation " << failsAt << ", way " << way;
    }
  }
  EXPECT_GT(failsAt, 100);
}

TEST_F(FaultSweepTest, NoSwappedFolderLeadsOutOfTheLibrary) {
  makeLibrary();
  fs::copy(path("lib"), path("other"), fs::copy_options::recursive);
  for (const auto& entry : fs::recursive_directory_iterator(path("other"))) {
    struct stat info;
    forbidden.insert(::lstat(entry.path().c_str(), &info) == 0 ? info.st_ino : 0);
  }
  const std::string before = look("other");
  swap = [this] {
    const std::string folder = kSwapped[way];
    fs::rename(path(folder), path("aside"));
    fs::create_directory_symlink(path("other" + folder.substr(3)), path(folder));
  };
  sweep();
  swap = nullptr;
  EXPECT_FALSE(isForbiddenOpened);
  EXPECT_EQ(look("other"), before);
}

}  // namespace
}  // namespace cairnset
