#include <iostream>

#include "host/terminal/Process.h"
#include "host/terminal/ReportText.h"
#include "tool/CommandLine.h"

int main(int argc, char** argv) {
  cairnset::prepareProcess();
  // Reports are written in large pieces. Standard error is unbuffered and flushes them first.
  std::ios::sync_with_stdio(false);
  const cairnset::MaskedTerminals masked;
  return cairnset::runCommandLine(argc, argv);
}
