// The bytes of the "Timeout" file, which holds when the instrument last ran: a local time, broken
// down. Big-endian on every host, whatever its own struct tm looks like.
//
//   file    = seconds minutes hours day month year weekday yearday dst offset unused   44 bytes
//   seconds ... dst   9 signed 32-bit integers: month from 0, year since 1900, weekday from Sunday
//                     = 0, yearday from 0, dst > 0 in daylight-saving time
//   offset  = signed 32-bit seconds east of UTC; written, but not needed to read the time
//   unused  = 4 bytes without a meaning; written as 0
#pragma once

#include <array>
#include <ctime>

namespace cairnset {

using TimeoutBytes = std::array<unsigned char, 44>;

/// The local time at `time`; all zeros for a time whose year no struct tm can hold.
TimeoutBytes encodeTimeout(std::time_t time);

/// What mktime makes of the bytes: fields out of range carry over, and -1 is a time that cannot be
/// represented. Any bytes will do.
std::time_t decodeTimeout(const TimeoutBytes& bytes);

}  // namespace cairnset
