// How a command-line program opens a preset library.
#pragma once

#include <cairnset/Library.h>
#include <iostream>

#include "host/terminal/Process.h"

/// Loads the library in a folder. If it cannot be opened, reports this on standard error and
/// returns false. Also reports what the load has passed over, since nothing of it is in the
/// library.
inline bool openLibrary(const char* folder, cairnset::Library& library,
                        cairnset::Library::Access access) {
  cairnset::prepareProcess();  // otherwise a preset could be opened in place of a closed output
  if (const auto error = library.open(folder, access)) {
    std::cerr << error.message << '\n';
    return false;
  }
  for (const auto& item : library.passedOver())
    std::cerr << item.error.message << '\n';
  return true;
}

inline const char* nameOf(cairnset::Library::Kind kind) {
  constexpr const char* kNames[] = {"velocity map", "effects preset", "program", "session"};
  return kNames[static_cast<std::size_t>(kind)];
}
