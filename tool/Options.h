// The options of the command line. Parsing, the usage, --help and the shells' completions
// (packaging/make-completions.cpp) all come from this table, and the manual is checked against it.
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
  kExplicitPath = 128,    // -e FOLDER
  kShowHelp = 256,        // --help
  kShowVersion = 512,     // --version
  kQuiet = 1024,          // --quiet
  kDryRun = 2048,         // --dry-run
  kRename = 4096,         // --rename PRESET
  kRelink = 8192,         // --relink KIND/OLD
  kNewName = 16384,       // --to NAME
  kJson = 32768,          // --json
  kHtml = 65536,          // --html FILE
};

/// The flags that change how a run goes and not what it does: with no others, the usage is printed
/// as without any option.
inline constexpr unsigned kModifiers = kQuiet | kDryRun;

/// What kind of argument an option takes. An empty path is refused; an empty text is not.
enum class OptionArgument { kNone, kFolder, kFile, kText };

/// Where --help lists an option.
enum class OptionGroup { kLibrary, kReports, kChanges, kOutput, kHelp };

struct Option {
  CommandFlag flag;
  OptionGroup group;
  char letter;       // '\0' if it has none
  const char* word;  // without the dashes; null if it has none
  OptionArgument argument;
  const char* argumentName;  // as --help shows it; null without an argument
  const char* usage;  // for -h, which shows letters only: its text is fixed; null if not shown
  const char* help;   // for --help and the completions: one line of at most 56 characters
};

/// The letters are in the order of the usage, which is not the order in which commands run.
inline constexpr Option kOptions[] = {
    {kExplicitPath, OptionGroup::kLibrary, 'e', nullptr, OptionArgument::kFolder, "FOLDER",
     "Specify an explicit Olvan Items folder to search in", "use the library in this folder"},
    {kListPresets, OptionGroup::kReports, 'p', nullptr, OptionArgument::kNone, nullptr,
     "List presets hierarchically", "list the presets as a tree of folders"},
    {kListDependencies, OptionGroup::kReports, 'd', nullptr, OptionArgument::kNone, nullptr,
     "Print and check dependencies", "check that every reference leads to a preset"},
    {kListParents, OptionGroup::kReports, 'r', nullptr, OptionArgument::kNone, nullptr,
     "List parents", "list which presets refer to each preset"},
    {kSort, OptionGroup::kChanges, 's', nullptr, OptionArgument::kNone, nullptr,
     "Auto-sort presets into subdirectories", "sort loose presets into folders"},
    {kCheckFilenames, OptionGroup::kReports, 'y', nullptr, OptionArgument::kNone, nullptr,
     "Check file names for Windows incompatibility", "check the names for what Windows rejects"},
    {kFixFilenames, OptionGroup::kChanges, 'z', nullptr, OptionArgument::kNone, nullptr,
     "Fix any file names that are Windows-incompatible and relink their parents",
     "repair these names and the references to them"},
    {kRename, OptionGroup::kChanges, '\0', "rename", OptionArgument::kFile, "PRESET", nullptr,
     "rename a preset, and all references to it; needs --to"},
    {kRelink, OptionGroup::kChanges, '\0', "relink", OptionArgument::kText, "KIND/OLD", nullptr,
     "redirect the references to this name; needs --to"},
    {kNewName, OptionGroup::kChanges, '\0', "to", OptionArgument::kText, "NAME", nullptr,
     "the new name for the last --rename or --relink"},
    {kShowUsage, OptionGroup::kHelp, 'h', nullptr, OptionArgument::kNone, nullptr,
     "Help (you're reading it)", "load the library, then list the options that are letters"},
    {kDryRun, OptionGroup::kChanges, '\0', "dry-run", OptionArgument::kNone, nullptr, nullptr,
     "change nothing, and list what would be changed"},
    {kJson, OptionGroup::kOutput, '\0', "json", OptionArgument::kNone, nullptr, nullptr,
     "print the library as JSON instead of the reports"},
    {kHtml, OptionGroup::kOutput, '\0', "html", OptionArgument::kFile, "FILE", nullptr,
     "write the library to FILE, as a page for a browser"},
    {kQuiet, OptionGroup::kOutput, '\0', "quiet", OptionArgument::kNone, nullptr, nullptr,
     "leave out the notes on standard error"},
    {kShowHelp, OptionGroup::kHelp, '\0', "help", OptionArgument::kNone, nullptr, nullptr,
     "show this help and end; no library is touched"},
    {kShowVersion, OptionGroup::kHelp, '\0', "version", OptionArgument::kNone, nullptr, nullptr,
     "show the version and end; no library is touched"},
};

}  // namespace cairnset
