#include "host/words/shell_word.h"

#include "host/words/texts.h"

std::string ShellWord(std::string_view name) {
    const std::string word = (name.starts_with('-') ? ".\\" : "") + ToUtf8(name);  // the host would take it for an option
    return word.empty() || word.find_first_of(" \t&()[]{}^=;!'+,`~%") != word.npos ? '"' + word + '"' : word;
}
