#include "host/terminal/ReportText.h"

#include <algorithm>
#include <iostream>
#include <streambuf>
#include <unistd.h>
#include <vector>

#include "host/text/MacRoman.h"
#include "host/text/Utf8.h"

namespace cairnset {

namespace {

std::vector<const std::streambuf*> masks;  // those that live

bool isMasked(const std::ostream& os) {
  return std::find(masks.begin(), masks.end(), os.rdbuf()) != masks.end();
}

bool isHarmless(char32_t c, std::string_view allowed) {
  if (c < 0x20) return allowed.find(static_cast<char>(c)) != std::string_view::npos;
  const bool isControl = c >= 0x7F && c < 0xA0;
  const bool isNoUtf8 = c >= 0xDC00 && c <= 0xDCFF;
  return !isControl && !isNoUtf8;
}

// `allowed` are the control characters that stay.
std::string masked(std::string_view text, std::string_view allowed) {
  std::string shown;
  while (!text.empty()) {
    const std::string_view rest = text;
    const bool stays = isHarmless(takeUtf8(text), allowed);
    shown += stays ? rest.substr(0, rest.size() - text.size()) : "?";
  }
  return shown;
}

}  // namespace

// Every text comes in one piece, so that no character is ever cut in two.
class MaskedTerminals::Mask : public std::streambuf {
 public:
  explicit Mask(std::ostream& os) : _os(os), _terminal(os.rdbuf(this)) { masks.push_back(this); }
  ~Mask() override {
    std::erase(masks, this);
    _os.rdbuf(_terminal);
  }

 protected:
  std::streamsize xsputn(const char* bytes, std::streamsize count) override {
    const std::string shown = masked({bytes, static_cast<std::size_t>(count)}, "\n\t");
    const auto size = static_cast<std::streamsize>(shown.size());
    return _terminal->sputn(shown.data(), size) == size ? count : 0;
  }
  int_type overflow(int_type byte) override {
    const char c = traits_type::to_char_type(byte);
    return traits_type::eq_int_type(byte, traits_type::eof()) || xsputn(&c, 1) == 1
               ? traits_type::not_eof(byte)
               : traits_type::eof();
  }
  int sync() override { return _terminal->pubsync(); }

 private:
  std::ostream& _os;
  std::streambuf* _terminal;
};

MaskedTerminals::MaskedTerminals() {
  if (::isatty(STDOUT_FILENO) != 0) _masks[0] = std::make_unique<Mask>(std::cout);
  if (::isatty(STDERR_FILENO) != 0) _masks[1] = std::make_unique<Mask>(std::cerr);
}

MaskedTerminals::~MaskedTerminals() = default;

void writeText(std::ostream& os, std::string_view text) {
  os.write(text.data(), static_cast<std::streamsize>(text.size()));
}

void writeGivenText(std::ostream& os, std::string_view text) {
  isMasked(os) ? writeText(os, masked(text, "")) : writeText(os, text);
}

void writeHeldName(std::ostream& os, std::string_view heldName) {
  std::string text;
  appendHeldName(text, os, heldName);
  writeText(os, text);
}

void appendHeldName(std::string& text, const std::ostream& os, std::string_view heldName) {
  const std::size_t start = text.size();
  appendUtf8FromMacRoman(heldName, text);
  if (!isMasked(os)) return;
  const std::string shown = masked(std::string_view(text).substr(start), "");
  text.resize(start);
  text += shown;
}

void writeHeldText(std::ostream& os, std::string_view heldText) {
  std::string text;
  appendUtf8FromMacRoman(heldText, text);
  writeText(os, text);
}

std::string shownName(const std::ostream& os, std::string_view heldName) {
  std::string name(heldName);
  const auto isControl = [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; };
  if (isMasked(os)) std::replace_if(name.begin(), name.end(), isControl, '?');
  return name;
}

}  // namespace cairnset
