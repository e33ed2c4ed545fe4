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
  char detail[3 + 5 + 13 + 1] = "a%n";
  const std::pair<std::function<void()>, std::string> cases[] = {
      {[&] { open(endless.c_str()); }, endless.substr(0, 1024) + code},
      {[&] { open("a", endless.c_str(), 1); }, "a" + code + endless.substr(0, 1023 - 19) + "\n"}};
  for (const auto& [show, shown] : cases) {
    testing::internal::CaptureStderr();
    show();
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Olvan reports a file system error while opening " + shown);
  }
  testing::internal::CaptureStderr();
  displayErrorStringsWithCode(nullptr, detail, "b.cpp", -2147483647 - 1);
  EXPECT_STREQ(detail, "a%n\rb.cpp:-2147483648");
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "An unknown Olvan error has occurred\na%n\nb.cpp:-2147483648\n");
}

// In a process of its own, for the switches cannot be set back.
TEST(AlertsTest, OnStandardOutput) {
  const auto show = [] {
    std::cout.rdbuf(std::cerr.rdbuf());
    setPIAlertStdOut(), disablePIAlertWindows();
    displayErrorStrings("%s, %s 100%% %d%", "%s%%\r%");
    displayErrorStrings("[%s]%n", nullptr);
    displayErrorStrings(nullptr, "\x8E");
    std::_Exit(0);
  };
  EXPECT_EXIT(show(), testing::ExitedWithCode(0),
              testing::Eq("%s%%\r%, %s 100% %d%\n%s%\r%\n[]%n\né\n"));
}

}  // namespace
}  // namespace cairnset
