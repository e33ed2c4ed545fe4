#include "host/text/Tokenizer.h"

#include <algorithm>
#include <string_view>

namespace cairnset {

namespace {

bool isOneOf(char c, std::string_view set) {
  return set.find(c) != std::string_view::npos;
}

}  // namespace

void skipJunk(char** pos, char* end) {
  while (*pos < end && isOneOf(**pos, " ,\t"))
    ++*pos;
}

void skipLine(char** pos, char* end) {
  while (*pos < end && **pos != '\0') {
    const char passed = *(*pos)++;
    if (passed == '\n' || passed == '\r') break;
  }
}

long getToken(char** pos, char* end) {
  if (pos == nullptr || *pos == nullptr || end == nullptr || *pos > end) return 0;
  skipJunk(pos, end);
  if (*pos == end) return 0;
  const bool isQuoted = **pos == '"';
  if (isQuoted) ++*pos;
  const std::string_view stops = isQuoted ? "\"\t\n\r" : " \t\n\r";
  return static_cast<long>(std::find_if(*pos, end, [&](char c) { return isOneOf(c, stops); }) -
                           *pos);
}

}  // namespace cairnset
