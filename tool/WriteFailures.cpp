#include "tool/WriteFailures.h"

#include <iostream>
#include <string>

#include "host/terminal/ReportText.h"
#include "presets/Preset.h"

namespace cairnset {

void reportWriteFailure(const Preset& preset, OSErr result, const char* name) {
  if (result == noErr) return;
  std::string line = "### error " + std::to_string(result) + " occurred while writing ";
  preset.appendTreeItemInfo(line, std::cerr, name);
  writeText(std::cerr, line.append(1, '\n'));
}

}  // namespace cairnset
