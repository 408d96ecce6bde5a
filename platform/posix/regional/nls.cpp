#include "platform/posix/regional/nls.h"

#include <atomic>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/house_text_internal.h"
#include "platform/posix/kernel/errors.h"
#include "platform/posix/regional/collation_internal.h"
#include "platform/posix/regional/crt_time.h"
#include "platform/posix/regional/locale_data_internal.h"
#include "platform/posix/regional/locale_pictures_internal.h"

using namespace orvik::detail;

namespace {

constexpr const char* kClockLetters = "hHms";
constexpr const char* kDateLetters = "dMy";

// The user's locale of each group of settings, and what SetLocaleInfoA put over it.
struct UserSettings {
    const LocaleData* names;
    const LocaleData* clock;
    const LocaleData* numbers;
    const LocaleData* money;
    const LocaleData* order;
    std::map<LCTYPE, std::string> changed;

    bool operator==(const UserSettings&) const = default;
};

const LocaleData& FromEnvironment(const char* category) {
    for (const char* variable : {"LC_ALL", category, "LANG"})
        if (const char* value = std::getenv(variable); value && *value) return LocaleByName(value);
    return LocaleByName("");
}

UserSettings ReadEnvironment() {
    return {&FromEnvironment("LC_CTYPE"),    &FromEnvironment("LC_TIME"),    &FromEnvironment("LC_NUMERIC"),
            &FromEnvironment("LC_MONETARY"), &FromEnvironment("LC_COLLATE"), {}};
}

using SharedSettings = std::shared_ptr<const UserSettings>;

// Settings are never changed once they are shared, only replaced, and all that were in force are kept, each once: whoever holds
// them needs no lock, no count and no copy.
class User {
public:
    const UserSettings& Settings() const { return *m_settings.load(std::memory_order_acquire); }
    void Replace(UserSettings fresh) {
        for (const auto& earlier : m_kept)
            if (*earlier == fresh) return m_settings.store(earlier.get(), std::memory_order_release);
        m_kept.push_back(std::make_unique<const UserSettings>(std::move(fresh)));
        m_settings.store(m_kept.back().get(), std::memory_order_release);
    }

    std::mutex lock;  // of those who replace them

private:
    std::vector<std::unique_ptr<const UserSettings>> m_kept = FromEnvironmentAlone();
    std::atomic<const UserSettings*> m_settings = m_kept.back().get();

