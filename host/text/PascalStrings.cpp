#include "host/text/PascalStrings.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string_view>

#include "host/text/MacRoman.h"

namespace cairnset {

namespace {

constexpr std::size_t kMostCharacters = 255;

unsigned char* bytes(char* s) {
  return reinterpret_cast<unsigned char*>(s);
}

char* chars(unsigned char* s) {
  return reinterpret_cast<char*>(s);
}

unsigned char upper(char c) {
  return macRomanToUpper(static_cast<unsigned char>(c));
}

char asciiUpper(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

}  // namespace

void P2CInPlace(unsigned char* s) {
  P2CCopy(chars(s), s);
}

void P2CInPlace(char* s) {
  P2CInPlace(bytes(s));
}

void C2PInPlace(unsigned char* s) {
  const std::size_t length = std::strlen(chars(s));
  std::memmove(s + 1, s, length);
  s[0] = static_cast<unsigned char>(length);
}

void C2PInPlace(char* s) {
  C2PInPlace(bytes(s));
}

void P2CCopy(char* dst, const unsigned char* src) {
  const std::size_t length = src[0];
  std::memmove(dst, src + 1, length);
  dst[length] = '\0';
}

void C2PCopy(unsigned char* dst, const char* src) {
  const auto length = static_cast<unsigned char>(std::strlen(src));
  std::memmove(dst + 1, src, length);
  dst[0] = length;
}

void P2CAppendInPlace(char* dst, const unsigned char* src) {
  P2CCopy(dst + std::strlen(dst), src);
}

void C2PAppendInPlace(unsigned char* dst, const char* src) {
  const std::size_t length = std::strlen(src);
  // Past 255 characters the sum wraps; characters beyond are never part of the string.
  std::memcpy(dst + 1 + dst[0], src, std::min(length, kMostCharacters - dst[0]));
  dst[0] = static_cast<unsigned char>(dst[0] + length);
}

void CtoPstr(char* s) {
  const std::size_t length = std::min(std::strlen(s), kMostCharacters);
  std::memmove(s + 1, s, length);
  *bytes(s) = static_cast<unsigned char>(length);
}

void PtoCstr(char* s) {
  P2CInPlace(s);
}

unsigned char* PStrCat(unsigned char* dst, const unsigned char* src) {
  const std::size_t taken = std::min<std::size_t>(kMostCharacters - dst[0], src[0]);
  std::memmove(dst + 1 + dst[0], src + 1, taken);
  dst[0] = static_cast<unsigned char>(dst[0] + taken);
  return dst;
}

unsigned char* PStrCopy(unsigned char* dst, const unsigned char* src) {
  std::memmove(dst, src, src[0] + std::size_t{1});
  return dst;
}

char* CStrNCat(char* dst, unsigned long size, const char* src) {
  if (dst == nullptr || src == nullptr || size == 0) return dst;
  const std::size_t length = std::strlen(dst);
  if (length + 1 < size) std::strncat(dst, src, size - length - 1);
  return dst;
}

bool equalCString(const char* a, const char* b, bool caseSensitive) {
  if (a == nullptr || b == nullptr) return false;
  if (caseSensitive) return std::strcmp(a, b) == 0;
  const std::string_view left = a, right = b;
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [](char x, char y) { return asciiUpper(x) == asciiUpper(y); });
}

bool equalPString(const unsigned char* a, const unsigned char* b, bool caseSensitive) {
  if (a == nullptr || b == nullptr || a[0] != b[0]) return false;
  char left[kMostCharacters + 1], right[kMostCharacters + 1];
  P2CCopy(left, a);
  P2CCopy(right, b);
  return equalCString(left, right, caseSensitive);
}

int fncmp(const char* a, const char* b) {
  for (std::size_t i = 0; i < kMostCharacters; ++i) {
    if (upper(a[i]) != upper(b[i])) return 1;
    if (a[i] == '\0') return 0;
  }
  return 0;
}

std::uint32_t fncmpHash(const char* name) {
  std::uint64_t hash = 0;
  for (std::size_t i = 0; i < kMostCharacters && name[i] != '\0';) {
    std::uint64_t eight = 0;
    do
      eight = eight << 8 | upper(name[i++]);
    while (i % 8 != 0 && i < kMostCharacters && name[i] != '\0');
    hash = (hash ^ eight) * 0x9E3779B97F4A7C15u;
    hash ^= hash >> 32;
  }
  return static_cast<std::uint32_t>(hash);
}

}  // namespace cairnset
