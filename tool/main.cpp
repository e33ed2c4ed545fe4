#include "host/Process.h"
#include "tool/CommandLine.h"

int main(int argc, char** argv) {
  cairnset::prepareProcess();
  return cairnset::runCommandLine(argc, argv);
}
