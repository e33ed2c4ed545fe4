#include "tool/WriteFailures.h"

#include <iostream>

#include "presets/Preset.h"

namespace cairnset {

bool writeAndReport(Preset& preset) {
  OSErr result = preset.writeOut();
  // A file that could not even be opened is told by the status alone.
  if (result == noErr) result = preset.status();
  if (result == noErr) return true;
  std::cerr << "### error " << result << " occurred while writing ";
  preset.printTreeItemInfo(std::cerr, 0);
  std::cerr << '\n';
  return false;
}

}  // namespace cairnset