    static std::vector<std::unique_ptr<const UserSettings>> FromEnvironmentAlone() {
        std::vector<std::unique_ptr<const UserSettings>> first;
        first.push_back(std::make_unique<const UserSettings>(ReadEnvironment()));
        return first;
    }
};
User& TheUser() {
    static User user;
    return user;
}

SharedSettings Fixed(const LocaleData& locale) {
    return std::make_shared<UserSettings>(UserSettings{&locale, &locale, &locale, &locale, &locale, {}});
}

// The settings that an id names, with (the user's) or without changes; null for an id without a locale.
SharedSettings SettingsOf(LCID locale, LCTYPE item) {
    const LCID plain = LANGIDFROMLCID(locale);
    const UserSettings& settings = TheUser().Settings();
    const bool mine =
        plain == 0 || plain == LOCALE_USER_DEFAULT || plain == LOCALE_SYSTEM_DEFAULT || plain == settings.names->lcid;
    if (!mine) {
        const LocaleData* data = LocaleById(plain);
        return data ? Fixed(*data) : nullptr;
    }
    if (!(item & LOCALE_NOUSEROVERRIDE)) return {SharedSettings(), &settings};
    const auto unchanged = std::make_shared<UserSettings>(settings);
    unchanged->changed.clear();
    return unchanged;
}

// What a setting is, its changes included.
std::optional<std::string> Value(const UserSettings& s, LCTYPE item) {
    if (const auto changed = s.changed.find(item); changed != s.changed.end()) return changed->second;
    const auto flag = [](bool on) { return std::string(on ? "1" : "0"); };
    const auto within = [item](LCTYPE first, LCTYPE count) { return item >= first && item < first + count; };
    if (within(LOCALE_SDAYNAME1, 7)) return s.clock->days[item - LOCALE_SDAYNAME1];
    if (within(LOCALE_SABBREVDAYNAME1, 7)) return s.clock->shortDays[item - LOCALE_SABBREVDAYNAME1];
    if (within(LOCALE_SMONTHNAME1, 12)) return s.clock->months[item - LOCALE_SMONTHNAME1];
    if (within(LOCALE_SABBREVMONTHNAME1, 12)) return s.clock->shortMonths[item - LOCALE_SABBREVMONTHNAME1];
    switch (item) {
        case LOCALE_ILANGUAGE: {
            static constexpr char kDigits[] = "0123456789abcdef";
            std::string hex;
            for (int shift = 12; shift >= 0; shift -= 4) hex += kDigits[(s.names->lcid >> shift) & 0xF];
            return hex;
        }
        case LOCALE_SLANGUAGE:
            return s.names->fullName;
        case LOCALE_SENGLANGUAGE:
            return s.names->languageName;
        case LOCALE_SCOUNTRY:
        case LOCALE_SENGCOUNTRY:
            return s.names->countryName;
        case LOCALE_SISO639LANGNAME:
            return s.names->language;
        case LOCALE_SISO3166CTRYNAME:
            return s.names->country;
        case LOCALE_ICOUNTRY:
            return s.names->countryCode;
        case LOCALE_IMEASURE:
            return s.names->measure;
        case LOCALE_IDEFAULTANSICODEPAGE:
            return "1252";
        case LOCALE_SLIST:
            return s.numbers->list;
        case LOCALE_SDECIMAL:
            return s.numbers->decimal;
        case LOCALE_STHOUSAND:
            return s.numbers->thousand;
        case LOCALE_SGROUPING:
            return s.numbers->grouping;
        case LOCALE_IDIGITS:
            return "2";
        case LOCALE_ILZERO:
            return "1";
        case LOCALE_SNATIVEDIGITS:
            return s.numbers->digits;
        case LOCALE_IDIGITSUBSTITUTION:
            return s.numbers->digits.size() > 10 ? "2" : "1";
        case LOCALE_SNEGATIVESIGN:
            return s.numbers->minus;
        case LOCALE_SCURRENCY:
            return s.money->currency;
        case LOCALE_ICURRDIGITS:
            return s.money->currencyDigits;
        case LOCALE_ICURRENCY:
            return s.money->currencyOrder;
        case LOCALE_INEGCURR:
            return s.money->negativeCurrency;
        case LOCALE_SSHORTDATE:
            return s.clock->shortDate;
        case LOCALE_SLONGDATE:
            return s.clock->longDate;
        case LOCALE_STIMEFORMAT:
            return s.clock->timePicture;
        case LOCALE_S1159:
            return s.clock->morning;
        case LOCALE_S2359:
            return s.clock->afternoon;
        // These follow the pictures, also when the pictures were changed.
        case LOCALE_STIME:
            return PictureSeparator(*Value(s, LOCALE_STIMEFORMAT), kClockLetters);
        case LOCALE_ITIME:
            return flag(FirstPictureLetter(*Value(s, LOCALE_STIMEFORMAT), "hH") == 'H');
        case LOCALE_ITIMEMARKPOSN:
            return flag(FirstPictureLetter(*Value(s, LOCALE_STIMEFORMAT), "hHt") == 't');
        case LOCALE_ITLZERO:
            return flag(PictureRun(*Value(s, LOCALE_STIMEFORMAT), "hH") > 1);
        case LOCALE_SDATE:
            return PictureSeparator(*Value(s, LOCALE_SSHORTDATE), kDateLetters);
        case LOCALE_IDATE: {
            const char first = FirstPictureLetter(*Value(s, LOCALE_SSHORTDATE), kDateLetters);
            return first == 'y' ? "2" : first == 'd' ? "1" : "0";
        }
        default:
            return std::nullopt;
    }
}

bool IsNumber(LCTYPE item) {
    switch (item) {
        case LOCALE_ILANGUAGE:
        case LOCALE_ICOUNTRY:
        case LOCALE_IMEASURE:
        case LOCALE_IDIGITS:
        case LOCALE_ILZERO:
        case LOCALE_ICURRDIGITS:
        case LOCALE_ICURRENCY:
        case LOCALE_INEGCURR:
        case LOCALE_IDATE:
        case LOCALE_ITIME:
        case LOCALE_ITLZERO:
        case LOCALE_ITIMEMARKPOSN:
        case LOCALE_IDEFAULTANSICODEPAGE:
        case LOCALE_IDIGITSUBSTITUTION:
            return true;
        default:
            return false;
    }
}

// Longest text of a setting that may be changed, terminator included, as documented; 0 for one that may not.
size_t LongestText(LCTYPE item) {
    switch (item) {
        case LOCALE_SLIST:
        case LOCALE_SDECIMAL:
        case LOCALE_STHOUSAND:
        case LOCALE_SDATE:
        case LOCALE_STIME:
            return 4;
        case LOCALE_SGROUPING:
            return 10;
        case LOCALE_SCURRENCY:
            return 13;
        case LOCALE_S1159:
        case LOCALE_S2359:
            return 15;
        case LOCALE_SSHORTDATE:
        case LOCALE_SLONGDATE:
        case LOCALE_STIMEFORMAT:
            return 80;
        case LOCALE_IMEASURE:
        case LOCALE_ILZERO:
        case LOCALE_ICURRENCY:
        case LOCALE_ITIME:
            return 2;
        case LOCALE_IDIGITS:
        case LOCALE_ICURRDIGITS:
        case LOCALE_INEGCURR:
            return 3;
        default:
            return 0;
    }
}

size_t FirstLetterSize(std::string_view text) {
    std::string_view rest = text;
    if (!rest.empty()) TakeHouse(rest);
    return text.size() - rest.size();
}
size_t CountLetters(std::string_view text) {
    size_t count = 0;
    for (; !text.empty(); ++count) text.remove_prefix(FirstLetterSize(text));
    return count;
}

int Fail(DWORD code) {
    SetLastError(code);
    return 0;
}

int Deliver(const std::string& text, LPSTR out, int size) {
    const int needed = static_cast<int>(text.size()) + 1;
    if (size == 0) return needed;
    if (size < 0 || !out) return Fail(ERROR_INVALID_PARAMETER);
    if (size < needed) return Fail(ERROR_INSUFFICIENT_BUFFER);
    std::memcpy(out, text.c_str(), text.size() + 1);
    return needed;
}

// Takes a text into a given room, and counts it all.
class Sink {
public:
    Sink(char* room, size_t size) : m_room(room), m_size(size) {}
    void Put(char c) {
        if (m_count < m_size) m_room[m_count] = c;
        ++m_count;
    }
    void Put(std::string_view text) {
        for (const char c : text) Put(c);
    }
    void PutPadded(unsigned value, size_t run) {
        if (value < 100) {  // what fields are, years aside
            const size_t length = value > 9 || run >= 2 ? 2 : 1;
            if (m_count + length <= m_size) {
                char* at = m_room + m_count;
                if (length == 2) *at++ = static_cast<char>('0' + value / 10);
                *at = static_cast<char>('0' + value % 10);
            }
            m_count += length;
            return;
        }
        char digits[12];
        Put({digits, static_cast<size_t>(std::to_chars(digits, digits + sizeof digits, value).ptr - digits)});
    }
    size_t Count() const { return m_count; }
    void CutTo(size_t count) { m_count = count; }

private:
    char* m_room;
    size_t m_size, m_count = 0;
};

// As Deliver for what `write` puts into a sink; but where it does not fit, the room is left with an empty text.
template <class Write>
int DeliverWritten(const Write& write, LPSTR out, int size) {
    if (size < 0 || (size > 0 && !out)) return Fail(ERROR_INVALID_PARAMETER);
    Sink sink(out, size > 0 ? static_cast<size_t>(size) : 0);
    write(sink);
    const int needed = static_cast<int>(sink.Count()) + 1;
    if (size == 0) return needed;
    const bool fits = needed <= size;
    out[fits ? sink.Count() : 0] = 0;
    return fits ? needed : Fail(ERROR_INSUFFICIENT_BUFFER);
}

// The changed value of an item, else the given one.
const std::string& Changed(const UserSettings& s, LCTYPE item, const std::string& standing) {
    const auto changed = s.changed.find(item);
    return changed != s.changed.end() ? changed->second : standing;
}

constexpr auto kIsClockField = [](char c) { return c == 'h' || c == 'H' || c == 'm' || c == 's' || c == 't'; };
constexpr auto kIsDateField = [](char c) { return c == 'd' || c == 'M' || c == 'y' || c == 'g'; };

// Walks a picture: fields come in runs of their letter, quoted text and everything else go to `literal`.
template <class IsField, class Run, class Literal>
void WalkPicture(std::string_view picture, const IsField& isField, const Run& run, const Literal& literal) {
    for (size_t i = 0; i < picture.size();) {
        if (picture[i] == '\'') {
            for (++i; i < picture.size(); ++i) {
                if (picture[i] == '\'') {
                    ++i;
                    if (i >= picture.size() || picture[i] != '\'') break;  // two quotes within quoted text are one quote
                }
                literal(picture[i]);
            }
        } else if (isField(picture[i])) {
            size_t end = i;
            while (end < picture.size() && picture[end] == picture[i]) ++end;
            run(picture[i], end - i);
            i = end;
        } else {
            literal(picture[i++]);
        }
    }
}

// A field that a flag leaves out takes the literal text before it with it, so that "h:mm:ss tt" shortens to "h:mm tt".
void WriteTime(Sink& out, const SYSTEMTIME& t, std::string_view picture, DWORD flags, const UserSettings& s) {
    size_t written = 0;  // without the literal text since the last field
    const auto leftOut = [flags](char letter) {
        if (letter == 't') return (flags & TIME_NOTIMEMARKER) != 0;
        if (letter == 's') return (flags & (TIME_NOSECONDS | TIME_NOMINUTESORSECONDS)) != 0;
        return letter == 'm' && (flags & TIME_NOMINUTESORSECONDS) != 0;
    };
    WalkPicture(
        picture, kIsClockField,
        [&](char letter, size_t run) {
            if (leftOut(letter)) return out.CutTo(written);
            unsigned hour = t.wHour;
            if (letter == 'h' && !(flags & TIME_FORCE24HOURFORMAT)) hour = (hour + 11) % 12 + 1;
            if (letter == 'h' || letter == 'H') out.PutPadded(hour, run);
            if (letter == 'm') out.PutPadded(t.wMinute, run);
            if (letter == 's') out.PutPadded(t.wSecond, run);
            if (letter == 't') {
                const std::string& mark =
                    t.wHour < 12 ? Changed(s, LOCALE_S1159, s.clock->morning) : Changed(s, LOCALE_S2359, s.clock->afternoon);
                out.Put(std::string_view(mark).substr(0, run == 1 ? FirstLetterSize(mark) : std::string_view::npos));
            }
            written = out.Count();
        },
        [&](char c) { out.Put(c); });
}

void WriteDate(Sink& out, const SYSTEMTIME& d, std::string_view picture, const UserSettings& s) {
    bool namesDay = false;
    WalkPicture(
        picture, kIsDateField, [&](char letter, size_t run) { namesDay |= letter == 'd' && run <= 2; }, [](char) {});
    const unsigned weekday = (d.wDayOfWeek + 6u) % 7;  // from Monday
    WalkPicture(
        picture, kIsDateField,
        [&](char letter, size_t run) {
            const unsigned month = d.wMonth - 1u;
            switch (letter) {
                case 'd':
                    if (run <= 2) return out.PutPadded(d.wDay, run);
                    return out.Put(run == 3 ? s.clock->shortDays[weekday] : s.clock->days[weekday]);
                case 'M':
                    if (run <= 2) return out.PutPadded(d.wMonth, run);
                    if (run == 3) return out.Put(s.clock->shortMonths[month]);
                    return out.Put(namesDay ? s.clock->monthsInDates[month] : s.clock->months[month]);
                case 'y':
                    return run <= 2 ? out.PutPadded(d.wYear % 100u, run) : out.PutPadded(d.wYear, 1);
                default:
                    return out.Put(s.clock->eras[1]);
            }
        },
        [&](char c) { out.Put(c); });
}

}  // namespace

