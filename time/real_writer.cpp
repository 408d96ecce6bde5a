#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>

#include "time/digits_internal.h"
#include "time/locale_cache.h"
#include "time/number_text.h"
#include "time/separator.h"

using namespace orvik::detail;

namespace {

constexpr size_t kStandardDigits = 5;
// Every double ends within these: all further digits are 0.
constexpr size_t kMostSignificant = 800, kMostDecimals = 1074, kMostWhole = 309;

struct Picture {
    bool fixed;
    size_t digits;  // decimals if fixed, significant digits if not
};

size_t Run(const char* at, char c) {
    size_t length = 0;
    while (at[length] == c) ++length;
    return length;
}

Picture ReadPicture(const char* picture) {
    if (!picture) return {false, kStandardDigits};
    if (*picture == '@') return {false, Run(picture, '@')};
    if (*picture != '#' && *picture != '.' && *picture != ',') return {false, kStandardDigits};
    picture += Run(picture, '#');
    return {true, *picture == '.' || *picture == ',' ? Run(picture + 1, '#') : 0};
}

struct Style {
    Picture picture;
    std::string_view decimalSep, thousandSep, minus;
    bool leadingZero;
};

// Room for a text of known largest length, on the stack as long as that is short.
class Room {
public:
    explicit Room(size_t size) {
        if (size > sizeof m_small) m_large = std::make_unique_for_overwrite<char[]>(size);
        m_at = Begin();
    }
    void Put(char c) { *m_at++ = c; }
    void Put(std::string_view text) {
        for (const char c : text) *m_at++ = c;  // separators and digits: too short for a call
    }
    void PutZeros(size_t count) { m_at = std::fill_n(m_at, count, '0'); }
    std::string_view Text() const { return {Begin(), static_cast<size_t>(m_at - Begin())}; }

private:
    char* Begin() { return m_large ? m_large.get() : m_small; }
    const char* Begin() const { return m_large ? m_large.get() : m_small; }

