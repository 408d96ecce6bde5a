// What the plug-in says of lines, above all of those that give no value, in English or, when that is the user's language, in
// Swedish. In this process's text, for CCommException and the reading's watch. Any thread.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace text {

enum class Sentence {
    None,
    TooLong,
    NoChecksum,
    WrongChecksum,
    HalfLine,
    FieldMissing,
    FieldTwice,
    FieldCount,
    NoNumber,
    NoMatch,
    NoJson,
    HalfReading,
    TooFast,
    QueueRanOver,
    Silent,
    OtherUnit,
    NoWriting,
    Learned,  // for people, of lines that were listened to
    LearnedOthers,
    LearnedPartial,
    LearnedUnits,
    LearnedBareToo,
    LearnedChanging,
    LearnedSources,
};

// The sentence with %1, %2 ... replaced.
std::string Say(Sentence sentence, std::initializer_list<std::string_view> arguments);

// A line as a sentence can hold it: at most 60 bytes of it, no letter cut, in quotes, bytes that are no characters as \x and two
// digits.
std::string Shown(std::string_view line);

}  // namespace text
