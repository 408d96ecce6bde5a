// One locale's settings, spelled as Windows spells them: what ICU knows, put into pictures, groupings and order numbers.
// Whatever the language, numbers, short dates and times of day can be said in Windows-1252 and read back as they are written.
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
