#include "host/terminal/DialogControls.h"

#include <cstddef>
#include <cstdio>

namespace cairnset {

void setEditText(ControlRef control, long value) {
  control->text = std::to_string(value);
}

void setEditText(ControlRef control, float value, int decimals) {
  const auto number = static_cast<double>(value);
  const int length = std::snprintf(nullptr, 0, "%.*f", decimals, number);
  control->text.resize(static_cast<std::size_t>(length < 0 ? 0 : length));
  if (length > 0)
    std::snprintf(control->text.data(), control->text.size() + 1, "%.*f", decimals, number);
}

void setStaticText(ControlRef control, const char* text) {
  control->text = text;
}

}  // namespace cairnset
