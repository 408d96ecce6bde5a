#include "time/date_picture_internal.h"

#include <optional>

#include "platform/house_text_internal.h"
#include "time/digits_internal.h"
#include "time/integer_text_internal.h"
#include "time/local_nls_tools.h"
#include "time/locale_cache.h"
#include "time/separator.h"

namespace orvik::detail {
namespace {

constexpr int kMonths = 12, kWeekdays = 7;
constexpr int kFirstYear = 1900, kLastYear = 2041;  // that four digits may name
constexpr int kFirstOf1900s = 70;                   // of the years that two digits name

struct Element {
    char letter = 0;        // of a run; 0 for text that stands for itself
    size_t run = 0;         // its length
    std::string_view text;  // without quotes
};

bool TakeElement(std::string_view& picture, Element& element) {
    if (picture.empty()) return false;
    const char first = picture[0];
    if (first == '\'') {
        const std::string_view quoted = picture.substr(1);
        const size_t end = quoted.find('\'');
        element = {0, 0, quoted.substr(0, end)};
        picture = end == std::string_view::npos ? std::string_view() : quoted.substr(end + 1);
    } else if (first == 'M' || first == 'd' || first == 'y') {
        const size_t end = picture.find_first_not_of(first);
        element = {first, end == std::string_view::npos ? picture.size() : end, {}};
        picture.remove_prefix(element.run);
    } else {
        std::string_view rest = picture.substr(1);
        if (static_cast<unsigned char>(first) >= 0x80) rest = picture, TakeHouse(rest);
        element = {0, 0, picture.substr(0, picture.size() - rest.size())};
        picture = rest;
    }
    return true;
}

void AppendField(CString& text, const Element& field, const CalendarDate& date) {
    const int width = field.run == 2 ? 2 : -1;
    switch (field.letter) {
        case 'M':
            if (field.run <= 2) AppendInteger(text, date.month, width);
            if (field.run == 3) text += NlsGetShortMonth(date.month);
            if (field.run == 4) text += NlsGetLongMonth(date.month);
            break;
        case 'd':
            if (field.run <= 2) AppendInteger(text, date.day, width);
            if (field.run == 3) text += NlsGetShortDay(date.weekday);
            if (field.run == 4) text += NlsGetLongDay(date.weekday);
            break;
        default:
            if (field.run == 2) AppendInteger(text, date.year % 100, width);
            if (field.run == 4) AppendInteger(text, date.year);
    }
}

char* PutTwo(char* at, int value) {
    *at++ = static_cast<char>('0' + value / 10);
    *at++ = static_cast<char>('0' + value % 10);
    return at;
}

// Null for what is no figure, or not one of so many digits.
char* PutFigure(char* at, char letter, size_t run, const CalendarDate& date) {
    if (letter == 'y') {
        if (date.year < 1000 || date.year > 9999 || (run != 2 && run != 4)) return nullptr;
        if (run == 4) at = PutTwo(at, date.year / 100);
        return PutTwo(at, date.year % 100);
    }
    const int value = letter == 'M' ? date.month : date.day;
    if (value < 0 || value > 99 || run > 2) return nullptr;
    if (run == 2 || value > 9) return PutTwo(at, value);
    *at++ = static_cast<char>('0' + value);
    return at;
}

// The beginning of a date in figures, which most dates are all of: one piece for the text to take, instead of one an element.
// Takes elements off the picture until one is no figure and no plain text of ASCII, or there is no more room.
void AppendFigures(CString& text, std::string_view& picture, const CalendarDate& date) {
    constexpr int kRoom = 24;
    const int length = text.GetLength();
    char* const room = text.GetBuffer(length + kRoom);
    char* end = room + length;
    size_t taken = 0;
    while (taken < picture.size() && end + 4 <= room + length + kRoom) {
        const char letter = picture[taken];
        size_t run = 1;
        if (letter == 'M' || letter == 'd' || letter == 'y') {
            while (taken + run < picture.size() && picture[taken + run] == letter) ++run;
            char* const behind = PutFigure(end, letter, run, date);
            if (!behind) break;
            end = behind;
        } else {
            if (letter == '\'' || static_cast<unsigned char>(letter) >= 0x80) break;
            *end++ = letter;
        }
        taken += run;
    }
    picture.remove_prefix(taken);
    text.ReleaseBuffer(static_cast<int>(end - room));
}

// Of this house's text, not of the process locale: "S\xF6ndag" is one word. Beyond Latin-1 whatever is no mark, symbol or digit
// is one, the vowel signs of names in Hindi, too.
bool IsLetter(char32_t c) {
    if (c < 0x80) return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
    if (c < 0x100) return (c >= 0xC0 && c != 0xD7 && c != 0xF7) || c == 0xAA || c == 0xB5 || c == 0xBA;
    const auto within = [c](char32_t first, char32_t last) { return c >= first && c <= last; };
    return !within(0x2C2, 0x2DF) && !within(0x600, 0x61F) && !within(0x66A, 0x66D) && !within(0x964, 0x965) &&
           !within(0x2000, 0x2BFF) && !within(0x3000, 0x303F) && ValueOfDigit(c) < 0;
}

// The number, from `first`, of the first name that is the word at the cursor.
std::optional<int> FindName(const char* cursor, CString (*name)(int), int first, int count) {
    const char* end = cursor;
    for (const char* behind = end; *behind && IsLetter(TakeLetter(behind));) end = behind;
    const std::string_view word(cursor, static_cast<size_t>(end - cursor));
    for (int i = first; i < first + count; ++i)
        if (name(i).GetView() == word) return i;
    return std::nullopt;
}

bool ReadYear(const char*& cursor, size_t run, std::optional<int>& year) {
    if (run != 2 && run != 4) return true;
    if (run == 4 && !IsDigitAt(cursor)) return false;
    int number = 0;
    CLocalNlsTools::sInt(cursor, &number, -1);
    if (run == 2) {
        if (number > 99) return false;
        number += number >= kFirstOf1900s ? 1900 : 2000;
    } else if (number < kFirstYear || number > kLastYear) {
        return false;
    }
    year = number;
    return true;
}

// A month's or a day's number, or its name; only a month's name has a value.
bool ReadField(const char*& cursor, const Element& field, std::optional<int>& value) {
    if (field.run <= 2) {
        int number = 0;
        CLocalNlsTools::sInt(cursor, &number, -1);
        value = number;
    } else if (field.run <= 4) {
        const bool month = field.letter == 'M', brief = field.run == 3;
        const auto found = month ? FindName(cursor, brief ? NlsGetShortMonth : NlsGetLongMonth, 1, kMonths)
                                 : FindName(cursor, brief ? NlsGetShortDay : NlsGetLongDay, 0, kWeekdays);
        if (!found) return false;
        if (month) value = found;
    }
    return true;
}

}  // namespace

void AppendDatePicture(CString& text, std::string_view picture, const CalendarDate& date) {
    if (!g_hasOwnDigits) AppendFigures(text, picture, date);
    for (Element element; TakeElement(picture, element);) {
        if (!element.letter) {
            text += element.text;
            continue;
        }
        const int from = text.GetLength();
        AppendField(text, element, date);
        SpellDigits(text, from);
    }
}

bool ReadDatePicture(const char*& cursor, std::string_view picture, CalendarDate& date) {
    std::optional<int> year, month, day;
    for (Element element; TakeElement(picture, element);) {
        const bool matches = element.letter == 'y'   ? ReadYear(cursor, element.run, year)
                             : element.letter == 'M' ? ReadField(cursor, element, month)
                             : element.letter == 'd' ? ReadField(cursor, element, day)
                                                     : TakeText(cursor, element.text);
        if (!matches) return false;
    }
    if (!year || !month || !day) return false;
    date = {*year, *month, *day, 0};
    return true;
}

}  // namespace orvik::detail
