// rename-preset FOLDER PRESET NAME [rehearse]: renames the preset at the path PRESET (below
// "Presets"), with all references to it. "rehearse" shows what that would change, and changes
// nothing.
#include <string_view>

#include "OpenLibrary.h"

int main(int argc, char** argv) {
  using cairnset::Library;
  const bool isRehearsal = argc == 5 && std::string_view(argv[4]) == "rehearse";
  if (argc != 4 && !isRehearsal) {
    std::cerr << "usage: rename-preset FOLDER PRESET NAME [rehearse]\n";
    return 2;
  }
  Library library;
  const auto access = isRehearsal ? Library::Access::kDryRun : Library::Access::kChange;
  if (!openLibrary(argv[1], library, access)) return 1;

  const cairnset::HeldSignals held(&std::cout);  // Ctrl-C ends the program after the rename
  const Library::Rename rename{argv[2], argv[3]};
  const Library::Outcome outcome = library.rename({&rename, 1});
  for (const std::string& path : outcome.renamed)
    std::cout << "renamed to " << path << '\n';
  for (const std::string& path : outcome.rewritten)
    std::cout << "reference updated in " << path << '\n';
  for (const Library::Change& change : library.changes())
    std::cout << "would change " << change.path << '\n';
  for (const Library::Error& error : outcome.errors)
    std::cerr << error.message << '\n';
  return std::cout.flush() && outcome.errors.empty() ? 0 : 1;
}
