// Pictures of dates and times of day: made of ICU's patterns so that what is written by them can be read, and taken apart.
// Pure functions but for the choice of this house's text; any thread. Text in single quotes holds no fields.
#pragma once

#include <unicode/unistr.h>

#include <string>

namespace orvik::detail {

// A pattern's date as Windows spells it: weekdays become runs of d, years four digits, spaces plain. Eras are left out, and so is
// text that this house's text cannot say; between two fields `separator` takes its place.
std::string DatePicture(const icu::UnicodeString& pattern, const char* separator);
// A pattern's time of day as hours, minutes and seconds with one separator, and the designator, if there is one, at the end: what
// can be read back, whatever the pattern has between and around them. A 24-hour picture unless the designators are usable. In a
// UTF-8 process the designator stands in front where the pattern has it there.
std::string ClockPicture(const icu::UnicodeString& pattern, bool designatorsUsable);

// What a picture implies: the text between its first two fields; the picture with another text there, and wherever it comes
// again.
std::string PictureSeparator(const std::string& picture, const char* letters);
std::string ReplacePictureSeparator(const std::string& picture, const char* letters, const std::string& separator);
char FirstPictureLetter(const std::string& picture, const char* letters);  // 0 if there is none
int PictureRun(const std::string& picture, const char* letters);           // length of the first run of any of the letters

}  // namespace orvik::detail
