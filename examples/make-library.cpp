// make-library FOLDER COUNT [SHAPE]: writes an example library.
#include <charconv>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <numeric>
#include <system_error>

#include "ExampleLibrary.h"
#include "ExampleWords.h"
#include "host/files/FileManager.h"

namespace cairnset {

namespace {

enum : int { kWritten = 0, kNotWritten = 1, kWrongArguments = 2 };

int usage() {
  std::cerr << "usage: make-library FOLDER COUNT [SHAPE]\n"
               "  FOLDER  does not exist yet, or is empty\n"
               "  COUNT   how many presets, from "
            << kSmallestLibrary << " to " << kLargestLibrary << "\n  SHAPE  ";
  for (const std::string_view shape : kLibraryShapes)
    std::cerr << ' ' << shape;
  std::cerr << '\n';
  return kWrongArguments;
}

int refuse(const char* folder, const std::string& why) {
  std::cerr << "make-library: nothing written to " << folder << ": " << why << '\n';
  return kNotWritten;
}

bool readCount(const char* text, std::size_t& count) {
  const char* const end = text + std::strlen(text);
  const auto [last, error] = std::from_chars(text, end, count);
  return error == std::errc() && last == end && count >= kSmallestLibrary &&
         count <= kLargestLibrary;
}

void printSummary(const char* folder, const LibrarySummary& s) {
  std::cout << "Wrote " << std::accumulate(s.presets.begin(), s.presets.end(), std::size_t{0})
            << " presets in " << s.folders << " folders to " << folder << ":\n ";
  for (std::size_t kind = 0; kind < s.presets.size(); ++kind) {
    std::cout << (kind == 0 ? " " : ", ") << s.presets[kind] << ' ' << words::kKinds[kind].name;
  }
  std::cout << "\n  " << s.rejectedNames << " with names that Windows rejects, " << s.loose
            << " loose in the kinds' root folders,\n  " << s.lostReferences
            << " references that lead nowhere\n";
}

int run(int argc, char** argv) {
  std::size_t count = 0;
  if (argc < 3 || argc > 4 || !readCount(argv[2], count)) return usage();
  const auto shape = argc < 4 ? LibraryShape::kTypical : libraryShapeNamed(argv[3]);
  if (!shape) return usage();

  const char* const folder = argv[1];
  std::error_code error;
  if (std::filesystem::exists(folder, error)) {
    if (!std::filesystem::is_directory(folder, error)) return refuse(folder, "it is no folder");
    if (!std::filesystem::is_empty(folder, error) && !error) {
      return refuse(folder, "the folder is not empty");
    }
  } else if (!error) {
    std::filesystem::create_directories(folder, error);
  }
  if (error) return refuse(folder, error.message());

  FSRef items;
  LibrarySummary summary;
  OSStatus status = FSPathMakeRef(folder, &items, nullptr);
  if (status == noErr) status = makeExampleLibrary(items, count, *shape, summary);
  if (status != noErr) {
    std::cerr << "make-library: stopped half-way in " << folder << ": file system error " << status
              << '\n';
    return kNotWritten;
  }
  printSummary(folder, summary);
  return std::cout.flush() ? kWritten : kNotWritten;
}

}  // namespace

}  // namespace cairnset

int main(int argc, char** argv) {
  return cairnset::run(argc, argv);
}
