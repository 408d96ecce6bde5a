#include "platform/posix/regional/locale_data_internal.h"

#include <unicode/curramt.h>
#include <unicode/datefmt.h>
#include <unicode/dcfmtsym.h>
#include <unicode/decimfmt.h>
#include <unicode/dtfmtsym.h>
#include <unicode/dtptngen.h>
#include <unicode/locid.h>
#include <unicode/numsys.h>
#include <unicode/smpdtfmt.h>
#include <unicode/ucurr.h>
#include <unicode/udat.h>
#include <unicode/uloc.h>
#include <unicode/ulocdata.h>

#include <cstring>
#include <iterator>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string_view>

#include "platform/house_text_internal.h"
#include "platform/posix/regional/locale_pictures_internal.h"
#include "platform/posix/regional/regional_text_internal.h"

namespace orvik::detail {
namespace {

using icu::UnicodeString;

// Windows numbers the places of a currency symbol 0 to 3 and the negative amounts 0 to 15, as its documentation lists them.
void CurrencyOrders(const icu::Locale& locale, LocaleData& to) {
    static constexpr std::string_view kNegative[] = {"($1)", "-$1",  "$-1",  "$1-",  "(1$)", "-1$",  "1-$",   "1$-",
                                                     "-1 $", "-$ 1", "1 $-", "$ 1-", "$ -1", "1- $", "($ 1)", "(1 $)"};
    static constexpr std::string_view kPositive[] = {"$1", "1$", "$ 1", "1 $"};
    to.currencyOrder = "0", to.negativeCurrency = "0";
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::NumberFormat> format(icu::NumberFormat::createInstance(locale, UNUM_CURRENCY_ACCOUNTING, status));
    const auto* decimal = dynamic_cast<const icu::DecimalFormat*>(format.get());
    if (U_FAILURE(status) || !decimal) return;
    UnicodeString pattern;
    decimal->toPattern(pattern);
    const auto simple = [](const UnicodeString& part) {  // "¤ #,##0.00" becomes "$ 1"
        std::string out;
        for (int32_t i = 0; i < part.length(); ++i) {
            const char16_t c = part[i];
            if (c == u'¤')
                out += '$';
            else if (c == u' ' || c == 0xA0 || c == 0x202F)
                out += ' ';
            else if (c == u'(' || c == u')' || c == u'-')
                out += static_cast<char>(c);
            else if ((c == u'#' || c == u'0') && out.find('1') == std::string::npos)
                out += '1';
        }
        return out;
    };
    const int32_t semicolon = pattern.indexOf(u';');
    const std::string positive = simple(semicolon < 0 ? pattern : pattern.tempSubString(0, semicolon));
    const std::string negative = semicolon < 0 ? "-" + positive : simple(pattern.tempSubString(semicolon + 1));
    for (size_t i = 0; i < std::size(kPositive); ++i)
        if (kPositive[i] == positive) to.currencyOrder = std::to_string(i);
    for (size_t i = 0; i < std::size(kNegative); ++i)
        if (kNegative[i] == negative) to.negativeCurrency = std::to_string(i);
}

// International calling codes (ITU-T E.164), which locale data do not hold; "0" for a country that is not listed.
std::string CallingCode(const std::string& country) {
    struct Entry {
        char country[3];
        short code;
    };
    static constexpr Entry kCodes[] = {
        {"AE", 971}, {"AL", 355}, {"AM", 374}, {"AR", 54},  {"AT", 43},  {"AU", 61},  {"AZ", 994}, {"BA", 387}, {"BD", 880},
        {"BE", 32},  {"BG", 359}, {"BO", 591}, {"BR", 55},  {"BY", 375}, {"CA", 1},   {"CH", 41},  {"CL", 56},  {"CN", 86},
        {"CO", 57},  {"CR", 506}, {"CY", 357}, {"CZ", 420}, {"DE", 49},  {"DK", 45},  {"DZ", 213}, {"EC", 593}, {"EE", 372},
        {"EG", 20},  {"ES", 34},  {"ET", 251}, {"FI", 358}, {"FO", 298}, {"FR", 33},  {"GB", 44},  {"GE", 995}, {"GL", 299},
        {"GR", 30},  {"GT", 502}, {"HK", 852}, {"HR", 385}, {"HU", 36},  {"ID", 62},  {"IE", 353}, {"IL", 972}, {"IN", 91},
        {"IQ", 964}, {"IR", 98},  {"IS", 354}, {"IT", 39},  {"JO", 962}, {"JP", 81},  {"KE", 254}, {"KR", 82},  {"KW", 965},
        {"KZ", 7},   {"LB", 961}, {"LI", 423}, {"LK", 94},  {"LT", 370}, {"LU", 352}, {"LV", 371}, {"MA", 212}, {"MC", 377},
        {"MD", 373}, {"ME", 382}, {"MK", 389}, {"MT", 356}, {"MX", 52},  {"MY", 60},  {"NG", 234}, {"NL", 31},  {"NO", 47},
        {"NP", 977}, {"NZ", 64},  {"PA", 507}, {"PE", 51},  {"PH", 63},  {"PK", 92},  {"PL", 48},  {"PT", 351}, {"PY", 595},
        {"QA", 974}, {"RO", 40},  {"RS", 381}, {"RU", 7},   {"SA", 966}, {"SE", 46},  {"SG", 65},  {"SI", 386}, {"SK", 421},
        {"TH", 66},  {"TN", 216}, {"TR", 90},  {"TW", 886}, {"UA", 380}, {"US", 1},   {"UY", 598}, {"VE", 58},  {"VN", 84},
        {"ZA", 27}};
    for (const Entry& entry : kCodes)
        if (country == entry.country) return std::to_string(entry.code);
    return "0";
}

void Names(const icu::Locale& locale, LocaleData& to) {
    UErrorCode status = U_ZERO_ERROR;
    const icu::DateFormatSymbols symbols(locale, status);
    using Symbols = icu::DateFormatSymbols;
    int32_t count = 0;
    const auto fill = [&count](const UnicodeString* names, auto& out, int32_t first) {
        for (size_t i = 0; i < out.size(); ++i) {
            const auto from = static_cast<int32_t>((i + static_cast<size_t>(first)) % out.size());
            if (names) out[i] = HouseFromUnicode(names[from + (count > static_cast<int32_t>(out.size()) ? 1 : 0)]);
        }
    };
    // ICU's weekdays stand at 1 (Sunday) to 7; Windows counts from Monday.
    fill(symbols.getWeekdays(count, Symbols::FORMAT, Symbols::WIDE), to.days, 1);
    fill(symbols.getWeekdays(count, Symbols::FORMAT, Symbols::ABBREVIATED), to.shortDays, 1);
    fill(symbols.getMonths(count, Symbols::STANDALONE, Symbols::WIDE), to.months, 0);
    fill(symbols.getMonths(count, Symbols::STANDALONE, Symbols::ABBREVIATED), to.shortMonths, 0);
    fill(symbols.getMonths(count, Symbols::FORMAT, Symbols::WIDE), to.monthsInDates, 0);
    fill(symbols.getEras(count), to.eras, 0);
    // Designators that cannot be said are those that most languages without own ones use.
    to.morning = "AM", to.afternoon = "PM";
    const UnicodeString* marks = symbols.getAmPmStrings(count);
    to.ownDesignators = count >= 2 && CanBeSaid(marks[0]) && CanBeSaid(marks[1]) && marks[0] != marks[1];
    if (!to.ownDesignators) return;
    to.morning = HouseFromUnicode(WithoutDirectionMarks(marks[0]));
    to.afternoon = HouseFromUnicode(WithoutDirectionMarks(marks[1]));
}

// What the reader of times of day asks of designators: it moves on by the length of the other one, and keeps eight characters. In
// a UTF-8 process it keeps them all, and only looks for that of the afternoon first.
bool AreReadable(const std::string& morning, const std::string& afternoon) {
    constexpr size_t kMost = 8;
    if (HouseIsUtf8()) return !morning.empty() && !afternoon.empty() && morning.compare(0, afternoon.size(), afternoon) != 0;
    return !morning.empty() && morning.size() == afternoon.size() && morning.size() <= kMost;
}

// Of the Gregorian calendar, whose years and months are what is written.
void Pictures(icu::Locale locale, LocaleData& to) {
    UErrorCode status = U_ZERO_ERROR;
    locale.setKeywordValue("calendar", "gregorian", status);
    std::unique_ptr<icu::DateTimePatternGenerator> generator(icu::DateTimePatternGenerator::createInstance(locale, status));
    if (U_SUCCESS(status)) to.shortDate = DatePicture(generator->getBestPattern(u"yMd", status), "-");
    const auto pattern = [](icu::DateFormat* made) {
        const std::unique_ptr<icu::DateFormat> format(made);
        UnicodeString text;
        if (const auto* simple = dynamic_cast<const icu::SimpleDateFormat*>(format.get())) simple->toPattern(text);
        return text;
    };
    to.longDate = DatePicture(pattern(icu::DateFormat::createDateInstance(icu::DateFormat::kFull, locale)), " ");
    to.timePicture = ClockPicture(pattern(icu::DateFormat::createTimeInstance(icu::DateFormat::kMedium, locale)),
                                  to.ownDesignators && AreReadable(to.morning, to.afternoon));
}

// The first character of a separator is what readers look at: one of several characters, or one that cannot be said, is replaced.
std::string Separator(const UnicodeString& given, const char* otherwise) {
    const UnicodeString text = HouseIsUtf8() ? WithoutDirectionMarks(given) : given;
    return text.length() == 1 && CanBeSaid(text) ? HouseFromUnicode(text) : otherwise;
}

// The digits that are written: the country's own in a UTF-8 process, if they are ten.
void Digits(icu::Locale& locale, LocaleData& to) {
    UErrorCode status = U_ZERO_ERROR;
    to.digits = "0123456789";
    const std::unique_ptr<icu::NumberingSystem> own(icu::NumberingSystem::createInstance(locale, status));
    if (HouseIsUtf8() && U_SUCCESS(status) && own->getRadix() == 10 && !own->isAlgorithmic())
        to.digits = HouseFromUnicode(own->getDescription());
    else
        locale.setKeywordValue("numbers", "latn", status = U_ZERO_ERROR);
}

void Numbers(icu::Locale locale, LocaleData& to) {
    UErrorCode status = U_ZERO_ERROR;
    Digits(locale, to);
    const icu::DecimalFormatSymbols symbols(locale, status);
    using Symbols = icu::DecimalFormatSymbols;
    to.decimal = Separator(symbols.getSymbol(Symbols::kDecimalSeparatorSymbol), ".");
    to.thousand = Separator(symbols.getSymbol(Symbols::kGroupingSeparatorSymbol), to.decimal == "," ? "." : ",");
    if (to.thousand == to.decimal) to.thousand = to.decimal == "," ? "." : ",";
    to.minus = symbols.getSymbol(Symbols::kMinusSignSymbol).indexOf(u'\u2212') >= 0 ? HouseFromUnicode(u"\u2212") : "-";
    to.currency = HouseFromUnicode(symbols.getSymbol(Symbols::kCurrencySymbol));
    // Windows separates list items by a semicolon where the decimal separator is a comma, in Arabic, too.
    to.list = to.decimal == "," || to.decimal.size() > 1 ? ";" : ",";
    to.grouping = "3;0";
    std::unique_ptr<icu::NumberFormat> format(icu::NumberFormat::createInstance(locale, status));
    if (const auto* decimal = dynamic_cast<const icu::DecimalFormat*>(format.get())) {
        const int32_t first = decimal->getGroupingSize(), second = decimal->getSecondaryGroupingSize();
        if (first > 0)
            to.grouping = std::to_string(first) + (second > 0 && second != first ? ";" + std::to_string(second) : "") + ";0";
    }
    char16_t code[4] = {};
    ucurr_forLocale(locale.getName(), code, 4, &status);
    to.currencyDigits = "2";
    if (U_SUCCESS(status)) to.currencyDigits = std::to_string(ucurr_getDefaultFractionDigits(code, &status));
    CurrencyOrders(locale, to);
}

constexpr LCID kNoNumber = 0x1000;  // what Windows says of locales that have names alone

std::unique_ptr<LocaleData> Make(const icu::Locale& locale) {
    auto data = std::make_unique<LocaleData>();
    const icu::Locale& english = icu::Locale::getUS();
    UnicodeString text;
    data->lcid = uloc_getLCID(locale.getName());
    if (data->lcid == 0) data->lcid = kNoNumber;
    data->name = locale.getName();
    data->language = locale.getLanguage();
    data->country = locale.getCountry();
    data->languageName = HouseFromUnicode(locale.getDisplayLanguage(english, text));
    data->countryName = HouseFromUnicode(locale.getDisplayCountry(english, text));
    data->fullName = data->countryName.empty() ? data->languageName : data->languageName + " (" + data->countryName + ")";
    data->countryCode = CallingCode(data->country);
    UErrorCode status = U_ZERO_ERROR;
    data->measure = ulocdata_getMeasurementSystem(locale.getName(), &status) == UMS_US ? "1" : "0";
    Names(locale, *data);
    Pictures(locale, *data);
    Numbers(locale, *data);
    return data;
}

// Locales once made live as long as the process: their number is that of the locale names seen.
const LocaleData& Cached(const icu::Locale& locale) {
    static std::mutex lock;
    static std::map<std::string, std::unique_ptr<LocaleData>> made;
    const std::lock_guard guard(lock);
    std::unique_ptr<LocaleData>& entry = made[locale.getName()];
    if (!entry) entry = Make(locale);
    return *entry;
}

bool HasData(const std::string& language) {
    static const std::set<std::string> languages = [] {
        std::set<std::string> found;
        int32_t count = 0;
        const icu::Locale* const locales = icu::Locale::getAvailableLocales(count);
        for (int32_t i = 0; i < count; ++i) found.insert(locales[i].getLanguage());
        return found;
    }();
    return languages.count(language) != 0;
}

// Whether locale data know the language at all; ICU answers any name from its root data. A Windows-1252 process asks for one that
// Windows numbers.
bool Known(const icu::Locale& locale) {
    UErrorCode status = U_ZERO_ERROR;
    const icu::DateFormatSymbols symbols(locale, status);
    const bool usable = HouseIsUtf8() ? HasData(locale.getLanguage()) : uloc_getLCID(locale.getName()) != 0;
    return *locale.getLanguage() && U_SUCCESS(status) && status != U_USING_DEFAULT_WARNING && usable;
}

}  // namespace

const LocaleData& LocaleByName(const char* name) {
    std::string base(name ? name : "");
    base.resize(std::min(base.find('.'), base.find('@')) == std::string::npos ? base.size()
                                                                              : std::min(base.find('.'), base.find('@')));
    if (base.empty() || base == "C" || base == "POSIX") base = "en_US";
    icu::Locale locale(base.c_str());
    if (locale.isBogus() || !Known(locale)) return Cached(icu::Locale::getUS());
    if (!*locale.getCountry()) {  // "sv": a Windows user locale always names a country
        UErrorCode status = U_ZERO_ERROR;
        locale.addLikelySubtags(status);
        if (U_SUCCESS(status)) locale = icu::Locale(locale.getLanguage(), locale.getCountry());
    }
    return Cached(locale);
}

const LocaleData* LocaleById(LCID lcid) {
    char name[ULOC_FULLNAME_CAPACITY];
    UErrorCode status = U_ZERO_ERROR;
    const int32_t length = uloc_getLocaleForLCID(lcid, name, sizeof name, &status);
    if (U_FAILURE(status) || length <= 0 || length >= static_cast<int32_t>(sizeof name)) return nullptr;
    return &LocaleByName(name);
}

}  // namespace orvik::detail
