// list-library FOLDER: lists the presets of a library kind by kind, in the order in which the
// instrument shows them, and the references that lead nowhere. Changes nothing.
#include "OpenLibrary.h"

int main(int argc, char** argv) {
  using cairnset::Library;
  if (argc != 2) {
    std::cerr << "usage: list-library FOLDER\n";
    return 2;
  }
  Library library;
  if (!openLibrary(argv[1], library, Library::Access::kDryRun)) return 1;

  for (const Library::Preset& preset : library.presets()) {
    std::cout << nameOf(preset.kind) << (preset.isRom ? " (ROM) \"" : " \"") << preset.name << '"';
    for (const Library::Reference& use : preset.uses) {
      if (!use.preset) std::cout << ", missing: " << nameOf(use.kind) << " \"" << use.name << '"';
    }
    if (preset.isDamaged) std::cout << ", damaged";
    std::cout << '\n';
  }
  return std::cout.flush() ? 0 : 1;
}
