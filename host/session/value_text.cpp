#include "host/session/value_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <string_view>
#include <type_traits>

#include "afx/collections.h"
#include "frame/numeric_arrays.h"
#include "host/session/column_format.h"
#include "host/words/console.h"
#include "host/words/control_letters.h"
#include "host/words/texts.h"
#include "platform/letters.h"
#include "time/clock_text.h"
#include "time/date_text.h"
#include "time/locale_cache.h"
#include "time/number_text.h"

namespace {
template <class T>
std::string NumberText(T value) {
    char text[64];
    return std::string(text, std::to_chars(text, text + sizeof text, value).ptr);
}

// Of any script.
bool HasDigit(std::string_view text) {
    CString digits(std::string(text).c_str());
    NlsToAsciiDigits(digits);
    return digits.FindOneOf("0123456789") >= 0;
}

template <class T>
bool ReadNumber(std::string_view text, T& value) {
    if (!text.empty() && text[0] == '+') text.remove_prefix(1);
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error == std::errc() && end == text.data() + text.size()) return true;
    if constexpr (std::is_floating_point_v<T>) {
        if (!HasDigit(text)) return false;  // a sign alone would read as 0
        return _NlsGetReal(std::string(text).c_str(), value) && std::isfinite(value);
    }
    return false;
}

std::string_view TakePart(std::string_view& rest, bool& more) {
    const size_t end = rest.find(';');
    const std::string_view part = rest.substr(0, end);
    more = end != std::string_view::npos;
    rest.remove_prefix(more ? end + 1 : rest.size());
    return part;
}

template <class Array, class Element>
bool SetNumbers(IPropertyDB& db, const std::string& key, std::string_view text, bool& stored) {
    Array array;
    bool more = true;
    while (more) {
        Element element{};
        if (!ReadNumber(TakePart(text, more), element)) return false;
        array.Add(element);
    }
    stored = db.SetValue(key.c_str(), array);
    return true;
}

template <class Array>
const Array* As(const CObject* value) {
    return value != nullptr && value->IsKindOf(RUNTIME_CLASS(Array)) ? static_cast<const Array*>(value) : nullptr;
}

// One entry for each kind: its name, and its elements joined.
template <class Visit>
bool VisitNumbers(const CObject* value, Visit visit) {
    if (const auto* bytes = As<CByteArray>(value)) return visit("u8", *bytes), true;
    if (const auto* words = As<CWordArray>(value)) return visit("u16", *words), true;
    if (const auto* dwords = As<CDWordArray>(value)) return visit("u32", *dwords), true;
    if (const auto* ints = As<CInt32Array>(value)) return visit("i32", *ints), true;
    if (const auto* bigs = As<CInt64Array>(value)) return visit("i64", *bigs), true;
    if (const auto* singles = As<CFloatArray>(value)) return visit("r32", *singles), true;
    if (const auto* doubles = As<CDoubleArray>(value)) return visit("r64", *doubles), true;
    return false;
}
bool HasLetterOutsideXml(const CString& text) {
    for (const ControlLetter& control : FindControls(text.GetView())) {
        const bool layout = control.code == '\t' || control.code == '\r' || control.code == '\n';
        if ((control.code < 0x20 && !layout) || control.code >= 0xFFFE) return true;
    }
    return false;
}
// UTF-8, and how many elements there are in all.
struct Joined {
    std::string text;
    INT_PTR count = 0;
};
Joined Elements(const CObject* value, INT_PTR most) {
    Joined joined;
    const auto join = [&](const auto& array, auto textOf) {
        joined.count = array.GetSize();
        for (INT_PTR i = 0; i < std::min(joined.count, most); ++i) {
            if (i > 0) joined.text += ';';
            joined.text += textOf(array.GetAt(i));
        }
    };
    if (const auto* strings = As<CStringArray>(value)) {
        join(*strings, [](const CString& element) { return ToUtf8(element.GetString()); });
    }
    VisitNumbers(value, [&](const char*, const auto& array) { join(array, [](auto element) { return NumberText(element); }); });
    return joined;
}
}  // namespace

std::string KindOf(const CObject* value) {
    std::string kind = As<CStringArray>(value) ? "str" : "";
    VisitNumbers(value, [&](const char* name, const auto&) { kind = name; });
    return kind;
}

std::string TextOf(const CObject* value) { return Elements(value, std::numeric_limits<INT_PTR>::max()).text; }

std::string BriefTextOf(const CObject* value) {
    constexpr INT_PTR kElements = 8;
    constexpr size_t kCharacters = 200;
    auto [text, count] = Elements(value, kElements);
    const std::string more = count > kElements ? Say(Text::MoreElements, {std::to_string(count)}) : "";
    const size_t width = OrvikColumns(text);
    if (width <= kCharacters) return text + more;
    size_t end = 0;
    for (size_t letters = 0; letters < kCharacters; ++letters) end = OrvikNextLetter(text, end);
    return text.substr(0, end) + (more.empty() ? Say(Text::MoreCharacters, {std::to_string(width)}) : more);
}

