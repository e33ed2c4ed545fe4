// Writing one JSON document, piece by piece.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

namespace cairnset {

/// Puts the commas; the caller closes what it opens. Texts are written so that they are harmless
/// wherever the document goes: "<" is escaped, so that a page can hold it in a script element, and
/// so are all control characters, for terminals.
class JsonWriter {
 public:
  /// Receives the document in pieces, the last one at flush().
  using Sink = std::function<void(std::string_view)>;

  explicit JsonWriter(Sink sink) : _sink(std::move(sink)) {}
  JsonWriter(const JsonWriter&) = delete;
  JsonWriter& operator=(const JsonWriter&) = delete;

  /// The name of the next value of an object; ASCII that needs no escapes.
  JsonWriter& key(std::string_view name);

  void beginObject() { open('{'); }
  void endObject() { close('}'); }
  void beginArray() { open('['); }
  void endArray() { close(']'); }

  void number(std::int64_t value);
  /// The shortest text that is read back as this float; null for an infinity or NaN.
  void number(float value);
  void boolean(bool value) { raw(value ? "true" : "false"); }
  void null() { raw("null"); }
  /// UTF-8. Each byte that is not part of valid UTF-8 becomes U+FFFD.
  void text(std::string_view value);
  /// Mac Roman.
  void heldText(std::string_view value);

  /// What another writer has written: the members of an object, or a value.
  void written(std::string_view json) { raw(json); }

  /// Begins a line before the next value, or at the end.
  void breakLine() { _breaks_line = true; }
  void flush();

 private:
  void separate();
  void open(char bracket);
  void close(char bracket);
  void raw(std::string_view value);

  Sink _sink;
  std::string _text;
  std::string _converted;  // reused
  bool _needs_comma = false;
  bool _breaks_line = false;
};

}  // namespace cairnset
