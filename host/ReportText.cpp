#include "host/ReportText.h"

#include <algorithm>
#include <ostream>

#include "host/MacRoman.h"

namespace cairnset {

void writeHeldName(std::ostream& os, std::string_view heldName) {
  const bool isAscii = std::all_of(heldName.begin(), heldName.end(),
                                   [](char c) { return static_cast<unsigned char>(c) < 0x80; });
  const std::string converted = isAscii ? std::string() : utf8FromMacRoman(heldName);
  const std::string_view text = isAscii ? heldName : std::string_view(converted);
  os.write(text.data(), static_cast<std::streamsize>(text.size()));
}

}  // namespace cairnset
