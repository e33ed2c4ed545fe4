#include "host/terminal/Alerts.h"
#include "tests/Testing.h"

namespace cairnset {

TEST(AlertsTest, OnStandardError) {
  const std::string endless(2000, 'n');
  char detail[3 + 6 + 13 + 1] = "a%n";
  testing::internal::CaptureStderr();
  displayFileManagerErrorWhileOpening(-43, ("\r" + endless).c_str(), endless.c_str(), 1);
  displayErrorStringsWithCode(nullptr, detail, "b\r.cpp", -2147483647 - 1);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Olvan reports a file system error while opening  " + endless.substr(0, 1023) +
                ".\nResult code = -43. " + endless.substr(0, 1023 - 19) +
                "\nAn unknown Olvan error has occurred\na%n b .cpp:-2147483648\n");
}

// In a process of its own, for the switches cannot be set back.
TEST(AlertsTest, OnStandardOutput) {
  const auto show = [] {
    std::cout.rdbuf(std::cerr.rdbuf());
    setPIAlertStdOut(), disablePIAlertWindows();
    displayErrorStrings("%s, %s 100%% %d%", "%s%%\r%");
    displayErrorStrings("%6s|%1$-5s|%1$.2s|%1$s|%1$5.1s|%1$.s|%s|%2$s|%ls|%*s|%1$4096s|%1$", "abc");
    displayErrorStrings("[%-3.5s]%n", nullptr);
    displayErrorStrings(nullptr, "\x8E");
    std::_Exit(0);
  };
  EXPECT_EXIT(show(), testing::ExitedWithCode(0),
              testing::Eq("%s%%\r%, %s 100% %d%\n%s%\r%\n"
                          "   abc|abc  |ab|abc|    a||%s|%2$s|%ls|%*s|%1$4096s|%1$\nabc\n"
                          "[   ]%n\né\n"));
}

}  // namespace cairnset
