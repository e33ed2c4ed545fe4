// A preset file of any kind: the input is the file.

#include "tests/presets/PresetTest.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const cairnset::TestFolder folder;
  cairnset::checkPresetFile(folder, {reinterpret_cast<const char*>(data), size});
  return 0;
}
