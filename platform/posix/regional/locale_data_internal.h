// One locale's settings, spelled as Windows spells them: what ICU knows, put into pictures, groupings and order numbers.
// Whatever the language, numbers, short dates and times of day read back as they are written. In a Windows-1252 process they are
// said with what that has, in Latin digits, and by a 24-hour clock where designators cannot be said; in a UTF-8 process they are
// what the country has, digits and minus included, without the marks of direction that nobody types.
// Immutable once made.
#pragma once

#include <array>
#include <string>

#include "platform/posix/types.h"

namespace orvik::detail {

struct LocaleData {
    LCID lcid;
    std::string name;                                 // as ICU has it
    std::string language, country;                    // ISO codes
    std::string languageName, countryName, fullName;  // English: "Swedish", "Sweden", "Swedish (Sweden)"
    std::string decimal, thousand, grouping, list;
    std::string digits, minus;  // from 0 to 9; "-" or U+2212
    std::string currency, currencyDigits, currencyOrder, negativeCurrency;
    std::string timePicture, morning, afternoon;
    bool ownDesignators;  // not those put in place of designators that cannot be said
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

}  // namespace orvik::detail
