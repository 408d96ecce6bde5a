// One locale's settings, spelled as Windows spells them: what ICU knows, put into pictures, groupings and order numbers.
// Immutable once made.
#pragma once

#include <array>
#include <string>

#include "platform/posix/types.h"

namespace orvik::detail {

struct LocaleData {
    LCID lcid;
    std::string language, country;                    // ISO codes
    std::string languageName, countryName, fullName;  // English: "Swedish", "Sweden", "Swedish (Sweden)"
    std::string decimal, thousand, grouping, list;
    std::string currency, currencyDigits, currencyOrder, negativeCurrency;
    std::string timePicture, morning, afternoon, timeMarkPosition;
    std::string shortDate, longDate;
    std::string countryCode, measure;
    std::array<std::string, 7> days, shortDays;  // from Monday
    std::array<std::string, 12> months, shortMonths, monthsInDates;
    std::array<std::string, 2> eras;  // before and after year 1
};

// The settings of a POSIX locale name such as "sv_SE.UTF-8@euro"; en_US for names that no locale data know.
const LocaleData& LocaleByName(const char* name);
// The settings of a Windows locale id, null if there is none.
const LocaleData* LocaleById(LCID lcid);

// What a picture implies: the text between its first two fields, and whether a letter stands in it outside quotes.
std::string PictureSeparator(const std::string& picture, const char* letters);
std::string ReplacePictureSeparator(const std::string& picture, const char* letters, const std::string& separator);
char FirstPictureLetter(const std::string& picture, const char* letters);
int PictureRun(const std::string& picture, const char* letters);  // length of the first run of any of the letters

}  // namespace orvik::detail
