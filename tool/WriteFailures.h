// Writing a preset back and telling of a failure.
#pragma once

namespace cairnset {

class Preset;

/// Writes the preset to its file. Where that fails a line on standard error says so, with the
/// result code and the preset, and the answer is false.
bool writeAndReport(Preset& preset);

}  // namespace cairnset
