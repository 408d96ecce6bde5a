#include "platform/zone_rules.h"

namespace orvik::detail {
namespace {

constexpr long long kDay = 86'400;
constexpr long long kDaysTo1970 = 719'468;  // from 1 March of the year 0, where the leap day ends a year
// Closer than any two transitions that a zone has had since 1970.
constexpr long long kProbeStep = kDay / 2;
constexpr size_t kNone = SIZE_MAX;

// The quotient rounded down; the rest is then never negative.
constexpr long long FloorDiv(long long a, long long b) { return a / b - (a % b < 0); }

}  // namespace

long long LocalSecondsOf(const tm& fields) {
    const long long monthsFromMarch = fields.tm_mon - 2LL, years = FloorDiv(monthsFromMarch, 12);
    const long long year = fields.tm_year + 1900LL + years, month = monthsFromMarch - years * 12;
    const long long era = FloorDiv(year, 400), ofEra = year - era * 400;
    const long long days = era * 146'097 + ofEra * 365 + ofEra / 4 - ofEra / 100 + (153 * month + 2) / 5 + fields.tm_mday - 1;
    return (days - kDaysTo1970) * kDay + fields.tm_hour * 3'600LL + fields.tm_min * 60LL + fields.tm_sec;
}

ZoneRules::ZoneRules(long long first, long long last, ZoneRule (*ask)(long long)) : m_first(first), m_last(last) {
    ZoneRule rule = ask(first);
    m_starts.push_back(INT64_MIN), m_rules.push_back(rule);
    for (long long at = first; at < last;) {
        const long long next = std::min(at + kProbeStep, last);
        const ZoneRule there = ask(next);
        while (rule != there) {
            long long before = at, after = next;  // the rule changes in between
            while (after - before > 1) {
                const long long middle = before + (after - before) / 2;
                (ask(middle) == rule ? before : after) = middle;
            }
            at = after, rule = ask(after);
            m_starts.push_back(at), m_rules.push_back(rule);
        }
        at = next;
    }
    m_starts.push_back(INT64_MAX);
    uint16_t inForce = 0;
    for (long long slice = first; slice <= last; slice += 1LL << kSliceBits) {
        while (slice >= m_starts[inForce + 1u]) ++inForce;
        m_slices.push_back(inForce);
    }
}

bool ZoneRules::HasFlag(int flag) const {
    return std::any_of(m_rules.begin(), m_rules.end(), [=](const ZoneRule& rule) { return rule.daylight == flag; });
}

size_t ZoneRules::NearestWith(int flag, size_t from, long long seconds) const {
    if (m_rules[from].daylight == flag) return from;
    size_t nearest = kNone;
    long long distance = kReach;
    for (size_t i = from; i-- > 0 && seconds - m_starts[i + 1] < distance;)
        if (m_rules[i].daylight == flag) nearest = i, distance = seconds - m_starts[i + 1];
    for (size_t i = from + 1; i < m_rules.size() && m_starts[i] - seconds < distance; ++i)
        if (m_rules[i].daylight == flag) nearest = i, distance = m_starts[i] - seconds;
    return nearest;
}

long long ZoneRules::FromLocal(long long local, int flag, int offset) const {
    size_t i = IndexAt(local - kFarthest);
    const auto timeBy = [this, local](size_t rule) { return local - m_rules[rule].offset; };
    if (local + kFarthest < m_starts[i + 1] && (flag < 0 || m_rules[i].daylight == flag)) return timeBy(i);

    // The rules by which the fields come up, or the one in force before they are skipped.
    size_t standard = kNone, any = kNone, flagged = kNone, skipped = i;
    for (; i < m_rules.size() && m_starts[i] <= local + kFarthest; ++i) {
        if (timeBy(i) >= m_starts[i + 1]) {
            skipped = i;
            continue;
        }
        if (timeBy(i) < m_starts[i]) continue;
        any = i;
        if (m_rules[i].daylight == 0) standard = i;
        if (m_rules[i].daylight == flag && (flagged == kNone || m_rules[flagged].offset != offset)) flagged = i;
    }
    if (flagged != kNone) return timeBy(flagged);
    const size_t inForce = any != kNone ? any : skipped;
    if (flag >= 0)
        if (const size_t nearest = NearestWith(flag, inForce, timeBy(inForce)); nearest != kNone) return timeBy(nearest);
    return timeBy(standard != kNone ? standard : inForce);
}

}  // namespace orvik::detail
