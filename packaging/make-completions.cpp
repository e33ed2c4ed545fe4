// make-completions bash|zsh: writes the completion script for that shell to standard output.
#include <iostream>
#include <string>
#include <string_view>

#include "tool/Options.h"

namespace cairnset {

namespace {

std::string lettersThatTakeFolder(bool takesFolder) {
  std::string letters;
  for (const Option& option : kOptions) {
    if (option.takesFolder == takesFolder) letters += option.letter;
  }
  return letters;
}

// In a word of combined options, the one that takes a folder is last; the folder is the next word.
void writeBash(std::ostream& os) {
  os << "# bash completion for cairnset, made from the program's own options\n"
        "_cairnset() {\n"
        "  COMPREPLY=()\n"
        "  if [[ ${COMP_WORDS[COMP_CWORD - 1]} =~ ^-["
     << lettersThatTakeFolder(false) << "]*[" << lettersThatTakeFolder(true)
     << "]$ ]]; then\n"
        "    compopt -o dirnames\n"
        "  else\n"
        "    COMPREPLY=($(compgen -W '";
  for (const Option& option : kOptions)
    os << (&option == kOptions ? "-" : " -") << option.letter;
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

void writeZsh(std::ostream& os) {
  os << "#compdef cairnset\n"
        "# zsh completion for cairnset, made from the program's own options\n"
        "_arguments -s";
  for (const Option& option : kOptions) {
    os << " \\\n  '-" << option.letter << (option.takesFolder ? "+" : "") << '['
       << zshDescription(option.description) << ']'
       << (option.takesFolder ? ":Olvan Items folder:_directories" : "") << '\'';
  }
  os << '\n';
}

}  // namespace

}  // namespace cairnset

int main(int argc, char** argv) {
  const std::string_view shell = argc == 2 ? argv[1] : "";
  if (shell == "bash") {
    cairnset::writeBash(std::cout);
  } else if (shell == "zsh") {
    cairnset::writeZsh(std::cout);
  } else {
    std::cerr << "usage: make-completions bash|zsh\n";
    return 2;
  }
  return std::cout.flush() ? 0 : 1;
}
