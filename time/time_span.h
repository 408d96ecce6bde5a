// A duration: one signed 64-bit count of microseconds. Arithmetic is exact and wraps on overflow.
// A value type; any thread. Format reads the locale cache, which is written on the user-interface thread only.
#pragma once

#include <compare>

#include "afx/object.h"
#include "afx/string.h"

// Units of a span. The short span text extends them by 7, 8 and a flag of 256.
enum CVXTTimeSpanType : int {
    TST_MICROSECONDS = 0,
    TST_MILLISECONDS = 1,
    TST_SECONDS = 2,
    TST_MINUTES = 3,
    TST_HOURS = 4,
    TST_DAYS = 5,
    TST_WEEKS = 6
};

// Layouts of CVXTTimeSpan::Format.
enum ERelFormat : int {
    RF_MICROSECONDS = 0,  // total microseconds
    RF_MILLISECONDS = 1,  // total milliseconds with up to 3 decimals
    RF_SECONDS = 2,       // this and the next four: a total with up to 6 decimals
    RF_MINUTES = 3,
    RF_HOURS = 4,
    RF_DAYS = 5,
    RF_WEEKS = 6,
    RF_DAYS_HMS = 7,  // " 001 - 02:03:04"
    RF_DAYS_HM = 8,   // " 001 - 02:03"
    RF_HMS = 9,       // " 26:03:04"
    RF_HM = 10,       // " 26:03"
    RF_WORDS = 11     // "1 weeks 1 days 0 hours 5 minutes"
};

class ORVIK_API CVXTTimeSpan : public CObject {
    DECLARE_SERIAL(CVXTTimeSpan)

public:
    CVXTTimeSpan();  // 0
    // value units; an unknown unit makes 0.
    CVXTTimeSpan(const __int64& value, CVXTTimeSpanType unit);
    // Fields may be negative and may exceed their natural range.
    CVXTTimeSpan(const __int64& days, int hours, int minutes, int seconds, int milliseconds);
    // The fraction of a day is truncated toward zero to whole microseconds.
    CVXTTimeSpan(double days);
    CVXTTimeSpan(const CVXTTimeSpan& other);
    CVXTTimeSpan& operator=(const CVXTTimeSpan& other);

    void Set(const __int64& value, CVXTTimeSpanType unit);  // an unknown unit changes nothing
    void Set(const __int64& days, int hours, int minutes, int seconds, int milliseconds);

    double CvtToReal() const;                           // days; whole days are divided as integers, so large spans stay exact
    operator const __int64&() const { return m_span; }  // microseconds
    const __int64& CvtToInt64() const { return m_span; }
    // The low 32 bits of the microseconds, without any scaling: for spans below about 35 minutes.
    operator long() const { return static_cast<int32_t>(m_span); }
    operator unsigned long() const { return static_cast<uint32_t>(m_span); }

    CVXTTimeSpan& operator+=(const CVXTTimeSpan& other);
    CVXTTimeSpan& operator-=(const CVXTTimeSpan& other);
    CVXTTimeSpan operator+(const CVXTTimeSpan& other) const;
    CVXTTimeSpan operator-(const CVXTTimeSpan& other) const;
    CVXTTimeSpan operator-() const;
    CVXTTimeSpan& operator*=(const __int64& factor);
    CVXTTimeSpan& operator*=(long factor);
    CVXTTimeSpan operator*(const __int64& factor) const;
    // Truncates toward zero. Division by zero is not guarded: it faults as integer division does.
    CVXTTimeSpan& operator/=(const __int64& divisor);
    CVXTTimeSpan operator/(const __int64& divisor) const;

    bool operator==(const CVXTTimeSpan& other) const { return m_span == other.m_span; }
    std::strong_ordering operator<=>(const CVXTTimeSpan& other) const { return m_span <=> other.m_span; }

    // The span less its remainder by `unit`; a negative span moves toward zero.
    CVXTTimeSpan Align(const CVXTTimeSpan& unit) const;
    void AlignTo(const CVXTTimeSpan& unit);

    // Whole units, truncated toward zero; 0 for an unknown unit.
    __int64 GetTotal(CVXTTimeSpanType unit) const;
    __int64 GetTotalDays() const { return GetTotal(TST_DAYS); }
    __int64 GetTotalHours() const { return GetTotal(TST_HOURS); }
    __int64 GetTotalMinutes() const { return GetTotal(TST_MINUTES); }
    __int64 GetTotalSeconds() const { return GetTotal(TST_SECONDS); }
    __int64 GetTotalMilliSeconds() const { return GetTotal(TST_MILLISECONDS); }
    // What stands in the unit's own place: days 0 to 6, since there are weeks. Not positive for a negative span.
    long Get(CVXTTimeSpanType unit) const;
    // The part below the whole unit as an integer of `digits` decimals. Half of the last decimal's scale is added before the
    // division, which is not the usual rounding; kept so on purpose. 0 for microseconds. Exact up to 18 decimals.
    __int64 GetFrac(CVXTTimeSpanType unit, int digits) const;

    // Always 0 and without effect: reading text is the business of the span text functions.
    int Scan(const char* text);

    // The text in one of the layouts, with the user's decimal separator and language. A span that is not negative starts with a
    // space, so that columns line up; RF_WORDS has no sign. "<error>" for an unknown layout and, in words, for spans that are
    // not whole seconds or are 0.
    CString Format(ERelFormat layout) const;

    void Serialize(CArchive& ar) override;  // 8 bytes, little-endian

private:
    friend class CVXTTime;
    struct Raw {};
    CVXTTimeSpan(Raw, __int64 count) : m_span(count) {}

    __int64 m_span = 0;
};
