// What a command-line program asks of the process that it runs in.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <span>
#include <string_view>
#include <vector>

#pragma GCC visibility push(default)
namespace cairnset {

/// Call this first. Opens /dev/null on those of descriptors 0 to 2 that are closed, so that no
/// preset file gets one of these numbers and a report written into it; writing to them still fails.
/// A reader that goes away ends the process quietly, also where the parent ignores SIGPIPE. A limit
/// on file size makes a write fail instead of ending the process half-way.
void prepareProcess();

/// Writes a text to standard error when there may be no memory left, not even for a stream.
void writeWithoutMemory(std::string_view text);

/// An option that a program knows: a letter, a word, or both.
struct OptionName {
  char letter;       // '\0' if it has none
  const char* word;  // without the dashes; null if it has none
  bool takesArgument;
};

/// The options that were given, up to the first thing that cannot be understood. Texts are those of
/// the command line.
struct GivenOptions {
  struct Given {
    std::size_t index;     // in the list of names; kUnknown for a letter that is not there
    const char* argument;  // null if it takes none
    char letter;           // only if unknown
  };
  enum class Fault { kNone, kUnknownWord, kMissingArgument, kUnwantedArgument, kNotAnOption };
  static constexpr std::size_t kUnknown = static_cast<std::size_t>(-1);

  std::vector<Given> options;
  Fault fault = Fault::kNone;
  const char* faulty = "";      // the argument at fault
  std::size_t faultyIndex = 0;  // the option whose argument is missing
};

/// Reads a command line as the system's getopt_long does, with three differences. Words cannot be
/// abbreviated: a new option must never change what an old command line means. Reading ends at the
/// first argument that is no option, also where the system's getopt would go on behind it. Nothing
/// is printed: getopt itself would send any byte to a terminal.
[[nodiscard]] GivenOptions readOptions(int argc, char** argv, std::span<const OptionName> names);

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
#pragma GCC visibility pop
