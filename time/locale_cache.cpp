#include "time/locale_cache.h"

#include <algorithm>
#include <cstdlib>
#include <string>

#include "platform/house_text_internal.h"
#include "res/ids.h"
#include "time/digits_internal.h"
#include "time/local_zone.h"
#include "time/separator.h"

namespace orvik::detail {
namespace {

LocaleCache& Cache() {
    static LocaleCache cache;
    return cache;
}
NlsTexts& Texts() {
    static NlsTexts texts;
    return texts;
}

// Sizes are bytes with the terminator; a setting that does not fit cannot be supplied. In a UTF-8 process all fit.
template <int size>
CString Setting(LCTYPE item) {
    char buffer[size] = {};
    if (!HouseIsUtf8()) return ::GetLocaleInfoA(LOCALE_USER_DEFAULT, item, buffer, size) != 0 ? CString(buffer) : CString();
    const int needed = ::GetLocaleInfoA(LOCALE_USER_DEFAULT, item, nullptr, 0);
    std::string text(static_cast<size_t>(std::max(needed, 0)), 0);
    if (needed <= 0 || ::GetLocaleInfoA(LOCALE_USER_DEFAULT, item, text.data(), needed) == 0) return {};
    return CString(text.c_str());
}

CString Text(UINT id) {
    CString text;
    text.LoadString(id);
    return text;
}

bool IsApostrophe(std::string_view text) { return FirstHouse(text) == 0x2019; }

char First(const CString& text) { return text.IsEmpty() ? '\0' : text.GetAt(0); }

// Digits and the minus, which a Windows-1252 process has none but ASCII's of.
void UpdateSigns(LocaleCache& cache) {
    constexpr std::string_view kMinus = "\xE2\x88\x92", kNativeDigits = "2";
    cache.digits = CString();
    cache.minus = "-";
    g_hasOwnDigits = false;
    if (!HouseIsUtf8()) return;
    const CString digits = Setting<16>(LOCALE_SNATIVEDIGITS), minus = Setting<8>(LOCALE_SNEGATIVESIGN);
    if (Setting<4>(LOCALE_IDIGITSUBSTITUTION).GetView() == kNativeDigits && AreNativeDigits(digits.GetView()))
        cache.digits = digits, g_hasOwnDigits = true;
    if (minus.GetView().find(kMinus) != std::string_view::npos) cache.minus = kMinus;
}

}  // namespace

const LocaleCache& TheLocaleCache() { return Cache(); }
const NlsTexts& TheNlsTexts() { return Texts(); }

// A separator's stand-in is none of the other's.
void UpdateSeparators(LocaleCache& cache) {
    const std::string_view thousand = cache.thousandSep.GetView();
    cache.decimal = {cache.decimalSep.GetView(), First(cache.thousandSep) == '.' ? ',' : '.'};
    const char standIn = IsBlank(FirstHouse(thousand)) ? ' '
                         : IsApostrophe(thousand)      ? '\''
                         : cache.decimal.ascii == ','  ? '.'
                                                       : ',';
    cache.thousand = {thousand, standIn};
    cache.list = {cache.listSep.GetView(), ';'};
    cache.time = {cache.timeSep.GetView(), ':'};
    cache.date = {cache.dateSep.GetView(), '-'};
}

}  // namespace orvik::detail

using namespace orvik::detail;

void NlsToolsRegister() {
    NlsTexts& texts = Texts();
    CString* const lists[] = {&texts.weeks,   &texts.days,         &texts.hours,       &texts.minutes,
                              &texts.seconds, &texts.milliseconds, &texts.microseconds};
    UINT id = IDS_WORDS_WEEKS;
    for (CString* list : lists) *list = Text(id++);
    texts.badNumber = Text(IDS_BAD_NUMBER);
    texts.badDate = Text(IDS_BAD_DATE);
    texts.badTime = Text(IDS_BAD_TIME);
    texts.badSpan = Text(IDS_BAD_SPAN);
    NlsToolsUpdate();
}

void NlsToolsUpdate() {
    LocaleCache& cache = Cache();
    cache.timePicture = Setting<20>(LOCALE_STIMEFORMAT);
    cache.country = Setting<255>(LOCALE_SCOUNTRY);
    cache.language = Setting<255>(LOCALE_SLANGUAGE);
    cache.listSep = Setting<4>(LOCALE_SLIST);
    cache.timeSep = Setting<4>(LOCALE_STIME);
    cache.morning = Setting<9>(LOCALE_S1159);
    cache.afternoon = Setting<9>(LOCALE_S2359);
    cache.dateSep = Setting<4>(LOCALE_SDATE);
    cache.shortDate = Setting<80>(LOCALE_SSHORTDATE);
    cache.longDate = Setting<80>(LOCALE_SLONGDATE);
    cache.currency = Setting<6>(LOCALE_SCURRENCY);
    // While digits are not grouped the separator is not read again: an earlier one stays.
    if (First(Setting<4>(LOCALE_SGROUPING)) != '0') cache.thousandSep = Setting<4>(LOCALE_STHOUSAND);
    cache.decimalSep = Setting<4>(LOCALE_SDECIMAL);
    cache.leadingZero = std::atoi(Setting<2>(LOCALE_ILZERO));
    UpdateSigns(cache);
    UpdateSeparators(cache);
    RefreshLocalZone();
}

void NlsToolsUnregister() {}

char NlsGetDecimalSep() { return Cache().decimal.ascii; }
char NlsGetThousandSep() { return Cache().thousand.ascii; }
char NlsGetListSep() { return Cache().list.ascii; }
char NlsGetTimeSep() { return Cache().time.ascii; }
char NlsGetDateSep() { return Cache().date.ascii; }
CString NlsGetShortDateSpec() { return Cache().shortDate; }
CString NlsGetTimeSpec() { return Cache().timePicture; }

CString NlsGetLongMonth(int month) { return Text(static_cast<UINT>(month) + IDS_LONG_MONTH - 1); }
CString NlsGetShortMonth(int month) { return Text(static_cast<UINT>(month) + IDS_SHORT_MONTH - 1); }
CString NlsGetLongDay(int day) { return Text(static_cast<UINT>(day) + IDS_LONG_DAY); }
CString NlsGetShortDay(int day) { return Text(static_cast<UINT>(day) + IDS_SHORT_DAY); }
