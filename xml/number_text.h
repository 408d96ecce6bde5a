// Numbers as they stand in files: the same text and the same value whatever locale the process has chosen.
// Pure functions; any thread. Internal.
#pragma once

#include "platform/api.h"

#include <cstdint>
#include <string_view>

namespace orvik::detail {
// A number's text, held in place. 32 bytes suffice for every 64-bit integer, every "%G" and every shortest text of a real.
class NumberText {
public:
    std::string_view View() const { return {m_text, m_length}; }
    const char* CStr() const { return m_text; }  // 0-terminated

private:
    friend NumberText GeneralText(double value);
    friend NumberText ExactText(double value);
    friend NumberText ExactText(float value);
    friend NumberText IntegerText(int64_t value);
    friend NumberText UnsignedText(uint64_t value);
    char m_text[32];
    unsigned m_length;
};

// "%G": six significant digits without trailing zeros, exponent form from 1E+06 on and below 0.0001, at least two exponent
// digits. Infinities are "INF" and "-INF", whatever is not a number is "NAN"; ParseReal reads all three.
NumberText GeneralText(double value);
// The shortest text that ParseReal brings back to the same bits, for a float once its result is converted to one. What is not
// finite is written as above, so of a NaN no more than that it is one.
NumberText ExactText(double value);
NumberText ExactText(float value);
NumberText IntegerText(int64_t value);    // decimal digits, a leading "-" for negative values
NumberText UnsignedText(uint64_t value);  // decimal digits

// The number at the start of the text, as the C library reads it in its plain locale: white space, a sign, decimal or "0x" digits
// with an exponent, "inf" or "nan" in any case. 0 when there is none. Beyond the range: infinity, or 0 below it.
double ParseReal(std::string_view text);

// White space, one sign, decimal digits; 0 when there are none. The value keeps its low 64 bits.
int64_t ParseInteger(std::string_view text);
}  // namespace orvik::detail
