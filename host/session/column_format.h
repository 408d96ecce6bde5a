// How the numbers of one column are written: all of them alike, with so many decimals that its range can be told, in the user's
// decimal sign. Values; any thread, once the user's settings are known.
#pragma once

#include <string>

class ColumnFormat {
public:
    // For values from `low` to `high`: six significant digits of the larger one, and as many more as show three digits of the
    // difference, at most 17. Where that would be a long row of zeros, all are written with an exponent.
    ColumnFormat(double low, double high);
    // Appends the number in UTF-8; nothing for NaN.
    void Append(std::string& text, double value) const;
    std::string Text(double value) const;
    int Decimals() const { return m_decimals; }
    bool HasExponent() const { return m_exponent; }

private:
    int m_decimals = 0;  // in front of the exponent, where there is one
    bool m_exponent = false;
    std::string m_sign;  // that parts the decimals
};

// The user's decimal sign in UTF-8.
std::string DecimalSign();