namespace orvik::detail {
void ReloadRegionalSettings() {
    User& user = TheUser();
    const std::lock_guard guard(user.lock);
    user.Replace(ReadEnvironment());
}

std::string OrderingLocale(LCID locale) {
    const auto settings = SettingsOf(locale, 0);
    return settings ? settings->order->name : std::string();
}
}  // namespace orvik::detail

LCID GetUserDefaultLCID() { return TheUser().Settings().names->lcid; }
UINT GetACP() { return 1252; }

int GetLocaleInfoA(LCID locale, LCTYPE item, LPSTR out, int size) {
    const LCTYPE plain = item & ~(LOCALE_NOUSEROVERRIDE | LOCALE_RETURN_NUMBER);
    const auto settings = SettingsOf(locale, item);
    if (!settings) return Fail(ERROR_INVALID_PARAMETER);
    const auto value = Value(*settings, plain);
    if (!value) return Fail(ERROR_INVALID_FLAGS);
    if (!(item & LOCALE_RETURN_NUMBER)) return Deliver(*value, out, size);
    if (!IsNumber(plain)) return Fail(ERROR_INVALID_FLAGS);
    if (size == 0) return sizeof(DWORD);
    if (!out || size < static_cast<int>(sizeof(DWORD))) return Fail(ERROR_INSUFFICIENT_BUFFER);
    const auto number = static_cast<DWORD>(std::strtoul(value->c_str(), nullptr, plain == LOCALE_ILANGUAGE ? 16 : 10));
    std::memcpy(out, &number, sizeof number);
    return sizeof number;
}

