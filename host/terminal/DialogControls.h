// Setting the text of a dialog's controls. There are no dialogs on this host: a control is the
// value that one would show.
#pragma once

#include <cstddef>
#include <cstdio>
#include <string>

namespace cairnset {

struct Control {
  std::string text;
};
using ControlRef = Control*;

/// The number as a signed decimal.
inline void setEditText(ControlRef control, long value) {
  control->text = std::to_string(value);
}
/// The number with `decimals` places.
inline void setEditText(ControlRef control, float value, int decimals) {
  const auto number = static_cast<double>(value);
  const int length = std::snprintf(nullptr, 0, "%.*f", decimals, number);
  control->text.resize(static_cast<std::size_t>(length < 0 ? 0 : length));
  if (length > 0)
    std::snprintf(control->text.data(), control->text.size() + 1, "%.*f", decimals, number);
}

inline void setStaticText(ControlRef control, const char* text) {
  control->text = text;
}

}  // namespace cairnset
