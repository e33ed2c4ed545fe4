#include <filesystem>
#include <functional>
#include <sstream>

#include <gtest/gtest.h>

#include "host/BrumePrefs.h"
#include "host/TimeoutFile.h"
#include "tests/TestFolder.h"

namespace cairnset {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;

const std::string kUnable =
    "Olvan is unable to locate its library.\n"
    "Please locate your installed 'Olvan Items' folder...\n";
const std::string kMoved =
    "Your Olvan library has been moved.\nPlease locate your 'Olvan Items' folder...\n";
const std::string kAsked = "Please locate the Olvan Items folder.\nFolder: \n";
const std::string kNone = "There is no such folder.\n", kAgain = kNone + "Folder: \n";
const std::string kCancelled =
    "Cancelled.\nOlvan will not be able to properly function without its library.\n";
const std::string kFailed = "Olvan reports a file system error while ";

class BrumePrefsTest : public testing::Test {
 protected:
  BrumePrefsTest() {
    fs::create_directory(library);
    ::setenv("HOME", home.c_str(), 1);
    ::setenv("XDG_CONFIG_HOME", (home / "new/config").c_str(), 1);
    ::setenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3", 1);
  }

  // What the user gets to see while `act` runs and the given answers wait.
  static std::string shown(const std::string& answers, const std::function<void()>& act) {
    std::istringstream in(answers);
    const ChooserStreams streams = chooserStreams();
    chooserStreams().answers = &in;
    testing::internal::CaptureStderr();
    act();
    chooserStreams() = streams;
    return testing::internal::GetCapturedStderr();
  }
  static std::string initialised(BrumePrefs& prefs, const std::string& answers = "") {
    return shown(answers, [&] { prefs.initPrefs(); });
  }
  void write(const fs::path& path, const std::string& bytes = "x") {
    fs::create_directories(path.parent_path());
    folder.write(path.lexically_relative(home), bytes);
  }
  static std::string bytesOf(std::time_t time) {
    const TimeoutBytes bytes = encodeTimeout(time);
    return {bytes.begin(), bytes.end()};
  }

  const TestFolder folder;
  const fs::path home = folder.path(""), library = home / "Library";
  const fs::path prefsFolder = home / "new/config/Olvan Preferences";
  const fs::path alias = prefsFolder / "Olvan Items";
};

// At first without a preferences folder, then with a file or an alias in place of ours.
TEST_F(BrumePrefsTest, FirstContact) {
  const std::pair<std::string, std::string> cancels[] = {
      {" '' \n~/Library\n", ""},
      {std::string(9000, '/'), ""},
      {"~/Library/kept\n~/none\n", kAgain + kAgain}};
  write(library / "kept");
  BrumePrefs prefs;
  for (const auto& [answers, said] : cancels) {
    EXPECT_EQ(initialised(prefs, answers), kUnable + kAsked + said + kCancelled);
    EXPECT_TRUE(prefs.getItemsPath() == nullptr && fs::is_empty(prefsFolder)) << answers;
    fs::remove(prefsFolder);
    write(prefsFolder);
  }
  fs::remove(prefsFolder);
  fs::create_directory_symlink(library, prefsFolder);
  EXPECT_EQ(initialised(prefs, "/no\n ' ~/Library// ' \n"), kUnable + kAsked + kAgain);
  ASSERT_TRUE(prefs.isInitialised() && fs::exists(library / "kept"));
  EXPECT_EQ(prefs.getItemsPath(), library);
  EXPECT_EQ(prefs.getPrefsPath(), fs::canonical(prefsFolder));
}

TEST_F(BrumePrefsTest, WhatTheAliasIs) {
  const std::string failed = kFailed + "opening Olvan Items.\nResult code = -3";
  const std::array<std::string, 4> cases[] = {
      // link, what is said, items path, link then
      {"../../../one", "", library, "../../../one"},
      {"Olvan Items", failed + "6.\n", "", "Olvan Items"},
      {"gone/away", kMoved + kAsked, library, library},
      {"Timeout/x", kMoved + kAsked, library, library},
  };
  fs::create_symlink(library, home / "two");
  fs::create_symlink("two", home / "one");
  write(prefsFolder / "Timeout");
  for (const auto& [link, said, items, linkThen] : cases) {
    fs::remove(alias);
    fs::create_symlink(link, alias);
    BrumePrefs prefs;
    EXPECT_EQ(initialised(prefs, "~/Library\n"), said) << link;
    EXPECT_EQ(prefs.isInitialised() ? prefs.getItemsPath() : "", items) << link;
    EXPECT_EQ(fs::read_symlink(alias), linkThen);
  }
}

TEST_F(BrumePrefsTest, ChoosingAgainSparesAFolder) {
  write(alias / "kept");
  BrumePrefs prefs;
  initialised(prefs);
  const auto select = [&] { EXPECT_EQ(prefs.userSelectNewItemsPath(), 0); };
  EXPECT_EQ(shown("~/Library\n", select),
            kAsked + kFailed + "creating Olvan Items.\nResult code = -47.\n");
  ASSERT_TRUE(fs::remove(alias / "kept"));
  EXPECT_EQ(shown("~/Library\n", select), kAsked);
  EXPECT_EQ(fs::read_symlink(alias), library);
  EXPECT_EQ(prefs.getItemsPath(), alias);
}

TEST_F(BrumePrefsTest, LastRun) {
  const std::string summer =
      "\0\0\0\50\0\0\0\56\0\0\0\3\0\0\0\11\0\0\0\10\0\0\0\145\0\0\0\0\0\0\0\373\0\0\0\1\0\0\34\40\0\0\0\0"s;
  EXPECT_EQ(bytesOf(1'000'000'000), summer);
  fs::create_directories(alias);
  const std::time_t now = std::time(nullptr);
  const std::pair<std::string, double> cases[] = {
      {summer, double(now) - 1e9},
      {bytesOf(now + 1000) + "more", 4294967296.0 - 1000},
      {bytesOf(253'370'764'800), 2147483648.0},
      {bytesOf(now).substr(0, 43), double(now)},
      {std::string(44, '\x80'), double(now) + 1}};
  for (const auto& [bytes, seconds] : cases) {
    write(prefsFolder / "Timeout", bytes);
    BrumePrefs prefs, next;
    EXPECT_EQ(initialised(prefs), "");
    EXPECT_NEAR(double(prefs.getSecondsSinceLastRun()), seconds, 10);
    prefs.resetLastRunTime();
    initialised(next);
    EXPECT_LE(next.getSecondsSinceLastRun(), 10u);
  }
}

TEST_F(BrumePrefsTest, KeymapsFile) {
  write(home / "brumekeymaps.txt");
  write(home / "BrumeKeymaps.txt");
  const std::string no = "There is no such file, or it is not one to be chosen here.\nFile: \n";
  EXPECT_EQ(shown("~/brumekeymaps.txt\n~/Library\n~/BrumeKeymaps.txt\n",
                  [] { BrumePrefs().askForBrumeKeymapsTxtLocation(); }),
            "Please locate the BrumeKeymaps.txt file.\nFile: \n" + no + no);
}

}  // namespace
}  // namespace cairnset