    char m_small[160];
    std::unique_ptr<char[]> m_large;
    char* m_at;
};

void PutExponent(Room& room, int exponent) {
    room.Put('e');
    room.Put(exponent < 0 ? '-' : '+');
    char digits[4];
    const auto end = std::to_chars(digits, digits + sizeof digits, std::abs(exponent)).ptr;
    if (end - digits < 2) room.Put('0');
    room.Put(std::string_view(digits, static_cast<size_t>(end - digits)));
}

void WriteSignificant(CString& text, double magnitude, bool negative, const Style& style) {
    if (magnitude == 0) {
        text = std::string_view("0");
        return;
    }
    const size_t count = std::min(style.picture.digits, kMostSignificant);
    char raw[kMostSignificant + 16];
    const char* const rawEnd =
        std::to_chars(raw, raw + sizeof raw, magnitude, std::chars_format::scientific, static_cast<int>(count) - 1).ptr;
    // "d.ddde+xx": the first digit is moved over the point.
    const char* const mark = raw + (count > 1 ? count + 1 : 1);
    int exponent = 0;
    std::from_chars(mark + (mark[1] == '+' ? 2 : 1), rawEnd, exponent);
    if (count > 1) raw[1] = raw[0];
    std::string_view digits(count > 1 ? raw + 1 : raw, count);
    const int point = exponent + 1;  // digits in front of the decimal point
    while (static_cast<int>(digits.size()) > point && digits.back() == '0') digits.remove_suffix(1);

    const auto length = static_cast<int>(digits.size());
    Room room(digits.size() + style.decimalSep.size() + style.minus.size() + 16);
    if (negative) room.Put(style.minus);
    if (point < 1 && length - point < 5) {
        if (style.leadingZero) room.Put('0');
        room.Put(style.decimalSep);
        room.PutZeros(static_cast<size_t>(-point));
        room.Put(digits);
    } else if (point < 1 || point > length) {
        room.Put(digits[0]);
        if (length > 1) {
            room.Put(style.decimalSep);
            room.Put(digits.substr(1));
        }
        PutExponent(room, exponent);
    } else {
        room.Put(digits.substr(0, static_cast<size_t>(point)));
        if (point < length) {
            room.Put(style.decimalSep);
            room.Put(digits.substr(static_cast<size_t>(point)));
        }
    }
    text = room.Text();
}

// One unit of the last decimal.
double UnitOf(size_t decimals) {
    static constexpr double kUnits[] = {1, 1e-1, 1e-2, 1e-3, 1e-4, 1e-5, 1e-6, 1e-7, 1e-8, 1e-9};
    if (decimals < std::size(kUnits)) return kUnits[decimals];
    char power[32] = "1e-";
    const char* const end = std::to_chars(power + 3, power + sizeof power, decimals).ptr;
    double unit = 0;
    return std::from_chars(power, end, unit).ec == std::errc() ? unit : 0;
}

void WriteFixed(CString& text, double magnitude, bool negative, const Style& style) {
    const size_t decimals = style.picture.digits;
    const bool tooSmall = magnitude == 0 || magnitude < UnitOf(decimals);
    char raw[kMostWhole + 1 + kMostDecimals];
    std::string_view whole("0"), fraction;
    if (!tooSmall) {
        const char* const end = std::to_chars(raw, raw + sizeof raw, magnitude, std::chars_format::fixed,
                                              static_cast<int>(std::min(decimals, kMostDecimals)))
                                    .ptr;
        const std::string_view number(raw, static_cast<size_t>(end - raw));
        whole = number.substr(0, number.find('.'));
        if (decimals > 0) fraction = number.substr(whole.size() + 1);
    }
    Room room(style.minus.size() + whole.size() + whole.size() / 3 * style.thousandSep.size() + style.decimalSep.size() +
              decimals);
    if (negative && !tooSmall) room.Put(style.minus);
    if (whole.size() >= 4 && !style.thousandSep.empty()) {
        const size_t first = (whole.size() - 1) % 3 + 1;
        room.Put(whole.substr(0, first));
        for (size_t at = first; at < whole.size(); at += 3) {
            room.Put(style.thousandSep);
            room.Put(whole.substr(at, 3));
        }
    } else if (tooSmall || style.leadingZero || whole != "0") {
        room.Put(whole);
    }
    if (decimals > 0) {
        room.Put(style.decimalSep);
        room.Put(fraction);
        room.PutZeros(decimals - fraction.size());
    }
    text = room.Text();
}

void Write(CString& text, double value, const Style& style) {
    if (std::isnan(value))
        text = std::string_view("nan");
    else if (std::isinf(value))
        text = std::string_view(value < 0 ? "-inf" : "inf");
    else
        (style.picture.fixed ? WriteFixed : WriteSignificant)(text, std::fabs(value), value < 0, style);
}

}  // namespace

int _NlsSetReal(CString& text, const double& value, const char* picture) {
    const LocaleCache& cache = TheLocaleCache();
    Write(
        text, value,
        {ReadPicture(picture), cache.decimal.Text(), cache.thousandSep.GetView(), cache.minus.GetView(), cache.leadingZero != 0});
    if (std::isfinite(value)) SpellDigits(text);
    return 1;
}

int _NlsSetReal(CString& text, const double& value, const char* picture, CString decimalSep, CString thousandSep) {
    Write(text, value,
          {ReadPicture(picture), decimalSep.GetView(), thousandSep.GetView(), "-", TheLocaleCache().leadingZero != 0});
    return 1;
}

void NlsAddThousandSep(CString& text) {
    const std::string_view separator = TheLocaleCache().thousandSep.GetView(), old = text.GetView();
    if (separator.empty()) return;
    std::string fresh;
    for (const char* at = text; static_cast<size_t>(at - old.data()) < old.size();) {
        // A run of digits is parted from its right end: behind so many that threes are left.
        int left = 0;
        for (const char* ahead = at; TakeDigit(ahead) >= 0;) ++left;
        if (left == 0) fresh += *at++;
        for (; left > 0; --left) {
            const char* const digit = at;
            TakeDigit(at);
            fresh.append(digit, at);
            if (left > 1 && left % 3 == 1) fresh += separator;
        }
    }
    text = std::string_view(fresh);
}
