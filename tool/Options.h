// The options of the command line. Parsing, usage and the shells' completions
// (packaging/make-completions.cpp) all come from this table.
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

struct Option {
  char letter;
  bool takesFolder;  // as its argument; the others have none
  CommandFlag flag;
  const char* description;
};

/// In the order of the usage, not that in which commands run.
inline constexpr Option kOptions[] = {
    {'e', true, kExplicitPath, "Specify an explicit Olvan Items folder to search in"},
    {'p', false, kListPresets, "List presets hierarchically"},
    {'d', false, kListDependencies, "Print and check dependencies"},
    {'r', false, kListParents, "List parents"},
    {'s', false, kSort, "Auto-sort presets into subdirectories"},
    {'y', false, kCheckFilenames, "Check file names for Windows incompatibility"},
    {'z', false, kFixFilenames,
     "Fix any file names that are Windows-incompatible and relink their parents"},
    {'h', false, kShowUsage, "Help (you're reading it)"},
};

}  // namespace cairnset
