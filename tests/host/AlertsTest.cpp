#include <cstdlib>
#include <functional>
#include <iostream>

#include <gtest/gtest.h>

#include "host/Alerts.h"

namespace cairnset {
namespace {

TEST(AlertsTest, OnStandardError) {
  const std::string endless(2000, 'n'), code = ".\nResult code = -43.\n";
  const auto open = [](auto... item) { displayFileManagerErrorWhileOpening(-43, item...); };
  FSSpec accented = {0, 2, {4, 'c', 'a', 'f', 0x8E}};
  char detail[3 + 5 + 13 + 1] = "a%n";
  const std::pair<std::function<void()>, std::string> cases[] = {
      {[&] { open(endless.c_str()); }, endless.substr(0, 1024) + code},
      {[&] { open("a", endless.c_str(), 1); }, "a" + code + endless.substr(0, 1023 - 19) + "\n"},
      {[&] { open(&accented); }, "café" + code},
      {[&] { open(static_cast<FSRef*>(nullptr)); }, "?" + code}};
  for (const auto& [show, shown] : cases) {
    testing::internal::CaptureStderr();
    show();
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Olvan reports a file system error while opening " + shown);
  }
  displayErrorStringsWithCode(nullptr, detail, "b.cpp", -2147483647 - 1);
  EXPECT_STREQ(detail, "a%n\rb.cpp:-2147483648");
}

// In processes of their own, for the switches cannot be set back.
TEST(AlertsTest, OnStandardOutput) {
  const char* const cases[][3] = {{"%s, %s 100%% %d%", "%s%%\r%", "%s%%\r%, %s 100% %d%\n%s%\r%\n"},
                                  {"[%s]%n", nullptr, "[]%n\n"},
                                  {nullptr, "\x8E", "é\n"}};
  for (const auto& c : cases) {
    const auto show = [&c] {
      std::cout.rdbuf(std::cerr.rdbuf());
      setPIAlertStdOut(), disablePIAlertWindows();
      displayErrorStrings(c[0], c[1]);
      std::_Exit(0);
    };
    EXPECT_EXIT(show(), testing::ExitedWithCode(0), testing::Eq(c[2]));
  }
}

}  // namespace
}  // namespace cairnset
