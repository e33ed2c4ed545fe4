#include "host/terminal/Chooser.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <climits>
#include <cstdlib>
#include <iostream>
#include <poll.h>
#include <string>
#include <string_view>
#include <unistd.h>

#include "host/Host.h"
#include "host/files/FileManager.h"

namespace cairnset {

namespace {

constexpr int kMostQuestions = 3;
constexpr std::size_t kMostCharacters = PATH_MAX + 64;  // a path, quotes and blanks around it

enum class Answer { kNone, kLine, kLastLine };  // the last one ended with the input

// Byte by byte, so that what follows the line stays for the next question, and for the menu.
// NOLINTNEXTLINE(readability-function-cognitive-complexity)
Answer readLine(std::string& line) {
  using Clock = std::chrono::steady_clock;
  const ChooserStreams& streams = chooserStreams();
  const bool hasPatience = ::isatty(streams.answers) != 0;
  const auto end = Clock::now() + std::chrono::milliseconds(streams.patienceMilliseconds);
  for (;;) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count();
    if (!hasPatience && left <= 0) return Answer::kNone;
    struct pollfd input = {streams.answers, POLLIN, 0};
    const int ready = ::poll(&input, 1, hasPatience ? -1 : static_cast<int>(left));
    if (ready == 0) return Answer::kNone;
    char c = '\0';
    const ssize_t got = ready < 0 ? ready : ::read(streams.answers, &c, 1);
    if (got < 0) {
      if (errno == EINTR || errno == EAGAIN) continue;
      return Answer::kNone;
    }
    if (got == 0 || c == '\n') {
      const bool isEmptyEnd = got == 0 && line.empty();
      if (isEmptyEnd || line.size() > kMostCharacters) return Answer::kNone;
      return got == 0 ? Answer::kLastLine : Answer::kLine;
    }
    if (line.size() <= kMostCharacters) line += c;
  }
}

bool readAnswer(std::string& answer) {
  const Answer got = readLine(answer);
  // Nothing but a terminal's echo of the Return key has ended the line with the prompt.
  if (got != Answer::kLine || ::isatty(chooserStreams().answers) == 0) {
    *chooserStreams().questions << '\n';
  }
  return got != Answer::kNone;
}

std::string pathFromAnswer(std::string_view answer) {
  constexpr std::string_view kBlanks = " \t\r";
  answer.remove_prefix(std::min(answer.find_first_not_of(kBlanks), answer.size()));
  answer = answer.substr(0, answer.find_last_not_of(kBlanks) + 1);  // npos + 1 is 0
  if (answer.size() >= 2 && (answer.front() == '"' || answer.front() == '\'') &&
      answer.front() == answer.back()) {
    answer = answer.substr(1, answer.size() - 2);
  }
  std::string path(answer);
  const char* home = std::getenv("HOME");
  if (home != nullptr && (path == "~" || path.starts_with("~/"))) path.replace(0, 1, home);
  while (path.size() > 1 && path.back() == '/')
    path.pop_back();
  return path;
}

// Asks until `accepts` returns true for the item at the given path.
template <typename Accepts>
bool choose(const char* message, const char* prompt, const char* complaint, FSRef* choice,
            Accepts accepts) {
  std::ostream& questions = *chooserStreams().questions;
  questions << message << '\n';
  for (int question = 0; question < kMostQuestions; ++question) {
    questions << prompt << std::flush;
    std::string answer;
    if (!readAnswer(answer)) return false;
    const std::string path = pathFromAnswer(answer);
    if (path.empty()) return false;
    FSRef found;
    bool isFolder = false;
    if (FSPathMakeRef(path.c_str(), &found, &isFolder) == noErr && accepts(found, isFolder)) {
      *choice = found;
      return true;
    }
    questions << complaint << '\n';
  }
  return false;
}

bool isShown(const FSRef& file, NavObjectFilterUPP filter) {
  if (filter == nullptr) return true;
  AEDesc item;
  HFSUniStr255 name;
  if (FSGetCatalogInfo(&file, kFSCatInfoNone, nullptr, &name, &item.fsSpec, nullptr) != noErr) {
    return false;
  }
  NavFileOrFolderInfo info;
  info.visible = name.length > 0 && name.unicode[0] != u'.';
  return filter(&item, &info, nullptr, kNavFilteringBrowserList);
}

}  // namespace

bool chooseFolder(const char* message, FSRef* choice) {
  return choose(message, "Folder: ", "There is no such folder.", choice,
                [](const FSRef&, bool isFolder) { return isFolder; });
}

bool chooseFile(const char* message, NavObjectFilterUPP filter, FSRef* choice) {
  return choose(
      message, "File: ", "There is no such file, or it is not one to be chosen here.", choice,
      [filter](const FSRef& found, bool isFolder) { return !isFolder && isShown(found, filter); });
}

ChooserStreams& chooserStreams() {
  return host().choosers;
}

}  // namespace cairnset