std::string TextOf(double value) { return NumberText(value); }

std::string ShortTextOf(double value, const std::string& picture) {
    CString text;
    _NlsSetReal(text, value, picture.empty() ? "@@@@@@" : picture.c_str());
    return ToUtf8(text.GetString());
}

std::string WholeTextOf(double value) {
    constexpr double kLeast = 1e-5, kMost = 1e15;
    const double size = std::fabs(value);
    const bool plain = size == 0 || (size >= kLeast && size < kMost);
    const auto narrow = static_cast<float>(value);
    char text[64];
    std::to_chars_result end;
    if (static_cast<double>(narrow) == value) {
        end = std::to_chars(text, std::end(text), narrow, plain ? std::chars_format::fixed : std::chars_format::scientific);
    } else {
        end = std::to_chars(text, std::end(text), value, std::chars_format::general, 15);
    }
    std::string said(text, end.ptr);
    if (const size_t point = said.find('.'); point != std::string::npos) said.replace(point, 1, DecimalSign());
    return said;
}

std::string TimeTextOf(__int64 time) {
    constexpr __int64 kHalf = 500;  // us, of the last digit that is written: rounded, as all other forms of a reading's time are
    CVXTTime point;
    point.SetBinaryTime(time > std::numeric_limits<__int64>::max() - kHalf ? time : time + kHalf);
    CString date, clock;
    _NlsSetShortDate(date, point);
    _NlsSetTime(clock, point, 0);
    // In tables the numbers beside have these digits.
    NlsToAsciiDigits(date);
    NlsToAsciiDigits(clock);
    // A designator stays at the end, where people expect it and where it is read.
    const std::string_view shown = clock.GetView();
    const size_t end = shown.find_last_of("0123456789") + 1;  // 0 without any
    const int milliseconds = point.Get(TT_MILLISECOND);
    std::string text(date.GetView());
    text.append(1, ' ').append(shown.substr(0, end)).append(1, NlsGetDecimalSep() != 0 ? NlsGetDecimalSep() : '.');
    for (const int weight : {100, 10, 1}) text += static_cast<char>('0' + milliseconds / weight % 10);
    return ToUtf8(text.append(shown.substr(end)));
}

std::optional<double> RealInUsersFormat(const std::string& text) {
    double value = 0;
    return HasDigit(text) && _NlsGetReal(text.c_str(), value) && std::isfinite(value) ? std::optional(value) : std::nullopt;
}

bool RealFromText(const std::string& text, double& value) { return ReadNumber(text, value) && std::isfinite(value); }

void SetFromText(IPropertyDB& db, const std::string& key, const std::string& kind, const std::string& text) {
    bool stored = false, understood = true;
    if (kind == "str") {
        stored = db.SetValue(key.c_str(), text.c_str());
    } else if (kind == "u8") {
        understood = SetNumbers<CByteArray, BYTE>(db, key, text, stored);
    } else if (kind == "u16") {
        understood = SetNumbers<CWordArray, WORD>(db, key, text, stored);
    } else if (kind == "u32") {
        understood = SetNumbers<CDWordArray, DWORD>(db, key, text, stored);
    } else if (kind == "i32") {
        understood = SetNumbers<CInt32Array, int>(db, key, text, stored);
    } else if (kind == "i64") {
        understood = SetNumbers<CInt64Array, __int64>(db, key, text, stored);
    } else if (kind == "r32") {
        understood = SetNumbers<CFloatArray, float>(db, key, text, stored);
    } else if (kind == "r64") {
        understood = SetNumbers<CDoubleArray, double>(db, key, text, stored);
    } else {
        throw Failure{kWrongUse, Say(Text::UnknownKind, {kind})};
    }
    if (!understood) throw Failure{kWrongUse, Say(Text::BadValue, {text, kind})};
    if (!stored) throw Failure{kWrongUse, Say(Text::KeyNotSet, {ToUtf8(key)})};
}

XmlFit FitInXml(const CObject* value) {
    if (As<CByteArray>(value) != nullptr || As<CInt32Array>(value) != nullptr) return XmlFit::Nothing;
    if (const auto* strings = As<CStringArray>(value)) {
        // An edge of white space is trimmed, ";" parts elements, bytes that are no UTF-8 become letters, and controls U+FFFD.
        for (INT_PTR i = 0; i < strings->GetSize(); ++i) {
            const CString element = strings->GetAt(i);
            CString trimmed = element;
            trimmed.Trim(" \t\r\n");
            const bool edge = i == 0 || i == strings->GetSize() - 1;
            const bool otherLetters = ToUtf8(element.GetString()) != element.GetString();
            if (element.Find(';') >= 0 || (edge && trimmed != element) || otherLetters || HasLetterOutsideXml(element))
                return XmlFit::Changed;
        }
        return XmlFit::Whole;
    }
    return XmlFit::Whole;
}
