// Shared by the fuzz targets.
#pragma once

#include <fuzzer/FuzzedDataProvider.h>

#include "tests/Testing.h"

namespace cairnset {

/// Up to `most` bytes without a NUL.
inline std::string takeText(FuzzedDataProvider& input, std::size_t most) {
  std::string text = input.ConsumeRandomLengthString(most);
  std::erase(text, '\0');
  return text;
}

}  // namespace cairnset
