// How the fields of a preset file are written and read: big-endian, packed, names at full width.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <type_traits>

#include "storage/ByteOrder.h"
#include "storage/VirtualFile.h"

#pragma GCC visibility push(default)
namespace cairnset {

/// A view of the name in a field of fixed width, padded with zeros. A name that fills its field has
/// no terminator.
template <std::size_t kWidth>
std::string_view nameInField(const char (&field)[kWidth]) {
  const void* end = std::memchr(field, '\0', kWidth);
  return {field, end != nullptr ? static_cast<std::size_t>(static_cast<const char*>(end) - field)
                                : kWidth};
}

/// Stores a name in its field, padded with zeros. A name that does not fit is truncated.
template <std::size_t kWidth>
void setNameInField(char (&field)[kWidth], std::string_view name) {
  const std::size_t length = std::min(name.size(), kWidth);
  std::memcpy(field, name.data(), length);
  std::memset(field + length, 0, kWidth - length);
}

template <typename T>
void writeField(VirtualFile& file, const T& value) {
  if constexpr (std::is_array_v<T> || sizeof(T) == 1) {
    file.write(&value, sizeof value);
  } else if constexpr (sizeof(T) == 2) {
    file.write2(&value, kSwapToFileOrder);
  } else {
    static_assert(sizeof(T) == 4);
    file.write4(&value, kSwapToFileOrder);
  }
}

/// A read past the end behaves as VirtualFile::read, which can keep some of the old bytes. The old
/// value is converted to file order first, so that these are the same bytes on every machine.
template <typename T>
void readField(VirtualFile& file, T& value) {
  if constexpr (std::is_array_v<T> || sizeof(T) == 1) {
    file.read(&value, sizeof value);
  } else {
    using Word = std::conditional_t<sizeof(T) == 2, std::uint16_t, std::uint32_t>;
    static_assert(sizeof(T) == sizeof(Word));
    auto word = std::bit_cast<Word>(value);
    char bytes[sizeof(Word)];
    for (std::size_t i = 0; i < sizeof bytes; ++i) {
      bytes[i] = static_cast<char>(word >> (8 * (sizeof bytes - 1 - i)) & 0xFF);
    }
    file.read(bytes, sizeof bytes);
    word = 0;
    for (const char byte : bytes) {
      word = static_cast<Word>(word << 8 | static_cast<unsigned char>(byte));
    }
    value = std::bit_cast<T>(word);
  }
}

}  // namespace cairnset
#pragma GCC visibility pop
