#include "host/preferences/TimeoutFile.h"

#include <cstdint>
#include <time.h>

namespace cairnset {

namespace {

constexpr int std::tm::*kFields[] = {&std::tm::tm_sec,  &std::tm::tm_min,  &std::tm::tm_hour,
                                     &std::tm::tm_mday, &std::tm::tm_mon,  &std::tm::tm_year,
                                     &std::tm::tm_wday, &std::tm::tm_yday, &std::tm::tm_isdst};

}  // namespace

TimeoutBytes encodeTimeout(std::time_t time) {
  TimeoutBytes bytes = {};
  struct tm local = {};
  if (::localtime_r(&time, &local) == nullptr) return bytes;
  auto next = bytes.begin();
  const auto put = [&next](long value) {
    for (int shift = 24; shift >= 0; shift -= 8)
      *next++ = static_cast<unsigned char>(static_cast<std::uint32_t>(value) >> shift);
  };
  for (const auto field : kFields)
    put(local.*field);
  put(local.tm_gmtoff);
  return bytes;
}

std::time_t decodeTimeout(const TimeoutBytes& bytes) {
  struct tm local = {};
  auto next = bytes.begin();
  for (const auto field : kFields) {
    std::uint32_t bits = 0;
    for (int i = 0; i < 4; ++i)
      bits = bits << 8 | *next++;
    local.*field = static_cast<std::int32_t>(bits);
  }
  return std::mktime(&local);
}

}  // namespace cairnset
