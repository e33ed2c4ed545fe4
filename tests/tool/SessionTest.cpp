// A session keeps to the library that it opened, and alone changes it.
#include <chrono>
#include <signal.h>
#include <sys/wait.h>

#include "presets/PresetManager.h"
#include "tests/PresetFile.h"
#include "tool/BulkMaintenance.h"
#include "tool/FilenameRepair.h"
#include "tool/Session.h"

namespace cairnset {
namespace {

class SessionTest : public FolderTest {
 protected:
  SessionTest() {
    makeFolder("config/Olvan Preferences");
    symlink(path("lib"), "config/Olvan Preferences/Olvan Items");
    ::setenv("XDG_CONFIG_HOME", path("config").c_str(), 1);
    std::strcpy(path_string, path("lib").c_str());
  }
  ~SessionTest() override { deinstantiate(); }

  bool isLocked() const {
    const int folder = ::open(path("lib").c_str(), O_RDONLY);
    const bool isFree = ::flock(folder, LOCK_EX | LOCK_NB) == 0;
    return ::close(folder), !isFree;
  }
};

// Its path, or the link in the preferences, comes to lead to another library before -s loads again.
TEST_F(SessionTest, KeepsToTheLibraryThatItOpened) {
  for (const bool isExplicit : {true, false}) {
    put(*this, PresetFile{"Effects/x?"}), put(*this, PresetFile{"Programs/p", true, 1, {"x?"}});
    fs::copy(path("lib"), path("other"), fs::copy_options::recursive);
    const std::string before = look("other");
    path_string[isExplicit ? path("lib").size() : 0] = '\0';
    ASSERT_EQ(instantiate(), kSuccess);
    fs::rename(path("lib"), path("aside"));
    symlink(path("other"), "lib");
    testing::internal::CaptureStdout();
    sortIntoSubdirectories();
    EXPECT_EQ(fixFilenames(), kSuccess);
    EXPECT_NE(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(look("other"), before);
    EXPECT_TRUE(exists("aside/Presets/Effects/User/x_") && exists("aside/Presets/Sessions"));
    EXPECT_EQ(_p->count(), 2);
    deinstantiate();
    remove("lib"), remove("aside"), remove("other");
  }
}

TEST_F(SessionTest, WaitsForTheRunThatHasTheLock) {
  put(*this, PresetFile{"Effects/x"});
  int ready[2];
  ASSERT_EQ(::pipe(ready), 0);
  const pid_t other = ::fork();
  if (other == 0) {
    const bool isLoaded = instantiate() == kSuccess;
    ::usleep(isLoaded && ::write(ready[1], "", 1) == 1 ? 900000 : 0);
    ::kill(::getpid(), SIGKILL);  // any death ends the lock
  }
  char byte;
  ASSERT_EQ(::read(ready[0], &byte, 1), 1);
  testing::internal::CaptureStderr();
  EXPECT_EQ(instantiate(), kSuccess);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Cairnset: another run is changing the library; waiting for it\n");
  EXPECT_TRUE(isLocked());
  EXPECT_EQ(reload(), kSuccess);
  EXPECT_TRUE(isLocked()) << "between the two loads of -s, too";
  EXPECT_EQ(instantiate(Changes::kNo), kSuccess);
  EXPECT_FALSE(isLocked()) << "once it is loaded";
  // On a volume without locks.
  host().calls.flock = [](auto...) { return failWith(ENOLCK); };
  EXPECT_EQ(instantiate(), kSuccess);
  ::close(ready[0]), ::close(ready[1]);
  EXPECT_EQ(::waitpid(other, nullptr, 0), other);
}

TEST_F(SessionTest, GivesUpHavingChangedNothing) {
  makeFolder("lib");
  std::chrono::milliseconds waited{0};
  host().calls.flock = [](auto...) { return failWith(EWOULDBLOCK); };
  host().calls.sleep = [&waited](std::chrono::milliseconds time) { waited += time; };
  testing::internal::CaptureStderr();
  EXPECT_EQ(instantiate(Changes::kNo), kLibraryIsBusy);
  EXPECT_NE(testing::internal::GetCapturedStderr().find("nothing was done\n"), std::string::npos);
  EXPECT_EQ(waited, std::chrono::seconds(10));
  EXPECT_EQ(look("lib"), "");
}

}  // namespace
}  // namespace cairnset
