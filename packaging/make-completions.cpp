// make-completions bash|zsh|fish: writes the completion script for that shell to standard output.
#include <iostream>
#include <string>
#include <string_view>

#include "tool/Options.h"

namespace cairnset {

namespace {

bool takes(const Option& option, OptionArgument argument) {
  return option.argument == argument;
}

// The letters that can be combined with others behind them.
std::string lettersAlone() {
  std::string letters;
  for (const Option& option : kOptions) {
    if (option.letter != '\0' && takes(option, OptionArgument::kNone)) letters += option.letter;
  }
  return letters;
}

// A pattern for the previous word, if that is an option with such an argument.
std::string patternOf(OptionArgument argument) {
  std::string pattern;
  for (const Option& option : kOptions) {
    if (!takes(option, argument)) continue;
    // Among combined letters, the one that takes an argument is last.
    if (option.letter != '\0') pattern += "|-[" + lettersAlone() + "]*" + option.letter;
    if (option.word != nullptr) (pattern += "|--") += option.word;
  }
  return pattern.empty() ? "^$" : "^(" + pattern.substr(1) + ")$";
}

void writeBash(std::ostream& os) {
  os << "# bash completion for cairnset, made from the program's own options\n"
        "_cairnset() {\n"
        "  local before=${COMP_WORDS[COMP_CWORD - 1]}\n"
        "  COMPREPLY=()\n"
        "  if [[ $before =~ "
     << patternOf(OptionArgument::kFolder)
     << " ]]; then\n"
        "    compopt -o dirnames\n"
        "  elif [[ $before =~ "
     << patternOf(OptionArgument::kFile)
     << " ]]; then\n"
        "    compopt -o default\n"
        "  elif [[ ! $before =~ "
     << patternOf(OptionArgument::kText)
     << " ]]; then\n"
        "    COMPREPLY=($(compgen -W '";
  for (const Option& option : kOptions) {
    if (option.letter != '\0') os << '-' << option.letter << ' ';
    if (option.word != nullptr) os << "--" << option.word << ' ';
  }
  os << "' -- \"${COMP_WORDS[COMP_CWORD]}\"))\n"
        "  fi\n"
        "}\n"
        "complete -F _cairnset cairnset\n";
}

// Escapes the description of an option for _arguments, within single quotes.
std::string zshDescription(std::string_view text) {
  std::string out;
  for (const char c : text) {
    if (c == '[' || c == ']' || c == '\\') out += '\\';
    out += c == '\'' ? "'\\''" : std::string(1, c);
  }
  return out;
}

std::string zshArgument(const Option& option) {
  if (takes(option, OptionArgument::kNone)) return "";
  const char* const action = takes(option, OptionArgument::kFolder) ? "_directories"
                             : takes(option, OptionArgument::kFile) ? "_files"
                                                                    : " ";
  return std::string(":") + option.argumentName + ':' + action;
}

// "*" allows an option more than once, "+" and "=" its argument in the same word.
void writeZsh(std::ostream& os) {
  os << "#compdef cairnset\n"
        "# zsh completion for cairnset, made from the program's own options\n"
        "_arguments -s";
  for (const Option& option : kOptions) {
    const bool isAlone = takes(option, OptionArgument::kNone);
    const std::string rest = '[' + zshDescription(option.help) + ']' + zshArgument(option) + '\'';
    const char* const repeats = isAlone ? "" : "*";
    if (option.letter != '\0')
      os << " \\\n  '" << repeats << '-' << option.letter << (isAlone ? "" : "+") << rest;
    if (option.word != nullptr)
      os << " \\\n  '" << repeats << "--" << option.word << (isAlone ? "" : "=") << rest;
  }
  os << '\n';
}

void writeFish(std::ostream& os) {
  os << "# fish completion for cairnset, made from the program's own options\n"
        "complete -c cairnset -f\n";
  for (const Option& option : kOptions) {
    os << "complete -c cairnset";
    if (option.letter != '\0') os << " -s " << option.letter;
    if (option.word != nullptr) os << " -l " << option.word;
    if (takes(option, OptionArgument::kFolder)) os << " -x -a '(__fish_complete_directories)'";
    if (takes(option, OptionArgument::kFile)) os << " -r -F";
    if (takes(option, OptionArgument::kText)) os << " -x";
    os << " -d '";
    for (const char c : std::string_view(option.help)) {
      if (c == '\'' || c == '\\') os << '\\';
      os << c;
    }
    os << "'\n";
  }
}

}  // namespace

}  // namespace cairnset

int main(int argc, char** argv) {
  const std::string_view shell = argc == 2 ? argv[1] : "";
  if (shell == "bash") {
    cairnset::writeBash(std::cout);
  } else if (shell == "zsh") {
    cairnset::writeZsh(std::cout);
  } else if (shell == "fish") {
    cairnset::writeFish(std::cout);
  } else {
    std::cerr << "usage: make-completions bash|zsh|fish\n";
    return 2;
  }
  return std::cout.flush() ? 0 : 1;
}
