// What somebody who mistyped a word probably meant. ASCII; any thread.
#pragma once

#include <string>
#include <vector>

// Letters to insert, remove or exchange to make one of the other, whatever their case.
size_t LetterDistance(const std::string& one, const std::string& other);
// The word that is nearest, if so near that it is hardly another one; else empty.
std::string NearestWord(const std::string& typed, const std::vector<std::string>& words);
