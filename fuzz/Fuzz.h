// What the fuzz targets share.
#pragma once

#include <algorithm>
#include <cstring>
#include <fuzzer/FuzzedDataProvider.h>
#include <memory>
#include <string>

#include "tests/Check.h"

namespace cairnset {

/// A copy with `room` bytes and a NUL behind it, and not one more, so that reading or writing
/// beyond is seen.
inline std::unique_ptr<char[]> exactCopy(const std::string& text, std::size_t room = 0) {
  auto copy = std::make_unique<char[]>(text.size() + room + 1);
  std::copy(text.begin(), text.end(), copy.get());
  return copy;
}

/// Up to `most` bytes without a NUL.
inline std::string takeText(FuzzedDataProvider& input, std::size_t most) {
  std::string text = input.ConsumeRandomLengthString(most);
  std::erase(text, '\0');
  return text;
}

}  // namespace cairnset
