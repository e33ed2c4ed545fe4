// The command line: options, commands and exit status.
#pragma once

namespace cairnset {

/// The whole program: reads the options, loads the library, runs the commands in their fixed order
/// (-h -s -y -z -p -d -r), and returns the exit status.
[[nodiscard]] int runCommandLine(int argc, char** argv);

void printVersionAndCopyright();
void printUsage();
/// One line, for --version.
void printVersion();
/// All options, in groups, for --help.
void printHelp();

}  // namespace cairnset
