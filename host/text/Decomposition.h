// Canonical decomposition and lower case, as the instrument's host has them for names.
#pragma once

#include <string>
#include <string_view>

namespace cairnset {

/// The characters of a UTF-16 text, fully decomposed, marks in canonical order, so that composed
/// and decomposed copies of one name give the same. As that host does, the characters
/// U+2000-U+2FFF, U+F900-U+FAFF and U+2F800-U+2FAFF stay composed. A lone surrogate stays as it is.
std::u32string decomposed(std::u16string_view text);

/// Whether the character belongs to the one before it: combining marks, and anything else that
/// comes second in a decomposition.
bool joinsPrevious(char32_t character);

/// The lower-case form of a character that does not decompose; itself where it has none, or more
/// than one character for it.
char32_t lowerCase(char32_t character);

}  // namespace cairnset
