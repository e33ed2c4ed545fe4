// Runs that are ended from outside, and reports that nobody takes.
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <set>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include "tests/TestFolder.h"
#include "tests/tool/LibraryFiles.h"

namespace cairnset {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

// The names without their folders. What is renamed counts as what it was.
using Names = std::multiset<std::string>;

class InterruptionTest : public testing::Test, protected TestFolder {
 protected:
  // Some hundred loose presets: 15 effects, each named by 6 programs, and 30 programs with bad
  // names, each named by 3 sessions.
  Names makeLibrary() {
    fs::remove_all(path("lib"));
    for (const char* kind : {"Velocity Maps", "Effects/User", "Programs/User", "Sessions"})
      fs::create_directories(path("lib/Presets/") + kind);
    const auto make = [this](const PresetFile& preset) {
      write("lib/Presets/" + preset.path, preset.bytes());
    };
    for (const char* kind : {"Velocity Maps/", "Effects/", "Programs/", "Sessions/"})
      make({kind + std::string("Default"), true});
    for (int i = 0; i < 90; ++i) {
      const std::string effect = "effect?" + std::to_string(i % 15);
      const std::string program = (i % 3 == 0 ? "program?" : "program ") + std::to_string(i);
      if (i < 15) make({"Effects/" + effect, i % 2 == 0, i});
      make({"Programs/" + program, i % 2 == 0, i, {effect}, i});
      make({"Sessions/" + std::to_string(i),
            false,
            i,
            {"Default", "program?" + std::to_string(i / 3 * 3)}});
    }
    return names();
  }

  Names names(int* bad = nullptr, int* loose = nullptr) const {
    Names all;
    for (const auto& entry : fs::recursive_directory_iterator(path("lib/Presets"))) {
      if (!entry.is_regular_file()) continue;
      std::string name = entry.path().filename().string();
      const std::size_t at = name.find('?');
      if (bad != nullptr) *bad += at != std::string::npos;
      const std::string kind = entry.path().parent_path().filename().string();
      if (loose != nullptr) *loose += kind == "Effects" || kind == "Programs";
      if (at != std::string::npos) name[at] = '_';
      all.insert(name);
    }
    return all;
  }

  int shell(const std::string& command) const {
    const std::string program = CAIRNSET_PROGRAM;
    const int status =
        std::system(("cd '" + path("") + "' && exec 2>err && PATH=\"" +
                     program.substr(0, program.rfind('/')) + ":$PATH\" && " + command)
                        .c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

  // Answers how the run ended, as wait tells it. Without a signal it is left alone.
  int run(const char* option, int signal, Clock::duration delay) const {
    const std::string library = path("lib");
    const pid_t child = ::fork();
    if (child == 0) {
      if (std::freopen("/dev/null", "w", stdout) != nullptr) {
        ::execl(CAIRNSET_PROGRAM, "cairnset", "-e", library.c_str(), option, nullptr);
      }
      ::_exit(99);
    }
    std::this_thread::sleep_for(delay);
    if (signal != 0) ::kill(child, signal);
    int status = 0;
    ::waitpid(child, &status, 0);
    return status;
  }
};

TEST_F(InterruptionTest, NothingIsLostAndNoReferenceBroken) {
  constexpr int kPoints = 18;
  constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP};
  for (const char* option : {"-z", "-s"}) {
    makeLibrary();
    const auto start = Clock::now();
    ASSERT_EQ(run(option, 0, {}), 0);
    const auto whole = Clock::now() - start;
    int halfway = 0;
    for (int point = 0; point < kPoints; ++point) {
      const Names before = makeLibrary();
      const int signal = kSignals[point % 3];
      SCOPED_TRACE(option + std::to_string(point));
      const int status = run(option, signal, whole * (point + 1) / kPoints);
      EXPECT_TRUE(status == 0 || (WIFSIGNALED(status) && WTERMSIG(status) == signal)) << status;
      int bad = 0;
      int loose = 0;
      EXPECT_EQ(names(&bad, &loose), before);
      halfway += option[1] == 'z' ? bad > 0 && bad < 45 : loose > 2 && loose < 107;
      EXPECT_EQ(shell("cairnset -e lib -d >/dev/null"), 0) << "all references were found before";
    }
    EXPECT_GT(halfway, 0) << "no run was interrupted half-way: this test has shown nothing";
  }
}

TEST_F(InterruptionTest, AReaderThatGoesAwayEndsReportsButNoChanges) {
  const Names before = makeLibrary();
  // Nobody is there to read even the first byte, and the parent ignores the signal.
  shell("trap '' PIPE; (sleep 0.3; cairnset -e lib -p; echo $? >status) | true");
  EXPECT_EQ(read("status"), std::to_string(128 + SIGPIPE) + "\n");
  EXPECT_EQ(read("err"), "");
  // The banner comes before the library is read.
  shell("cairnset -e lib -z | head -n 1 >/dev/null");
  shell("cairnset -e lib -s | head -n 1 >/dev/null");
  int bad = 0;
  int loose = 0;
  EXPECT_EQ(names(&bad, &loose), before);
  EXPECT_EQ(bad, 0);
  EXPECT_EQ(loose, 2) << "the Defaults";
}

TEST_F(InterruptionTest, AReportThatCannotBeWrittenIsNoSuccess) {
  for (const char* to : {">/dev/full", ">&-", ">&- <&- 2>&-"}) {
    if (to[1] == '/' && !fs::exists("/dev/full")) continue;
    for (const char* option : {" -p ", " -z "}) {
      makeLibrary();
      SCOPED_TRACE(option + std::string(to));
      EXPECT_EQ(shell(std::string("cairnset -e lib") + option + to), 74);
      const std::string err =
          std::string(to).ends_with("2>&-") ? "" : "Cairnset: the report could not be written\n";
      EXPECT_EQ(read("err"), err);
      EXPECT_EQ(shell("grep -rq -e renaming -e Cairnset -e VMap] lib"), 1) << "text in a preset";
      int bad = 0;
      names(&bad);
      EXPECT_EQ(bad, option[2] == 'p' ? 45 : 0);
    }
  }
}

}  // namespace
}  // namespace cairnset
