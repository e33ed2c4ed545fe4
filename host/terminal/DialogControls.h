// Setting the text of a dialog's controls. There are no dialogs on this host: a control is the
// value that one would show.
#pragma once

#include <string>

namespace cairnset {

struct Control {
  std::string text;
};
using ControlRef = Control*;

/// The number as a signed decimal.
void setEditText(ControlRef control, long value);
/// The number with `decimals` places.
void setEditText(ControlRef control, float value, int decimals);
void setStaticText(ControlRef control, const char* text);

}  // namespace cairnset
