#include "time/local_zone.h"
#include "time/local_zone_internal.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

#include "afx/exception.h"
#include "time/time_point.h"

namespace orvik::detail {
namespace {

constexpr __int64 kDay = 86'400;
constexpr __int64 kDaysTo1970 = 719'468;  // from 1 March of the year 0, where the leap day ends a year
// Closer than any two transitions that a zone has had since 1972.
constexpr __int64 kProbeStep = kDay / 2;

// Seconds from 1970 to calendar fields, as if they were UTC.
__int64 SecondsFromFields(const tm& fields) {
    const __int64 year = fields.tm_year + 1900 - (fields.tm_mon < 2), marchMonth = (fields.tm_mon + 10) % 12;
    const __int64 era = year / 400, ofEra = year % 400;
    const __int64 ofYear = (153 * marchMonth + 2) / 5 + fields.tm_mday - 1;
    const __int64 days = era * 146'097 + ofEra * 365 + ofEra / 4 - ofEra / 100 + ofYear - kDaysTo1970;
    return days * kDay + fields.tm_hour * 3'600 + fields.tm_min * 60 + fields.tm_sec;
}

struct Rule {
    int offset;    // seconds east of UTC
    int daylight;  // the C library's flag
    bool operator==(const Rule&) const = default;
};

// The time range in slices so short that few hold more than one transition: a look-up starts at its slice's first rule.
constexpr int kSliceBits = 22;  // 48 days

struct ZoneTable {
    __int64 first = 0, last = 0;   // seconds
    std::vector<__int64> starts;   // ascending; the last one is beyond every time
    std::vector<Rule> rules;       // rules[i] holds from starts[i]
    std::vector<uint16_t> slices;  // the rule at the start of each slice from `first`
    bool operator==(const ZoneTable&) const = default;

    const Rule& At(__int64 seconds) const {
        size_t i = slices[static_cast<size_t>(std::clamp(seconds, first, last) - first) >> kSliceBits];
        while (seconds >= starts[i + 1]) ++i;
        return rules[i];
    }
};

Rule Probe(__int64 seconds) {
    tm fields{};
    const __time64_t t = seconds;
    if (_localtime64_s(&fields, &t) != 0) return {0, 0};
    return {static_cast<int>(SecondsFromFields(fields) - seconds), fields.tm_isdst};
}

std::unique_ptr<const ZoneTable> ProbeZone(__int64 first, __int64 last) {
    auto table = std::make_unique<ZoneTable>();
    Rule rule = Probe(first);
    table->starts.push_back(INT64_MIN), table->rules.push_back(rule);
    for (__int64 at = first; at < last;) {
        const __int64 next = std::min(at + kProbeStep, last);
        const Rule there = Probe(next);
        while (rule != there) {
            __int64 before = at, after = next;  // the rule changes in between
            while (after - before > 1) {
                const __int64 middle = before + (after - before) / 2;
                (Probe(middle) == rule ? before : after) = middle;
            }
            at = after, rule = Probe(after);
            table->starts.push_back(at), table->rules.push_back(rule);
        }
        at = next;
    }
    table->starts.push_back(INT64_MAX);
    table->first = first, table->last = last;
    uint16_t inForce = 0;
    for (__int64 slice = first; slice <= last; slice += 1LL << kSliceBits) {
        while (slice >= table->starts[inForce + 1u]) ++inForce;
        table->slices.push_back(inForce);
    }
    return table;
}

// Tables are never changed once published, and all that were published are kept, since a reader may still hold one: one for each
// zone that the program has been in.
struct Zone {
    std::atomic<const ZoneTable*> table = nullptr;
    std::mutex lock;
    std::vector<std::unique_ptr<const ZoneTable>> published;

    const ZoneTable& Publish() {
        auto fresh = ProbeZone(CVXTTime::GetMinTime() / 1'000'000, CVXTTime::GetMaxTime() / 1'000'000);
        const std::lock_guard guard(lock);
        auto known =
            std::find_if(published.begin(), published.end(), [&fresh](const auto& earlier) { return *earlier == *fresh; });
        if (known == published.end()) known = published.insert(known, std::move(fresh));
        const ZoneTable* current = known->get();
        table.store(current, std::memory_order_release);
        return *current;
    }
};
Zone& TheZone() {
    static Zone zone;
    return zone;
}

}  // namespace

tm LocalFields(__int64 seconds) {
    Zone& zone = TheZone();
    const ZoneTable* table = zone.table.load(std::memory_order_acquire);
    if (!table) [[unlikely]]
        table = &zone.Publish();
    const Rule& rule = table->At(seconds);

    const __int64 local = seconds + rule.offset;
    __int64 days = local / kDay, rest = local % kDay;
    if (rest < 0) --days, rest += kDay;
    const auto shifted = static_cast<unsigned>(days + kDaysTo1970), second = static_cast<unsigned>(rest);
    const unsigned era = shifted / 146'097, ofEra = shifted % 146'097;
    const unsigned yearOfEra = (ofEra - ofEra / 1'460 + ofEra / 36'524 - ofEra / 146'096) / 365;
    const unsigned ofMarchYear = ofEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const unsigned marchMonth = (5 * ofMarchYear + 2) / 153;
    const bool early = marchMonth >= 10;  // January or February
    const unsigned year = yearOfEra + era * 400 + early;
    const bool leap = year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);

    tm fields{};
    fields.tm_sec = static_cast<int>(second % 60);
    fields.tm_min = static_cast<int>(second / 60 % 60);
    fields.tm_hour = static_cast<int>(second / 3'600);
    fields.tm_mday = static_cast<int>(ofMarchYear - (153 * marchMonth + 2) / 5 + 1);
    fields.tm_mon = static_cast<int>(early ? marchMonth - 10 : marchMonth + 2);
    fields.tm_year = static_cast<int>(year) - 1900;
    fields.tm_wday = static_cast<int>((shifted + 3) % 7);  // 1 March of the year 0 was a Wednesday
    fields.tm_yday = static_cast<int>(early ? ofMarchYear - 306 : ofMarchYear + 59 + leap);
    fields.tm_isdst = rule.daylight;
    return fields;
}

void RefreshLocalZone() { TheZone().Publish(); }

__int64 LocalNewYear(int year, __time64_t (*makeTime)(tm*)) {
    tm fields{};
    fields.tm_year = year - 1900;
    fields.tm_mday = 1;
    fields.tm_isdst = -1;
    const __int64 seconds = makeTime(&fields);
    if (seconds == -1) AtlThrow(E_INVALIDARG);
    return seconds;
}

}  // namespace orvik::detail
