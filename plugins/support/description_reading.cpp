#include "plugins/support/description_reading.h"

#include <charconv>
#include <cmath>

#include "comm/comm_exception.h"
#include "frame/numeric_arrays.h"

namespace orvik::description {

void Refuse(const CString& key, const char* what) {
    CString text;
    text.Format("%s: %s", static_cast<const char*>(key), what);
    OrvikThrowCommException(CCommException::BadProtocol, text);
}

namespace {
// The number that a text says, with nothing but blanks around it.
double NumberFrom(const CString& key, CString text) {
    text.Trim();
    const char* const end = text.GetString() + text.GetLength();
    double number = 0;
    const auto [read, error] = std::from_chars(text.GetString(), end, number);
    if (error == std::errc() && read == end) return number;
    Refuse(key, text.Find(',') >= 0 ? "not a number; decimals stand behind a point" : "not a number");
}

}  // namespace

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
    Refuse(key, "not a number");
}

DWORD ReadWhole(IPropertyDB& db, const CString& key, DWORD low, DWORD high, std::optional<DWORD> standard) {
    const std::optional<double> value = FindNumber(db, key);
    if (!value && standard) return *standard;
    if (!value) Refuse(key, "missing");
    if (*value < low || *value > high || *value != std::floor(*value)) {
        CString range;
        range.Format("not a whole number from %u to %u", low, high);
        Refuse(key, range);
    }
    return static_cast<DWORD>(*value);
}

double ReadReal(IPropertyDB& db, const CString& key, double standard) {
    const std::optional<double> value = FindNumber(db, key);
    if (value && !std::isfinite(*value)) Refuse(key, "not a finite number");
    return value.value_or(standard);
}

CString ReadText(IPropertyDB& db, const CString& key, const char* standard) {
    CString text = standard;
    if (db.Find(key) && !db.GetValue(key, text)) Refuse(key, "not a text");
    return text;
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
