// Runs that are ended from outside, and reports that nobody takes.
#include <chrono>
#include <csignal>
#include <set>
#include <thread>
#include <unistd.h>

#include "tests/tool/ToolTest.h"

namespace cairnset {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

const std::string kLong = " of so many letters that reports fill a buffer ";

struct Files {
  std::multiset<std::string> names;  // without folders, with "_" for "?"
  int bad = 0;                       // names with "?"
  int loose = 0;                     // effects and programs in their root folders
};

class InterruptionTest : public testing::Test, protected TestFolder {
 protected:
  // All loose: 15 effects with bad names, each named by 6 programs, and 90 programs, 30 of them
  // with bad names, each of which 3 sessions name.
  Files makeLibrary() const {
    fs::remove_all(path("lib"));
    for (const char* kind : {"Velocity Maps/", "Effects/", "Programs/", "Sessions/"})
      put(*this, {kind + std::string("Default"), true});
    for (unsigned i = 0; i < 90; ++i) {
      const std::string number = std::to_string(i);
      const std::string effect = "effect?" + kLong + std::to_string(i % 15);
      const std::string program = (i % 3 == 0 ? "program?" : "program ") + kLong + number;
      const std::string used = "program?" + kLong + std::to_string(i / 3 * 3);
      if (i < 15) put(*this, {"Effects/" + effect, i % 2 == 0, i});
      put(*this, {"Programs/" + program, i % 2 == 0, i, {effect}});
      put(*this, {"Sessions/" + number, false, i, {"Default", used}});
    }
    return files();
  }

  Files files() const {
    Files all;
    for (const auto& entry : fs::recursive_directory_iterator(path("lib/Presets"))) {
      if (!entry.is_regular_file()) continue;
      std::string name = entry.path().filename().string();
      const std::string folder = entry.path().parent_path().filename().string();
      all.bad += name.find('?') != std::string::npos;
      all.loose += folder == "Effects" || folder == "Programs";
      std::replace(name.begin(), name.end(), '?', '_');
      all.names.insert(name);
    }
    return all;
  }

  // Sends the signal, if any, after the delay. Answers how the run ended, as wait tells it.
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
  constexpr int kPoints = 24;
  constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP};
  for (const std::string option : {"-z", "-s"}) {
    Files before, done;
    auto whole = Clock::duration::max();
    for (int i = 0; i < 3; ++i) {
      before = makeLibrary();
      const auto start = Clock::now();
      ASSERT_EQ(run(option.c_str(), 0, {}), 0);
      whole = std::min(whole, Clock::now() - start);
      done = files();
    }
    int halfway = 0;
    // On a busy machine a run can be over, or not yet begun, at every one of the points.
    for (int i = 0; i < kPoints || (halfway == 0 && option == "-s" && i < 10 * kPoints); ++i) {
      const int point = i % kPoints + 1;
      SCOPED_TRACE(option + std::to_string(point));
      makeLibrary();
      const int signal = kSignals[point % 3];
      const int status = run(option.c_str(), signal, whole * 3 / 2 * point / kPoints);
      EXPECT_TRUE(status == 0 || (WIFSIGNALED(status) && WTERMSIG(status) == signal)) << status;
      const Files now = files();
      EXPECT_EQ(now.names, before.names);
      halfway += now.loose < before.loose && now.loose > done.loose;
      EXPECT_TRUE(now.bad == before.bad || now.bad == done.bad) << "a repair is not cut short";
      EXPECT_EQ(shell(*this, "cairnset -e lib -d >/dev/null"), 0) << "nothing was missing before";
    }
    EXPECT_TRUE(halfway > 0 || option == "-z") << "this test has shown nothing";
  }
}

TEST_F(InterruptionTest, AReaderThatGoesAwayEndsReportsButNoChanges) {
  const Files before = makeLibrary();
  // Nobody is there to read even the first byte, and the parent ignores the signal.
  shell(*this, "trap '' PIPE; (sleep 0.3; cairnset -e lib -p 2>err; echo $? >status) | true");
  EXPECT_EQ(read("status"), std::to_string(128 + SIGPIPE) + "\n");
  EXPECT_EQ(read("err"), "");
  // The pipe takes the banner, and not what comes next; in the midst of that the reader goes.
  shell(*this, "(head -c 65000 /dev/zero; cairnset -e lib -s -z 2>err; echo $? >status) | sleep 1");
  EXPECT_EQ(read("status"), "74\n");
  const Files now = files();
  EXPECT_EQ(now.names, before.names);
  EXPECT_EQ(now.bad, 0);
  EXPECT_EQ(now.loose, 2) << "the Defaults";
}

TEST_F(InterruptionTest, AReportThatCannotBeWrittenIsNoSuccess) {
  const std::string told = "Cairnset: the report could not be written\n";
  for (const auto& [to, err] :
       {std::pair{" >/dev/full", told}, {" >&-", told}, {" >&- <&- 2>&-", ""}}) {
    if (to[2] == '/' && !fs::exists("/dev/full")) continue;
    for (const std::string option : {"-p", "-z"}) {
      SCOPED_TRACE(option + to);
      makeLibrary();
      EXPECT_EQ(shell(*this, "exec 2>err && cairnset -e lib " + option + to), 74);
      EXPECT_EQ(read("err"), err);
      EXPECT_EQ(files().bad, option == "-p" ? 45 : 0);
      EXPECT_EQ(shell(*this, "grep -rq -e renaming -e Cairnset -e Prog] lib"), 1)
          << "a preset file holds what was to be printed";
    }
  }
}

}  // namespace
}  // namespace cairnset
