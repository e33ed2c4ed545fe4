// What a command-line program asks of the process that it runs in.
#pragma once

#include <iosfwd>

namespace cairnset {

/// Call this first. Opens /dev/null on those of descriptors 0 to 2 that are closed, so that no
/// preset file gets one of these numbers and a report written into it; writing to them still fails.
/// A reader that goes away ends the process quietly, also where the parent ignores SIGPIPE. A limit
/// on file size makes a write fail instead of ending the process half-way.
void prepareProcess();

/// The next option letter, as the system's getopt finds it; -1 at the end, '?' for one that is not
/// in `options`. The complaint goes through std::cerr, in the same words everywhere; getopt itself
/// would send any byte to a terminal.
int nextOption(int argc, char** argv, const char* options);
/// The argument of the option that was found last.
const char* optionArgument();
/// Starts over, for another set of arguments.
void restartOptions();

/// Blocks SIGINT, SIGTERM and SIGHUP as long as it lives, for steps that must not be left
/// half-done. At the end `report` (may be null) is flushed, so that it has all that was done, and a
/// pending signal is delivered.
class HeldSignals {
 public:
  explicit HeldSignals(std::ostream* report = nullptr);
  ~HeldSignals();
  HeldSignals(const HeldSignals&) = delete;
  HeldSignals& operator=(const HeldSignals&) = delete;

 private:
  std::ostream* _report;
};

/// As long as it lives, a reader of `report` that goes away makes writing fail instead of ending
/// the process, for commands that change files. The report is flushed at the end.
class OutlivesReader {
 public:
  explicit OutlivesReader(std::ostream& report);
  ~OutlivesReader();
  OutlivesReader(const OutlivesReader&) = delete;
  OutlivesReader& operator=(const OutlivesReader&) = delete;

 private:
  std::ostream& _report;
  void (*_before)(int);
};

}  // namespace cairnset
