#include "tool/CommandLine.h"

#include <cstring>
#include <iostream>
#include <string>

#include "host/terminal/Process.h"
#include "host/terminal/ReportText.h"
#include "tool/BulkMaintenance.h"
#include "tool/FilenameRepair.h"
#include "tool/Options.h"
#include "tool/Reports.h"
#include "tool/Session.h"

namespace cairnset {

namespace {

// In getopt's format.
std::string optionLetters() {
  std::string letters;
  for (const Option& option : kOptions) {
    letters += option.letter;
    if (option.takesFolder) letters += ':';
  }
  return letters;
}

// False if the path does not fit. It is never truncated: that could name another folder.
bool takePath(const char* path) {
  const std::size_t length = std::strlen(path);
  if (length >= kPathStringSize) {
    std::cerr << "Cairnset: the -e path is too long (" << length << " bytes, at most "
              << kPathStringSize - 1 << "): [";
    writeGivenText(std::cerr, path);
    std::cerr << "]\n";
    return false;
  }
  std::memcpy(path_string, path, length + 1);
  std::cout << "Cairnset explicit path set to: [";
  writeGivenText(std::cout, path_string);
  std::cout << "]\n";
  return true;
}

// Unknown options are ignored; getopt has reported them.
bool readOptions(int argc, char** argv, unsigned& flags) {
  const std::string letters = optionLetters();
  restartOptions();
  for (int letter = 0; (letter = nextOption(argc, argv, letters.c_str())) != -1;) {
    for (const Option& option : kOptions) {
      if (letter != option.letter) continue;
      flags |= option.flag;
      if (option.flag == kExplicitPath && !takePath(optionArgument())) return false;
    }
  }
  return true;
}

int runCommands(unsigned flags) {
  if (flags == 0 || (flags & kShowUsage) != 0) printUsage();
  if ((flags & kSort) != 0) sortIntoSubdirectories();
  if ((flags & kCheckFilenames) != 0) {
    if (const int status = checkFilenames(); status != kSuccess) return status;
  }
  if ((flags & kFixFilenames) != 0) {
    if (const int status = fixFilenames(); status != kSuccess) return status;
  }
  if ((flags & kListPresets) != 0) listPresets();
  if ((flags & kListDependencies) != 0) {
    if (const int status = listAllDependencies(); status != kSuccess) return status;
  }
  if ((flags & kListParents) != 0) listParents();
  return kSuccess;
}

int runSession(int argc, char** argv) {
  unsigned flags = 0;
  path_string[0] = '\0';
  printVersionAndCopyright();
  if (!readOptions(argc, argv, flags)) return kPathNotResolved;
  std::cout.flush();  // loading can take a while
  int status = instantiate();
  if (status == kSuccess) status = runCommands(flags);
  deinstantiate();
  return status;
}

}  // namespace

int runCommandLine(int argc, char** argv) {
  const int status = runSession(argc, argv);
  std::cout.flush();
  if (!std::cout) {
    std::cerr << "Cairnset: the report could not be written\n";
    return status == kSuccess ? kReportNotWritten : status;
  }
  return status;
}

void printVersionAndCopyright() {
  // The date is fixed text, the same in every build.
  std::cout << "\n"
               "Cairnset v" CAIRNSET_VERSION
               "  Jul 11 2008 09:28:09\n"
               "Copyright (c) 2008-2026 the Cairnset authors\n";
}

void printUsage() {
  std::cout << "\n"
               "Cairnset is a command-line utility for managing Quenholt Olvan presets.\n"
               "\n"
               "Cairnset options:\n";
  for (const Option& option : kOptions)
    std::cout << "\t -" << option.letter << " \t " << option.description << '\n';
  std::cout << '\n';
}

}  // namespace cairnset
