// find-users FOLDER NAME: lists the presets of a library that use one called NAME, also if there is
// none of that name. Changes nothing.
#include "OpenLibrary.h"

int main(int argc, char** argv) {
  using cairnset::Library;
  if (argc != 3) {
    std::cerr << "usage: find-users FOLDER NAME\n";
    return 2;
  }
  Library library;
  if (!openLibrary(argv[1], library, Library::Access::kDryRun)) return 1;

  const auto presets = library.presets();
  for (const auto kind :
       {Library::Kind::kEffects, Library::Kind::kProgram, Library::Kind::kVelocityMap}) {
    for (const std::size_t user : library.usersOf(kind, argv[2]))
      std::cout << presets[user].path << " uses it as its " << nameOf(kind) << '\n';
  }
  return std::cout.flush() ? 0 : 1;
}
