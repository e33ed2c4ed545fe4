#include "host/terminal/Alerts.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <iostream>
#include <string>
#include <string_view>

#include "host/files/FileManager.h"
#include "host/terminal/ReportText.h"
#include "host/text/NameConversions.h"
#include "host/text/PathStrings.h"

namespace cairnset {

namespace {

std::int32_t _show_alerts = 1;
std::int32_t stdout_mode = 0;
[[maybe_unused]] TEHandle _te_handle = nullptr;
[[maybe_unused]] DialogRef _dialog = nullptr;

constexpr const char* kUnknownError = "An unknown Olvan error has occurred";
constexpr std::size_t kMostDetail = 1023;
constexpr std::size_t kMostName = 1024;
constexpr std::size_t kSpecNameSize = sizeof(FSSpec::name);

// The most that ISO C guarantees for a conversion. Here it is the limit: a name that happens to
// look like a wider one must not take all memory.
constexpr std::size_t kMostWidth = 4095;

// A conversion of printf that prints a text: "%", perhaps "1$", flags, a width, a precision, "s".
struct TextConversion {
  std::size_t length = 0;  // of the conversion itself; 0 where there is none
  bool isNumbered = false;
  bool isLeftAligned = false;
  std::size_t width = 0;
  std::size_t precision = std::string::npos;
};

std::size_t takeNumber(std::string_view& text) {
  std::size_t number = 0;
  for (; !text.empty() && text.front() >= '0' && text.front() <= '9'; text.remove_prefix(1))
    number = std::min(number * 10 + static_cast<std::size_t>(text.front() - '0'), kMostWidth + 1);
  return number;
}

TextConversion conversionAtStart(std::string_view format) {
  TextConversion found;
  std::string_view rest = format;
  const auto take = [&rest](std::string_view text) {
    const bool isThere = rest.starts_with(text);
    if (isThere) rest.remove_prefix(text.size());
    return isThere;
  };
  if (!take("%")) return {};
  found.isNumbered = take("1$");
  for (; rest.find_first_of("-+ #0'") == 0; rest.remove_prefix(1))
    found.isLeftAligned = found.isLeftAligned || rest.front() == '-';
  found.width = takeNumber(rest);
  if (take(".")) found.precision = takeNumber(rest);
  if (found.precision > kMostWidth) found.precision = std::string::npos;
  if (!take("s") || found.width > kMostWidth) return {};
  found.length = format.size() - rest.size();
  return found;
}

// What printf prints for a format with one text as its argument, or none where that is null. Names
// in texts may hold any "%": a conversion for which no argument was passed stays in the text.
std::string formatted(std::string_view format, const char* argument) {
  std::string out;
  bool isUsed = false;  // by a conversion without a number; the next of them has no argument
  while (!format.empty()) {
    std::size_t taken = 1;
    const TextConversion conversion = conversionAtStart(format);
    if (format.starts_with("%%")) {
      out += '%';
      taken = 2;
    } else if (argument != nullptr && conversion.length > 0 && (conversion.isNumbered || !isUsed)) {
      const std::string_view shown = std::string_view(argument).substr(0, conversion.precision);
      const std::size_t blanks = conversion.width - std::min(conversion.width, shown.size());
      out.append(conversion.isLeftAligned ? 0 : blanks, ' ').append(shown);
      out.append(conversion.isLeftAligned ? blanks : 0, ' ');
      isUsed = isUsed || !conversion.isNumbered;
      taken = conversion.length;
    } else {
      out += format.front();
    }
    format.remove_prefix(taken);
  }
  return out;
}

void writeLine(std::ostream& os, std::string_view text) {
  writeHeldText(os, text);
  os << '\n' << std::flush;
}

// Always one line: on a terminal the carriage return before a source place, or one in a name, would
// make what follows overwrite the start of the line.
void writeAlertLine(std::string text) {
  std::replace(text.begin(), text.end(), '\r', ' ');
  std::replace(text.begin(), text.end(), '\n', ' ');
  writeLine(std::cerr, text);
}

std::string sourcePlace(const char* sourceFile, int line) {
  if (sourceFile == nullptr) return {};
  return std::string("\r") + sourceFile + ":" + std::to_string(line);
}

void displayWithResultCode(const std::string& text, long code, const char* sourceFile, int line) {
  std::string detail =
      "Result code = " + std::to_string(code) + "." + sourcePlace(sourceFile, line);
  detail.resize(std::min(detail.size(), kMostDetail));
  displayErrorStrings(text.c_str(), detail.c_str());
}

}  // namespace

void displayErrorStrings(const char* text, const char* detail, void* /*unused*/) {
  if (stdout_mode != 0) {
    if (text != nullptr) writeLine(std::cout, formatted(text, detail != nullptr ? detail : ""));
    if (detail != nullptr) writeLine(std::cout, formatted(detail, nullptr));
  }
  if (_show_alerts == 0) return;
  writeAlertLine(text != nullptr ? text : kUnknownError);
  if (detail != nullptr) writeAlertLine(detail);
}

OSStatus displayErrorStringsAsyncTask(void* pair) {
  const auto* texts = static_cast<const char* const*>(pair);
  displayErrorStrings(texts[0], texts[1]);
  return noErr;
}

void displayErrorStringsWithCode(const char* text, char* detail, const char* sourceFile, int line) {
  // The caller has the room. NOLINTNEXTLINE(clang-analyzer-security.insecureAPI.strcpy)
  if (detail != nullptr) std::strcat(detail, sourcePlace(sourceFile, line).c_str());
  displayErrorStrings(text, detail);
}

void displayFileManagerError(long code, const char* sourceFile, int line) {
  displayWithResultCode("A system disk error has occurred within Olvan.", code, sourceFile, line);
}

void displayFileManagerErrorWhile(long code, const char* action, const char* name,
                                  const char* sourceFile, int line) {
  std::string text = "Olvan reports a file system error while ";
  if (action != nullptr) text += action;
  text += ' ';
  if (name != nullptr) text += shownName(std::cerr, std::string_view(name).substr(0, kMostName));
  displayWithResultCode(text + ".", code, sourceFile, line);
}

void displayFileManagerErrorWhileOpening(long code, const char* name, const char* sourceFile,
                                         int line) {
  displayFileManagerErrorWhile(code, "opening", name, sourceFile, line);
}

void displayFileManagerErrorWhileOpening(long code, const FSSpec* fsSpec, const char* sourceFile,
                                         int line) {
  char name[kSpecNameSize] = "?";
  if (fsSpec != nullptr) extractCFilename(fsSpec, name);
  displayFileManagerErrorWhileOpening(code, name, sourceFile, line);
}

// Not through the catalogue: it has no FSSpec for a missing item, which is what most of these
// messages are about, and replaces the end of a name with accents by a number.
void displayFileManagerErrorWhileOpening(long code, const FSRef* ref, const char* sourceFile,
                                         int line) {
  char name[kSpecNameSize] = "?";
  HFSUniStr255 unicode;
  if (ref != nullptr && placeOf(*ref, nullptr, &unicode)) {
    ConvertHFSUniStrToCString(&unicode, name, sizeof name);
  }
  displayFileManagerErrorWhileOpening(code, name, sourceFile, line);
}

void displayCantInstantiateError() {
  displayErrorStrings("There is not enough memory to instantiate Olvan",
                      "Unload other plugins or allocate more memory to the host");
}

void displayOutOfMemoryError() {
  displayErrorStrings("Olvan has run out of memory",
                      "Try allocating more memory to the host or decreasing the amount of used "
                      "resources");
}

void displayUnkownError() {
  displayErrorStrings(kUnknownError, nullptr);
}

void setPIAlertStdOut() {
  stdout_mode = 1;
}

void disablePIAlertWindows() {
  _show_alerts = 0;
}

void setPIAlertTEHandle(TEHandle handle) {
  _te_handle = handle;
}

bool modalFilterProc(DialogRef dialog, EventRecord* /*event*/, short* /*item*/) {
  _dialog = dialog;
  return false;
}

}  // namespace cairnset
