#include <cstdlib>
#include <iostream>
#include <new>

#include "host/terminal/Process.h"
#include "host/terminal/ReportText.h"
#include "tool/CommandLine.h"
#include "tool/Session.h"

namespace {

[[noreturn]] void endWithoutMemory() {
  cairnset::writeWithoutMemory("Cairnset: there is not enough memory\n");
  std::_Exit(cairnset::kOutOfMemory);
}

}  // namespace

int main(int argc, char** argv) try {
  // There may not be the memory to throw an exception either.
  std::set_new_handler(endWithoutMemory);
  cairnset::prepareProcess();
  // Reports are written in large pieces. Standard error is unbuffered and flushes them first.
  std::ios::sync_with_stdio(false);
  const cairnset::MaskedTerminals masked;
  return cairnset::runCommandLine(argc, argv);
} catch (const std::bad_alloc&) {
  endWithoutMemory();  // the kernel's own memory: ENOMEM
}