BOOL SetLocaleInfoA(LCID locale, LCTYPE item, LPCSTR text) {
    const LCID plain = LANGIDFROMLCID(locale);
    item &= ~LOCALE_NOUSEROVERRIDE;
    if (!text) return Fail(ERROR_INVALID_PARAMETER);
    const size_t longest = LongestText(item);
    if (longest == 0) return Fail(ERROR_INVALID_FLAGS);
    if (CountLetters(text) >= longest) return Fail(ERROR_INVALID_PARAMETER);
    User& user = TheUser();
    const std::lock_guard guard(user.lock);
    UserSettings s = user.Settings();
    if (plain != 0 && plain != LOCALE_USER_DEFAULT && plain != LOCALE_SYSTEM_DEFAULT && plain != s.names->lcid)
        return Fail(ERROR_INVALID_PARAMETER);
    switch (item) {
        case LOCALE_STIME:
            s.changed[LOCALE_STIMEFORMAT] = ReplacePictureSeparator(*Value(s, LOCALE_STIMEFORMAT), kClockLetters, text);
            break;
        case LOCALE_SDATE:
            s.changed[LOCALE_SSHORTDATE] = ReplacePictureSeparator(*Value(s, LOCALE_SSHORTDATE), kDateLetters, text);
            break;
        case LOCALE_ITIME: {
            std::string picture = *Value(s, LOCALE_STIMEFORMAT);
            bool quoted = false;
            for (char& c : picture) {
                if (c == '\'') quoted = !quoted;
                if (!quoted && (c == 'h' || c == 'H')) c = *text == '1' ? 'H' : 'h';
            }
            s.changed[LOCALE_STIMEFORMAT] = picture;
            break;
        }
        default:
            s.changed[item] = text;
    }
    user.Replace(std::move(s));
    return TRUE;
}

