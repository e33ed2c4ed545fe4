#include "host/Chooser.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <iostream>
#include <poll.h>
#include <string>
#include <string_view>
#include <unistd.h>

#include "host/FileManager.h"
#include "host/Host.h"

namespace cairnset {

namespace {

constexpr int kMostQuestions = 3;
constexpr int kPatienceMilliseconds = 5000;
constexpr std::size_t kMostCharacters = PATH_MAX + 64;  // a path, quotes and blanks around it

bool isAtTerminal() {
  return chooserStreams().answers == &std::cin && ::isatty(STDIN_FILENO) != 0;
}

// Only before the first question: lines that came together are then in the stream's buffer, where
// poll does not see them.
bool answerMayCome() {
  if (chooserStreams().answers != &std::cin || isAtTerminal()) return true;
  struct pollfd input = {STDIN_FILENO, POLLIN, 0};
  return ::poll(&input, 1, kPatienceMilliseconds) != 0;  // an end or an error is seen by reading
}

bool readAnswer(std::string& answer) {
  std::istream& in = *chooserStreams().answers;
  char line[kMostCharacters + 1];
  const bool gotLine = static_cast<bool>(in.getline(line, sizeof line));
  // Nothing but a terminal's echo of the Return key has ended the line with the prompt.
  if (!gotLine || in.eof() || !isAtTerminal()) *chooserStreams().questions << '\n';
  if (gotLine) answer = line;
  return gotLine;
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

// Asks until `accepts` takes the item at the answered path.
template <typename Accepts>
bool choose(const char* message, const char* prompt, const char* complaint, FSRef* choice,
            Accepts accepts) {
  std::ostream& questions = *chooserStreams().questions;
  questions << message << '\n';
  for (int question = 0; question < kMostQuestions; ++question) {
    questions << prompt << std::flush;
    if (question == 0 && !answerMayCome()) {
      questions << '\n';
      return false;
    }
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
