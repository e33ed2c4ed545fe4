// Random libraries whose names clash, and commands that are stopped at every change: the same
// command then ends as if it had never been stopped. And calls that fail from some moment on: no
// reference breaks unreported, and the next run finds every preset.

#include "tests/PresetFile.h"
#include "tool/CommandLine.h"

namespace cairnset {
namespace {

class StoppedRunsTest : public FolderTest {
 protected:
  StoppedRunsTest() : FolderTest(fs::exists("/dev/shm") ? "/dev/shm" : fs::temp_directory_path()) {}

  using Items = std::map<std::string, std::string>;
  struct Ended {
    int status;
    std::string errors;
    Items items;
  };

  // Each kind has one index once: of equal ones no order of writes keeps the places.
  static std::vector<PresetFile> randomLibrary(unsigned seed) {
    std::mt19937 random(seed);
    const auto pick = [&random](const auto& from) {
      return std::string(*(std::begin(from) + random() % std::size(from)));
    };
    constexpr const char *kNames[] = {"a?", "a*", "a_", "b ", "b", "c?", "DEFAULT", "default"},
                         *kFolders[] = {"", "", "", "User/", "Factory/", "Mine/"};
    std::map<std::string, PresetFile> presets;
    for (const KindFormat& kind : kKinds) {
      for (int i = 0; i < 7; ++i) {
        PresetFile preset{kind.folder + ("/" + pick(kFolders)) + pick(kNames)};
        preset.rom = random() % 2 == 0;
        preset.index = static_cast<unsigned>(i * 37 % 7 * 20 + 1);
        for (std::size_t j = 0; j < kind.references; ++j)
          preset.references.push_back(pick(kNames));
        // One that cannot leave the root folder can become the default, and leave it after all.
        const bool isInTheWay = preset.path.find("User/default") != std::string::npos ||
                                preset.path.find("User/DEFAULT") != std::string::npos;
        if (!isInTheWay) presets.emplace(preset.path, preset);
      }
    }
    std::vector<PresetFile> library;
    for (const auto& [path, preset] : presets)
      library.push_back(preset);
    return library;
  }

  void make(const std::vector<PresetFile>& library) const {
    fs::remove_all(path("lib"));
    for (const PresetFile& preset : library)
      put(*this, preset);
  }

  Ended run(const std::string& options) const {
    std::string words[] = {"cairnset", "-e", path("lib"), options};
    char* arguments[] = {words[0].data(), words[1].data(), words[2].data(), words[3].data(), nullptr};
    std::ostringstream out, err;
    const auto before = std::pair(std::cout.rdbuf(out.rdbuf()), std::cerr.rdbuf(err.rdbuf()));
    const int status = runCommandLine(4, arguments);
    std::cout.rdbuf(before.first);
    std::cerr.rdbuf(before.second);
    host().calls = SystemCalls();
    return {status, err.str(), items("lib/Presets")};
  }

  // From the change number `first` on nothing reaches the disk any more, as after a kill. Returns how
  // many changes there were.
  static std::shared_ptr<long> stopAt(long first, int volume) {
    if (volume > 1) host().calls.renameNoReplace = [](auto...) { return failWith(ENOTSUP); };
    const auto changes = std::make_shared<long>(0);
    const auto stop = [=](auto& call) {
      intercept(call, [=](const auto& real, auto... args) -> decltype(real(args...)) {
        return ++*changes >= first ? failWith(EIO) : real(args...);
      });
    };
    SystemCalls& s = host().calls;
    stop(s.pwrite), stop(s.ftruncate), stop(s.mkdir), stop(s.renameNoReplace), stop(s.rename);
    stop(s.link), stop(s.unlink);
    intercept(s.open, [=](const auto& real, int folder, const char* path, int flags, mode_t mode) {
      const bool isStopped = (flags & O_CREAT) != 0 && ++*changes >= first;
      return isStopped ? failWith(EIO) : real(folder, path, flags, mode);
    });
    return changes;
  }
};

TEST_F(StoppedRunsTest, TheSameCommandEndsAsIfItHadNotBeenStopped) {
  const char* const libraries = std::getenv("LIBRARIES");
  const char* const start = std::getenv("START");
  const unsigned begin = start != nullptr ? static_cast<unsigned>(std::stoi(start)) : 0;
  for (unsigned seed = begin; seed < begin + (libraries != nullptr ? static_cast<unsigned>(std::stoi(libraries)) : 5); ++seed) {
    const auto library = randomLibrary(seed);
    if (std::getenv("SHOW") != nullptr) for (const auto& p : library) std::cerr << p.path << " " << p.rom << " " << p.index << "\n";
    for (int volume = 1; volume <= 2; ++volume) for (const char* options : {"-p", "-s", "-z", "-sz"}) {
      make(library);
      const Ended expected = run(options);
      long first = 1;
      for (bool isStopped = true; isStopped; ++first) {
        make(library);
        const auto changes = stopAt(first, volume);
        run(options);
        isStopped = *changes >= first;
        const Ended again = run(options);
        if (again.items != expected.items) {
          std::string text;
          for (const auto& [name, item] : expected.items)
            if (!again.items.contains(name)) text += " - " + name; else if (again.items.at(name) != item) text += " ~ " + name;
          for (const auto& [name, item] : again.items)
            if (!expected.items.contains(name)) text += " + " + name;
          ADD_FAILURE() << "library " << seed << ", " << options << " stopped at change " << first << " on " << volume << text;
          break;
        }
      }
    }
  }
}

}  // namespace
}  // namespace cairnset
