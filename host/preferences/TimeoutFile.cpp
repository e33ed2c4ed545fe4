#include "host/preferences/TimeoutFile.h"

#include <cstddef>
#include <cstdint>
#include <time.h>

namespace cairnset {

namespace {

constexpr int std::tm::*kFields[] = {&std::tm::tm_sec,  &std::tm::tm_min,  &std::tm::tm_hour,
                                     &std::tm::tm_mday, &std::tm::tm_mon,  &std::tm::tm_year,
                                     &std::tm::tm_wday, &std::tm::tm_yday, &std::tm::tm_isdst};
constexpr std::size_t kOffsetOfUtcOffset = 36;

void putInteger(TimeoutBytes& bytes, std::size_t at, long value) {
  const auto bits = static_cast<std::uint32_t>(value);
  for (std::size_t i = 0; i < 4; ++i)
    bytes[at + i] = static_cast<unsigned char>(bits >> (24 - 8 * i));
}

std::int32_t integerAt(const TimeoutBytes& bytes, std::size_t at) {
  std::uint32_t bits = 0;
  for (std::size_t i = 0; i < 4; ++i)
    bits = bits << 8 | bytes[at + i];
  return static_cast<std::int32_t>(bits);
}

}  // namespace

TimeoutBytes encodeTimeout(std::time_t time) {
  TimeoutBytes bytes = {};
  struct tm local = {};
  if (::localtime_r(&time, &local) == nullptr) return bytes;
  std::size_t at = 0;
  for (const auto field : kFields) {
    putInteger(bytes, at, local.*field);
    at += 4;
  }
  putInteger(bytes, kOffsetOfUtcOffset, local.tm_gmtoff);
  return bytes;
}

std::time_t decodeTimeout(const TimeoutBytes& bytes) {
  struct tm local = {};
  std::size_t at = 0;
  for (const auto field : kFields) {
    local.*field = integerAt(bytes, at);
    at += 4;
  }
  return std::mktime(&local);
}

}  // namespace cairnset
