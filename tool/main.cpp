#include <iostream>
#include <new>

#include "host/terminal/Process.h"
#include "host/terminal/ReportText.h"
#include "tool/CommandLine.h"
#include "tool/Session.h"

int main(int argc, char** argv) try {
  cairnset::prepareProcess();
  // Reports are written in large pieces. Standard error is unbuffered and flushes them first.
  std::ios::sync_with_stdio(false);
  const cairnset::MaskedTerminals masked;
  return cairnset::runCommandLine(argc, argv);
} catch (const std::bad_alloc&) {
  cairnset::writeWithoutMemory("Cairnset: there is not enough memory\n");
  return cairnset::kOutOfMemory;
}
