#include "host/words/nearest_word.h"

#include <algorithm>

namespace {
char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }
}  // namespace

size_t LetterDistance(const std::string& one, const std::string& other) {
    std::vector<size_t> row(other.size() + 1);
    for (size_t j = 0; j <= other.size(); ++j) row[j] = j;
    for (size_t i = 1; i <= one.size(); ++i) {
        size_t diagonal = row[0];
        row[0] = i;
        for (size_t j = 1; j <= other.size(); ++j) {
            const size_t exchanged = diagonal + (Lower(one[i - 1]) != Lower(other[j - 1]));
            diagonal = row[j];
            row[j] = std::min({exchanged, row[j] + 1, row[j - 1] + 1});
        }
    }
    return row[other.size()];
}

std::string NearestWord(const std::string& typed, const std::vector<std::string>& words) {
    constexpr size_t kLettersForOneMistake = 3;
    std::string nearest;
    size_t least = typed.size() / kLettersForOneMistake + 1;
    for (const std::string& word : words) {
        if (word.size() + least <= typed.size()) continue;
        if (const size_t distance = LetterDistance(typed, word); distance < least) {
            least = distance;
            nearest = word;
        }
    }
    return nearest;
}
