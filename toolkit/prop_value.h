// The value of a property in the property grid: nothing, yes or no, a whole number, a real number, or text. A value type; any
// thread.
#pragma once

#include <variant>

#include "afx/string.h"

class CBCGPPropValue {
public:
    CBCGPPropValue() = default;
    CBCGPPropValue(bool value) : m_value(value) {}
    CBCGPPropValue(int value) : m_value(static_cast<__int64>(value)) {}
    CBCGPPropValue(long value) : m_value(static_cast<__int64>(value)) {}
    CBCGPPropValue(__int64 value) : m_value(value) {}
    CBCGPPropValue(double value) : m_value(value) {}
    CBCGPPropValue(const char* value) : m_value(CString(value)) {}
    CBCGPPropValue(const CString& value) : m_value(value) {}

    bool IsEmpty() const { return std::holds_alternative<std::monostate>(m_value); }
    bool IsBool() const { return std::holds_alternative<bool>(m_value); }
    bool IsInteger() const { return std::holds_alternative<__int64>(m_value); }
    bool IsReal() const { return std::holds_alternative<double>(m_value); }
    bool IsText() const { return std::holds_alternative<CString>(m_value); }

    // 0, or an empty text, of a value of another kind.
    bool Boolean() const { return IsBool() && std::get<bool>(m_value); }
    __int64 Integer() const { return IsInteger() ? std::get<__int64>(m_value) : 0; }
    double Real() const { return IsReal() ? std::get<double>(m_value) : 0.0; }
    CString Text() const { return IsText() ? std::get<CString>(m_value) : CString(); }

    bool operator==(const CBCGPPropValue& other) const {
        if (IsText() && other.IsText()) return Text().Compare(other.Text()) == 0;
        // What is no number is the same as itself here, or it would always look changed.
        const bool noNumbers = Real() != Real() && other.Real() != other.Real();
        return m_value.index() == other.m_value.index() && Boolean() == other.Boolean() && Integer() == other.Integer() &&
               (noNumbers || Real() == other.Real());
    }

private:
    std::variant<std::monostate, bool, __int64, double, CString> m_value;
};
