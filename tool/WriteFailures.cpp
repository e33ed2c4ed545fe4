#include "tool/WriteFailures.h"

#include <iostream>

#include "presets/Preset.h"

namespace cairnset {

std::string writeAndTell(Preset& preset) {
  OSErr result = preset.writeOut();
  // A file that could not even be opened is told by the status alone.
  if (result == noErr) result = preset.status();
  return result == noErr ? std::string() : writeFailure(preset, result);
}

std::string writeFailure(const Preset& preset, OSErr result) {
  std::string line = "### error " + std::to_string(result) + " occurred while writing ";
  preset.appendTreeItemInfo(line, std::cerr);
  return line += '\n';
}

}  // namespace cairnset
