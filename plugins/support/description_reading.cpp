#include "plugins/support/description_reading.h"

#include <charconv>
#include <cmath>

#include "frame/numeric_arrays.h"

namespace orvik::description {

double NumberFrom(const CString& key, CString text) {
    text.Trim();
    const char* const end = text.GetString() + text.GetLength();
    double number = 0;
    const auto [read, error] = std::from_chars(text.GetString(), end, number);
    if (error == std::errc() && read == end) return number;
    Refuse(key, text.Find(',') >= 0 ? NeedsAPoint : NotANumber);
}

std::optional<double> FindNumber(IPropertyDB& db, const CString& key) {
    if (!db.Find(key)) return std::nullopt;
    unsigned short word = 0;
    unsigned int dword = 0;
    __int64 big = 0;
    float single = 0;
    double real = 0;
    CString text;
    if (db.GetValue(key, word)) return word;
    if (db.GetValue(key, dword)) return dword;
    if (db.GetValue(key, big)) return static_cast<double>(big);
    if (db.GetValue(key, single)) return single;
    if (db.GetValue(key, real)) return real;
    CByteArray bytes;
    CInt32Array ints;
    if (db.GetValue(key, bytes) && bytes.GetSize() == 1) return bytes[0];
    if (db.GetValue(key, ints) && ints.GetSize() == 1) return ints[0];
    if (db.GetValue(key, text)) return NumberFrom(key, text);
    Refuse(key, NotANumber);
}

std::optional<CString> FindText(IPropertyDB& db, const CString& key) {
    CString text;
    if (!db.Find(key)) return std::nullopt;
    if (!db.GetValue(key, text)) text.Format("%.15g", *FindNumber(db, key));
    text.Trim();
    return text;
}

DWORD ReadWhole(IPropertyDB& db, const CString& key, DWORD low, DWORD high, std::optional<DWORD> standard) {
    const std::optional<double> value = FindNumber(db, key);
    if (!value && standard) return *standard;
    if (!value) Refuse(key, IsMissing);
    if (!(*value >= low && *value <= high) || *value != std::floor(*value))
        Refuse(key, NotWhole, static_cast<unsigned>(low), static_cast<unsigned>(high));
    return static_cast<DWORD>(*value);
}

double ReadReal(IPropertyDB& db, const CString& key, double standard) {
    const std::optional<double> value = FindNumber(db, key);
    if (value && !std::isfinite(*value)) Refuse(key, NotFinite);
    return value.value_or(standard);
}

std::string ReadText(IPropertyDB& db, const CString& key, const char* standard) {
    CString text = standard;
    if (db.Find(key) && !db.GetValue(key, text)) Refuse(key, NotAText);
    return text.GetString();
}

bool ReadFlag(IPropertyDB& db, const CString& key) {
    CString text;
    if (db.GetValue(key, text)) {
        constexpr const char* kWords[] = {"0", "false", "no", "1", "true", "yes"};
        return ReadWord(db, key, "", kWords) >= 3;
    }
    return ReadWhole(db, key, 0, 1, 0) != 0;
}

size_t ReadWord(IPropertyDB& db, const CString& key, const char* standard, std::span<const char* const> words) {
    CString text = ReadText(db, key, standard).c_str();
    text.Trim();
    CString allowed;
    for (size_t i = 0; i < words.size(); ++i) {
        if (text.CompareNoCase(words[i]) == 0) return i;
        allowed += CString(i == 0 ? "" : " ") + words[i];
    }
    Refuse(key, NotOneOf, static_cast<const char*>(allowed));
}

CLineSettings ReadLine(IPropertyDB& db) {
    CLineSettings line;
    line.baud = ReadWhole(db, "Line.nBaud", 50, 4'000'000, 9600u);
    line.dataBits = static_cast<CSerial::EDataBits>(ReadWhole(db, "Line.nDataBits", 7, 8, 8u));
    line.parity = ReadChoice<CSerial::EParity>(db, "Line.sParity", "none",
                                               {{"none", CSerial::ParityNone},
                                                {"odd", CSerial::ParityOdd},
                                                {"even", CSerial::ParityEven},
                                                {"mark", CSerial::ParityMark},
                                                {"space", CSerial::ParitySpace}});
    line.stopBits = ReadWhole(db, "Line.nStopBits", 1, 2, 1u) == 2 ? CSerial::StopBits2 : CSerial::StopBits1;
    return line;
}

}  // namespace orvik::description
