#include "host/preferences/BrumePrefs.h"
#include "host/preferences/TimeoutFile.h"
#include "host/terminal/Chooser.h"
#include "host/text/PascalStrings.h"
#include "tests/TestFolder.h"

namespace cairnset {

/// What the choosers read while this lives, from a pipe which may stay open behind it.
struct Answers {
  explicit Answers(const std::string& text, bool hasEnd) {
    if (::pipe(ends) != 0 || ::write(ends[1], text.data(), text.size()) < 0) std::abort();
    if (hasEnd) ::close(std::exchange(ends[1], -1));
    chooserStreams() = {ends[0], &std::cerr, hasEnd ? 5000 : 20};
  }
  ~Answers() { ::close(ends[0]), ::close(ends[1]); }
  int ends[2];
};

// How the program meets its preferences is in tests/transcripts/preferences.txt. Here the library
// is a real folder in place of the alias.
class BrumePrefsTest : public MemoryTest {
 protected:
  BrumePrefsTest() {
    makeFolder("Olvan Preferences/Olvan Items");
    ::setenv("XDG_CONFIG_HOME", path("").c_str(), 1);
    ::setenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3", 1);
  }
};

TEST_F(BrumePrefsTest, ChoosingAgainSparesAFullFolder) {
  write("Olvan Preferences/Olvan Items/kept", "x");
  const std::string items = path("Olvan Preferences/Olvan Items"), library = path("");
  BrumePrefs prefs;
  prefs.initPrefs();
  EXPECT_EQ(prefs.getItemsPath(), items);
  const Answers answers(items + "\n" + library + "\n" + library + "\n", true);
  testing::internal::CaptureStderr();
  EXPECT_EQ(prefs.userSelectNewItemsPath() + prefs.userSelectNewItemsPath(), 0);
  remove("Olvan Preferences/Olvan Items/kept");
  EXPECT_EQ(prefs.userSelectNewItemsPath(), 0);
  EXPECT_EQ(TestFolder::items().at("Olvan Preferences/Olvan Items"), "->" + library);
  const std::string asked = "Please locate the Olvan Items folder.\nFolder: \n";
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            asked + asked + "Olvan reports a file system error while creating Olvan Items.\n" +
                "Result code = -47.\n" + asked);
}

TEST_F(BrumePrefsTest, AQuestionWaitsForAWholeLineAndNotForever) {
  testing::internal::CaptureStderr();
  for (const bool hasEnd : {true, false})
    for (const char* before : {"", "/none\n", "/none\n/none\n"}) {
      const Answers answers(before + path(""), hasEnd);
      FSRef folder;
      EXPECT_EQ(chooseFolder("", &folder), hasEnd) << before;
    }
  testing::internal::GetCapturedStderr();
}

TEST_F(BrumePrefsTest, LastRun) {
  const std::string summer =
      "\0\0\0\50\0\0\0\56\0\0\0\3\0\0\0\11\0\0\0\10\0\0\0\145\0\0\0\0\0\0\0\373\0\0\0\1\0\0\34\40\0\0\0\0"s;
  const auto bytesOf = [](std::time_t time) {
    const TimeoutBytes bytes = encodeTimeout(time);
    return std::string(bytes.begin(), bytes.end());
  };
  EXPECT_EQ(bytesOf(1'000'000'000), summer);
  const std::time_t now = std::time(nullptr);
  const std::pair<std::string, double> cases[] = {
      {summer, double(now) - 1e9},
      {bytesOf(now + 1000) + "more", 4294967296.0 - 1000},
      {bytesOf(253'370'764'800), 2147483648.0},
      {bytesOf(now).substr(0, 43), double(now)},
      {std::string(44, '\x80'), double(now) + 1}};
  for (const auto& [bytes, seconds] : cases) {
    write("Olvan Preferences/Timeout", bytes);
    BrumePrefs prefs, next;
    prefs.initPrefs();
    EXPECT_NEAR(double(prefs.getSecondsSinceLastRun()), seconds, 10);
    prefs.resetLastRunTime(), next.initPrefs();
    EXPECT_LE(next.getSecondsSinceLastRun(), 10u);
  }
}

TEST_F(BrumePrefsTest, KeymapsAreChosenByTheirName) {
  const auto isShown = [](const char* name, NavFileOrFolderInfo info, short mode) {
    AEDesc item;
    C2PCopy(item.fsSpec.name, name);
    return BrumePrefs::navFilterProc(&item, &info, nullptr, mode);
  };
  EXPECT_TRUE(isShown("BrumeKeymaps.txt", {}, 0) && isShown("folder", {true, true}, 0));
  EXPECT_TRUE(isShown("any", {}, 1) && !isShown("folder", {true, false}, 0));
  for (const char* name : {"BrumeKeymaps.tx", "Brumekeymaps.txt", "BrumeKeymaps.txt2"})
    EXPECT_FALSE(isShown(name, {}, 0)) << name;
  for (const char* name : {"other.txt", "BrumeKeymaps.txt"}) {
    write(name, "");
    BrumePrefs prefs;
    const Answers answers(path(name) + "\n", true);
    prefs.askForBrumeKeymapsTxtLocation();
    EXPECT_EQ(prefs.isInitialised(), name[0] == 'B') << name;
  }
}

}  // namespace cairnset
