// Whether lines are a reading, and what is wrong with them if they are none. Pure functions, any thread.
#pragma once

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

#include "plugins/text/text_description.h"
#include "plugins/text/text_fields.h"
#include "plugins/text/text_splitter.h"

namespace text {

struct Failure {
    int code = 0;                   // of CCommException; 0: there is a value at least
    Sentence why = Sentence::None;  // None: the code's own words
    std::string text;
};
// With the sentence, for a line that came and is none.
Failure BadLine(Sentence why, std::initializer_list<std::string_view> arguments);

// Of a logger that talks by itself: nothing came for so long.
Failure SilentFor(std::chrono::steady_clock::duration time);

// Whether a line counts: whether it begins as it should, and whether it is whole. `failure` tells of a bad one.
enum class Verdict { PassedOver, Bad, Good };
Verdict Judge(const Description& description, const Splitter::Line& line, Failure& failure);

// Without its checksum.
std::string Bare(const Description& description, const std::string& line);

// The values that the lines of one reading have, an outcome for each channel. A failure when there is none at all; channels that
// are not due (a byte each, 0) do not matter for that.
Failure ReadLines(const Description& description, std::vector<std::string> lines, const std::vector<BYTE>& due,
                  std::vector<Outcome>& outcomes);

// What lines that give values are known by: how they begin, up to the first number. A few sorts of them are kept.
void RememberLead(std::vector<std::string>& leads, const std::string& line);
// Whether a line that gives no value is nevertheless meant as one of the description's, and damaged: it begins as the
// description says or, where that says nothing, as lines that gave values do (`leads`). Where those begin with their numbers, it
// has numbers with at most one letter before them, or as many fields as it should have, and they are no heading.
bool IsMeant(const Description& description, const std::vector<std::string>& leads, const std::string& line);

}  // namespace text
