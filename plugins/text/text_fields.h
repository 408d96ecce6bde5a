// The lines of one reading become the values of its channels. A value is right or there is none: what does not fit the
// description is told with the line. Pure functions, any thread.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "plugins/text/text_description.h"
#include "plugins/text/text_sentences.h"

namespace text {

struct Outcome {
    double value = 0;
    bool noValue = false;           // the logger says that it has none
    Sentence why = Sentence::None;  // why there is no value
    std::string text;               // the sentence
    bool IsValue() const { return why == Sentence::None; }
};

// The line as text. In a UTF-8 process bytes that are no UTF-8 are the characters of Windows-1252; in a Windows-1252 process
// letters of Latin-1 in UTF-8 are what they say.
std::string LineText(std::string_view line);

// The fields between the separators.
std::vector<std::string_view> SplitFields(std::string_view line, const Separator& separator, char decimal);

// A value of a line of name=value: whatever `line` says behind this name. How often the name is there.
size_t FindKey(std::string_view line, std::string_view key, const Separator& separator, char decimal, std::string_view& value);

// An outcome for each channel, in their order. `lines` are without their ends and checksums.
std::vector<Outcome> ReadFields(const Description& description, const std::vector<std::string>& lines);

}  // namespace text
