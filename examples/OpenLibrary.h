// How a program opens a preset library.
#pragma once

#include <iostream>

#include "host/files/FileManager.h"
#include "host/terminal/Process.h"
#include "presets/PresetManager.h"

namespace cairnset {

/// Loads the library at `path`, which also creates missing folders and "Default"s. If it cannot be
/// opened, reports this on standard error and returns false.
inline bool openLibrary(const char* path, PresetManager& library) {
  prepareProcess();  // otherwise a preset could be opened in the place of a closed standard output
  FSRef items;
  OSStatus status = FSPathMakeRef(path, &items, nullptr);
  if (status == noErr) status = library.setOlvanItemsFSRef(items);
  if (status != noErr) std::cerr << "No library at " << path << ": error " << status << '\n';
  if (status == noErr) library.openAllPresets();
  return status == noErr;
}

}  // namespace cairnset