int GetTimeFormatA(LCID locale, DWORD flags, const SYSTEMTIME* time, LPCSTR picture, LPSTR out, int size) {
    const auto settings = SettingsOf(locale, flags & LOCALE_NOUSEROVERRIDE);
    if (!settings) return Fail(ERROR_INVALID_PARAMETER);
    if (flags & ~(TIME_NOMINUTESORSECONDS | TIME_NOSECONDS | TIME_NOTIMEMARKER | TIME_FORCE24HOURFORMAT | LOCALE_NOUSEROVERRIDE))
        return Fail(ERROR_INVALID_FLAGS);
    SYSTEMTIME now;
    if (!time) GetLocalTime(&now), time = &now;
    if (time->wHour > 23 || time->wMinute > 59 || time->wSecond > 59 || time->wMilliseconds > 999)
        return Fail(ERROR_INVALID_PARAMETER);
    const std::string_view standing = Changed(*settings, LOCALE_STIMEFORMAT, settings->clock->timePicture);
    const std::string_view asked = picture ? std::string_view(picture) : standing;
    return DeliverWritten([&](Sink& sink) { WriteTime(sink, *time, asked, flags, *settings); }, out, size);
}

int GetDateFormatA(LCID locale, DWORD flags, const SYSTEMTIME* date, LPCSTR picture, LPSTR out, int size) {
    const auto settings = SettingsOf(locale, flags & LOCALE_NOUSEROVERRIDE);
    if (!settings) return Fail(ERROR_INVALID_PARAMETER);
    if (flags & ~(DATE_SHORTDATE | DATE_LONGDATE | LOCALE_NOUSEROVERRIDE)) return Fail(ERROR_INVALID_FLAGS);
    if (picture && (flags & (DATE_SHORTDATE | DATE_LONGDATE))) return Fail(ERROR_INVALID_FLAGS);
    SYSTEMTIME given;
    if (date)
        given = *date;
    else
        GetLocalTime(&given);
    given.wHour = given.wMinute = given.wSecond = given.wMilliseconds = 0;
    FILETIME ft;
    if (!SystemTimeToFileTime(&given, &ft) || !FileTimeToSystemTime(&ft, &given)) return Fail(ERROR_INVALID_PARAMETER);
    const LCTYPE standing = flags & DATE_LONGDATE ? LOCALE_SLONGDATE : LOCALE_SSHORTDATE;
    const std::string asked = picture ? picture : *Value(*settings, standing);
    return DeliverWritten([&](Sink& sink) { WriteDate(sink, given, asked, *settings); }, out, size);
}
