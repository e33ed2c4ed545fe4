#include "tool/WriteFailures.h"

#include <ostream>

#include "presets/Preset.h"

namespace cairnset {

bool writeAndReport(Preset& preset, std::ostream& errors) {
  OSErr result = preset.writeOut();
  // A file that could not even be opened is told by the status alone.
  if (result == noErr) result = preset.status();
  if (result != noErr) reportWriteFailure(preset, result, errors);
  return result == noErr;
}

void reportWriteFailure(const Preset& preset, OSErr result, std::ostream& errors) {
  errors << "### error " << result << " occurred while writing ";
  preset.printTreeItemInfo(errors, 0);
  errors << '\n';
}

}  // namespace cairnset
