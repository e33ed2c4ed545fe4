// From the command line to the commands and the exit status.
#pragma once

namespace cairnset {

/// One bit for each option.
enum CommandFlag : unsigned {
  kListPresets = 1,       // -p
  kListDependencies = 2,  // -d
  kListParents = 4,       // -r
  kSort = 8,              // -s
  kFixFilenames = 16,     // -z
  kCheckFilenames = 32,   // -y
  kShowUsage = 64,        // -h
  kExplicitPath = 128,    // -e <folder>
};

/// The whole program: reads the options, loads the library, runs the commands in their fixed order
/// (-h -s -y -z -p -d -r), and answers the exit status.
int runCommandLine(int argc, char** argv);

void printVersionAndCopyright();
void printUsage();

}  // namespace cairnset
