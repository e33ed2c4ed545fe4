#include "tool/CommandLine.h"

#include <cstring>
#include <iomanip>
#include <iostream>
#include <optional>
#include <streambuf>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/files/ChangeRecord.h"
#include "host/files/DryRun.h"
#include "host/files/FileManager.h"
#include "host/files/ReplacedFile.h"
#include "host/terminal/Process.h"
#include "host/terminal/ReportText.h"
#include "presets/PresetManager.h"
#include "tool/BulkMaintenance.h"
#include "tool/DryRunReport.h"
#include "tool/FilenameRepair.h"
#include "tool/JsonWriter.h"
#include "tool/LibraryDocument.h"
#include "tool/NameChanging.h"
#include "tool/Notes.h"
#include "tool/Options.h"
#include "tool/Page.h"
#include "tool/RenameReport.h"
#include "tool/Reports.h"
#include "tool/Session.h"

namespace cairnset {

namespace {

// One for each option of the table, in its order.
std::vector<OptionName> optionNames() {
  std::vector<OptionName> names;
  for (const Option& option : kOptions)
    names.push_back({option.letter, option.word, option.argument != OptionArgument::kNone});
  return names;
}

// As it is written on the command line, with its argument's name.
std::string form(const Option& option) {
  std::string text =
      option.word != nullptr ? std::string("--") + option.word : std::string{'-', option.letter};
  if (option.argumentName != nullptr) (text += ' ') += option.argumentName;
  return text;
}

constexpr const char* kPageNotWritten = "could not be written";
constexpr const char* kHowToName =
    "name the library's folder with -e, as in: cairnset -e FOLDER -p";

void complainOf(std::string_view problem, const char* given, std::string_view remedy) {
  std::cerr << "Cairnset: " << problem << " [";
  writeGivenText(std::cerr, given);
  std::cerr << "]; " << remedy << '\n';
}

void complainOfArgument(const Option& option, const char* problem) {
  std::cerr << "Cairnset: " << form(option) << ": the " << option.argumentName << ' ' << problem
            << '\n';
}

// False, after a line on standard error, if the command line cannot be understood. Nothing may be
// loaded then: a guess could change another library than the one that was meant.
bool isUnderstood(const GivenOptions& given) {
  using Fault = GivenOptions::Fault;
  if (given.fault == Fault::kUnknownWord)
    complainOf("there is no option", given.faulty, "cairnset --help lists all options");
  if (given.fault == Fault::kUnwantedArgument)
    complainOf("no argument is possible in", given.faulty, "cairnset --help lists all options");
  if (given.fault == Fault::kNotAnOption) complainOf("not an option:", given.faulty, kHowToName);
  if (given.fault == Fault::kMissingArgument)
    complainOfArgument(kOptions[given.faultyIndex], "is missing");
  if (given.fault != Fault::kNone) return false;
  for (const auto& [index, argument, letter] : given.options) {
    if (argument == nullptr || *argument != '\0') continue;
    if (kOptions[index].argument == OptionArgument::kText) continue;
    complainOfArgument(kOptions[index], "is empty");
    return false;
  }
  return true;
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

// False if a path does not fit. Unknown letters are reported and ignored.
bool takeOptions(const char* program, const GivenOptions& given) {
  for (const auto& [index, argument, letter] : given.options) {
    if (index == GivenOptions::kUnknown) {
      writeGivenText(std::cerr, program);
      std::cerr << ": invalid option -- '";
      writeGivenText(std::cerr, {&letter, 1});
      std::cerr << "'\n";
      continue;
    }
    if (kOptions[index].flag == kExplicitPath && !takePath(argument)) return false;
  }
  return true;
}

// KIND/OLD, where OLD is the rest, separators included. Nothing for another kind.
std::optional<NameChange> parseRelink(const std::string& text) {
  for (const PresetKind kind : {kVelocityMapKind, kEffectsKind, kProgramKind}) {
    const std::string start = std::string(kindWord(kind)) + '/';
    if (text.starts_with(start)) return NameChange{kind, text.substr(start.size()), {}};
  }
  return std::nullopt;
}

// The changes that --rename, --relink and --to ask for; nothing, after a line on standard error, if
// they are not in pairs.
std::optional<std::vector<NameChange>> takeChanges(const GivenOptions& given) {
  constexpr const char* kPair = "each --rename or --relink needs one --to after it";
  std::vector<NameChange> changes;
  const char* open = nullptr;  // the argument of one that lacks its --to
  for (const auto& [index, argument, letter] : given.options) {
    const unsigned flag = index == GivenOptions::kUnknown ? 0u : kOptions[index].flag;
    if (flag == kRename || flag == kRelink) {
      if (open != nullptr) break;
      const auto change =
          flag == kRename ? NameChange{kAllKinds, argument, {}} : parseRelink(argument);
      if (!change) {
        complainOf("not KIND/OLD:", argument, "KIND is velmap, effect or program");
        return std::nullopt;
      }
      changes.push_back(*change);
      open = argument;
    } else if (flag == kNewName) {
      if (open == nullptr) {
        complainOf("a new name for nothing:", argument, kPair);
        return std::nullopt;
      }
      changes.back().newName = argument;
      open = nullptr;
    }
  }
  if (open == nullptr) return changes;
  complainOf("no new name for", open, kPair);
  return std::nullopt;
}

int runCommands(unsigned flags, const std::vector<NameChange>& changes) {
  if ((flags & ~kModifiers) == 0 || (flags & kShowUsage) != 0) printUsage();
  if ((flags & kSort) != 0) sortIntoSubdirectories();
  if ((flags & kCheckFilenames) != 0) {
    if (const int status = checkFilenames(); status != kSuccess) return status;
  }
  if ((flags & kFixFilenames) != 0) {
    if (const int status = fixFilenames(); status != kSuccess) return status;
  }
  if (!changes.empty()) {
    if (const int status = changeNames(changes); status != kSuccess) return status;
  }
  if ((flags & kListPresets) != 0) listPresets();
  if ((flags & kListDependencies) != 0) {
    if (const int status = listAllDependencies(); status != kSuccess) return status;
  }
  if ((flags & kListParents) != 0) listParents();
  return kSuccess;
}

// As long as it lives, what is written to standard output is dropped.
class DroppedReport : private std::streambuf {
 public:
  DroppedReport() : _before(std::cout.rdbuf(this)) {}
  ~DroppedReport() override { std::cout.rdbuf(_before); }
  DroppedReport(const DroppedReport&) = delete;
  DroppedReport& operator=(const DroppedReport&) = delete;

 private:
  int_type overflow(int_type byte) override { return traits_type::not_eof(byte); }
  std::streamsize xsputn(const char*, std::streamsize count) override { return count; }

  std::streambuf* _before;
};

int complainOfPage(const char* path, std::string_view problem, int status) {
  std::cerr << "Cairnset: the page [";
  writeGivenText(std::cerr, path);
  std::cerr << "] " << problem << '\n';
  return status;
}

// Loads the library and runs the commands on it, unless the page at the path could not be written
// or would be in the library; then there is no page any more.
int runOnLibrary(unsigned flags, const std::vector<NameChange>& nameChanges,
                 std::optional<ReplacedFile>& page, const char* path) {
  const auto refuse = [&](std::string_view problem, int status) {
    page.reset();
    return complainOfPage(path, problem, status);
  };
  constexpr const char* kInLibrary = "is not written: it would be in the library";
  if (page && page->status() != noErr) return refuse(kPageNotWritten, kReportNotWritten);
  // Before the load if possible, for that can change the library.
  FSRef items;
  if (page && FSPathMakeRef(path_string, &items, nullptr) == noErr && page->isBelow(items))
    return refuse(kInLibrary, kNotUnderstood);
  const bool changes =
      (flags & kDryRun) == 0 && (flags & (kSort | kFixFilenames | kRename | kRelink)) != 0;
  const int status = instantiate(changes ? Changes::kYes : Changes::kNo);
  writeNotes(takeResultNotes());
  if (status == kNoPreferences) {
    std::cerr << "Cairnset: " << kHowToName << '\n';
    if ((flags & kShowUsage) != 0) printUsage();
  }
  if (status != kSuccess) return status;
  if (page && page->isBelow(_pm->itemsFolder())) return refuse(kInLibrary, kNotUnderstood);
  writeNotes(notesOfLoad(*_pm));
  return runCommands(flags, nameChanges);
}

RunResult resultOf(int status, const std::optional<ChangeRecord>& record) {
  const FSRef folder = _pm != nullptr ? _pm->itemsFolder() : FSRef();
  return {status, record ? record->changesIn(folder) : std::vector<FileChange>()};
}

// --help and --version: the first of them counts, even if what follows cannot be understood. False
// if there is none.
bool printTextAskedFor(const GivenOptions& given) {
  for (const auto& [index, argument, letter] : given.options) {
    if (index == GivenOptions::kUnknown) continue;
    if (kOptions[index].flag == kShowHelp) return printHelp(), true;
    if (kOptions[index].flag == kShowVersion) return printVersion(), true;
  }
  return false;
}

int runSession(int argc, char** argv) {
  const GivenOptions given = readOptions(argc, argv, optionNames());
  if (printTextAskedFor(given)) return kSuccess;
  if (!isUnderstood(given)) return kNotUnderstood;
  const auto nameChanges = takeChanges(given);
  if (!nameChanges) return kNotUnderstood;

  unsigned flags = 0;
  const char* path = nullptr;
  for (const auto& [index, argument, letter] : given.options) {
    if (index == GivenOptions::kUnknown) continue;
    flags |= kOptions[index].flag;
    if (kOptions[index].flag == kHtml) path = argument;
  }
  // The commands run as ever; with --json only their text is dropped.
  std::optional<DroppedReport> dropped;
  if ((flags & kJson) != 0) dropped.emplace();
  path_string[0] = '\0';
  printVersionAndCopyright();
  setNotesWanted((flags & kQuiet) == 0);
  int status = takeOptions(argv[0], given) ? kSuccess : kPathNotResolved;
  std::cout.flush();  // loading can take a while
  std::optional<DryRun> dryRun;
  if (status == kSuccess && (flags & kDryRun) != 0) dryRun.emplace();
  std::optional<ChangeRecord> record;
  if (dryRun || (flags & (kJson | kHtml)) != 0) record.emplace();
  std::optional<ReplacedFile> page;
  if (path != nullptr) page.emplace(path);
  if (status == kSuccess) status = runOnLibrary(flags, *nameChanges, page, path);
  if (dryRun) listChanges(*record, *dryRun);
  if (page && _s != nullptr && writePage(*page, resultOf(status, record)) != kSuccess) {
    complainOfPage(path, kPageNotWritten, kReportNotWritten);
    if (status == kSuccess) status = kReportNotWritten;
  }
  dropped.reset();
  if ((flags & kJson) != 0) {
    JsonWriter json([](std::string_view text) { writeText(std::cout, text); });
    writeLibraryDocument(json, resultOf(status, record));
  }
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
  for (const Option& option : kOptions) {
    if (option.usage != nullptr)
      std::cout << "\t -" << option.letter << " \t " << option.usage << '\n';
  }
  std::cout << '\n';
}

void printVersion() {
  std::cout << "Cairnset " CAIRNSET_VERSION "\n";
}

void printHelp() {
  constexpr std::pair<OptionGroup, const char*> kGroups[] = {{OptionGroup::kLibrary, "Library"},
                                                             {OptionGroup::kReports, "Reports"},
                                                             {OptionGroup::kChanges, "Changes"},
                                                             {OptionGroup::kOutput, "Output"},
                                                             {OptionGroup::kHelp, "Help"}};
  std::cout << "Usage: cairnset [OPTION]...\n"
               "\n"
               "Maintains a library of Quenholt Olvan presets. Without -e it is the library that\n"
               "the preferences lead to.\n";
  for (const auto& [group, title] : kGroups) {
    std::cout << '\n' << title << ":\n";
    for (const Option& option : kOptions) {
      if (option.group != group) continue;
      std::cout << "  " << std::left << std::setw(20) << form(option) << ' ' << option.help << '\n';
    }
  }
  std::cout
      << "\n"
         "Letters can be combined. The commands run in the order -h -s -y -z, --rename and\n"
         "--relink as they are given, -p -d -r.\n"
         "Every run can change the library, even one that only lists it: see cairnset(1). Add\n"
         "--dry-run to see what a run would change.\n";
}

}  // namespace cairnset
