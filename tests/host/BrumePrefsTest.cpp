#include <filesystem>
#include <sstream>

#include <gtest/gtest.h>

#include "host/BrumePrefs.h"
#include "host/TimeoutFile.h"
#include "tests/TestFolder.h"

namespace cairnset {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;

const std::string kMoved =
    "Your Olvan library has been moved.\nPlease locate your 'Olvan Items' folder...\n";
const std::string kAsked = "Please locate the Olvan Items folder.\nFolder: \n";
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
  static std::string shown(const std::string& answers, const auto& act) {
    std::istringstream in(answers);
    chooserStreams().answers = &in;
    testing::internal::CaptureStderr();
    act();
    return testing::internal::GetCapturedStderr();
  }
  static std::string initialised(BrumePrefs& prefs, const std::string& answers = "") {
    return shown(answers, [&] { prefs.initPrefs(); });
  }
  void write(const fs::path& path, const std::string& bytes = "x") {
    fs::create_directories(path.parent_path());
    folder.write(path.lexically_relative(home), bytes);
  }

  const TestFolder folder;
  const fs::path home = folder.path(""), library = home / "Library";
  const fs::path prefsFolder = home / "new/config/Olvan Preferences";
  const fs::path alias = prefsFolder / "Olvan Items";
};

// At first without a preferences folder, then with a file or an alias in place of ours.
TEST_F(BrumePrefsTest, FirstContact) {
  const std::string cancels[] = {" '' \n~/Library\n", std::string(9000, '/'),
                                 "~/Library/kept\n~/none\nx\n~/Library\n"};
  write(library / "kept");
  BrumePrefs prefs;
  for (const std::string& answers : cancels) {
    initialised(prefs, answers);
    EXPECT_TRUE(prefs.getItemsPath() == nullptr && fs::is_empty(prefsFolder)) << answers;
    fs::remove(prefsFolder);
    write(prefsFolder);
  }
  fs::remove(prefsFolder);
  fs::create_directory_symlink(library, prefsFolder);
  initialised(prefs, "/no\n ' ~/Library// ' \n \t\"~/Library/\" \r\n");
  ASSERT_TRUE(fs::exists(library / "kept") && prefs.isInitialised() &&
              prefs.getItemsPath() == library);
  EXPECT_EQ(prefs.getPrefsPath(), fs::canonical(prefsFolder));
}

TEST_F(BrumePrefsTest, WhatTheAliasIs) {
  // The link, what is said, the items path.
  const std::array<std::string, 3> cases[] = {
      {"../../../one", "", library},
      {"Olvan Items", kFailed + "opening Olvan Items.\nResult code = -36.\n", ""},
      {"Timeout/x", kMoved + kAsked, library}};
  fs::create_symlink(library, home / "one");
  write(prefsFolder / "Timeout");
  for (const auto& [link, said, items] : cases) {
    fs::remove(alias);
    fs::create_symlink(link, alias);
    BrumePrefs prefs;
    EXPECT_EQ(initialised(prefs, "~/Library\n"), said) << link;
    EXPECT_EQ(prefs.isInitialised() ? prefs.getItemsPath() : "", items) << link;
  }
  EXPECT_EQ(fs::read_symlink(alias), library);
  fs::remove(alias);
  write(alias / "kept");  // a folder, which choosing again spares
  BrumePrefs prefs;
  initialised(prefs);
  const auto select = [&] { EXPECT_EQ(prefs.userSelectNewItemsPath(), 0); };
  EXPECT_EQ(shown("~/Library\n", select),
            kAsked + kFailed + "creating Olvan Items.\nResult code = -47.\n");
  ASSERT_TRUE(fs::remove(alias / "kept"));
  EXPECT_EQ(shown("~/Library\n", select), kAsked);
  EXPECT_EQ(fs::read_symlink(alias), library);
}

TEST_F(BrumePrefsTest, LastRun) {
  const std::string summer =
      "\0\0\0\50\0\0\0\56\0\0\0\3\0\0\0\11\0\0\0\10\0\0\0\145\0\0\0\0\0\0\0\373\0\0\0\1\0\0\34\40\0\0\0\0"s;
  const auto bytesOf = [](std::time_t time) {
    const TimeoutBytes bytes = encodeTimeout(time);
    return std::string(bytes.begin(), bytes.end());
  };
  fs::create_directories(alias);
  EXPECT_EQ(bytesOf(1'000'000'000), summer);
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

}  // namespace
}  // namespace cairnset
