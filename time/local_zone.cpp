#include "time/local_zone.h"
#include "time/local_zone_internal.h"

#include <algorithm>
#include <atomic>
#include <memory>
#include <mutex>
#include <vector>

#include "afx/exception.h"
#include "platform/zone_rules.h"
#include "time/time_point.h"

namespace orvik::detail {
namespace {

constexpr __int64 kDay = 86'400;
constexpr __int64 kDaysTo1970 = 719'468;  // from 1 March of the year 0, where the leap day ends a year

ZoneRule Probe(long long seconds) {
    tm fields{};
    const __time64_t t = seconds;
    if (_localtime64_s(&fields, &t) != 0) return {0, 0};
    return {static_cast<int>(LocalSecondsOf(fields) - seconds), fields.tm_isdst};
}

static_assert(kAnyOffset == ZoneRules::kAnyOffset);

__int64 First() { return CVXTTime::GetMinTime() / 1'000'000; }
__int64 Last() { return CVXTTime::GetMaxTime() / 1'000'000; }

// Tables are never changed once published, and all that were published are kept, since a reader may still hold one: one for each
// zone that the program has been in.
constinit std::atomic<const ZoneRules*> g_rules{nullptr};

const ZoneRules& PublishRules() {
    static std::mutex lock;
    static auto& published = *new std::vector<std::unique_ptr<const ZoneRules>>;
    auto fresh = std::make_unique<const ZoneRules>(First(), Last(), Probe);
    const std::lock_guard guard(lock);
    auto known = std::find_if(published.begin(), published.end(), [&fresh](const auto& earlier) { return *earlier == *fresh; });
    if (known == published.end()) known = published.insert(known, std::move(fresh));
    g_rules.store(known->get(), std::memory_order_release);
    return **known;
}

const ZoneRules& Rules() {
    const ZoneRules* const current = g_rules.load(std::memory_order_acquire);
    return current ? *current : PublishRules();
}

}  // namespace

tm LocalFields(__int64 seconds) {
    const ZoneRule& rule = Rules().At(seconds);

    // Days from 1 March of the year 0, then the calendar after Neri and Schneider, "Euclidean affine functions and their
    // application to calendar algorithms" (2022): each year, month and day is a multiplication and what it leaves.
    const auto shifted = static_cast<uint64_t>(seconds + rule.offset + kDaysTo1970 * kDay);
    const auto days = static_cast<uint32_t>(shifted / kDay), second = static_cast<uint32_t>(shifted % kDay);
    const uint32_t ofCenturies = 4 * days + 3, century = ofCenturies / 146'097;
    const uint64_t ofYears = 2'939'745ULL * (ofCenturies % 146'097 | 3);
    const uint32_t yearOfCentury = static_cast<uint32_t>(ofYears >> 32);
    const uint32_t ofMarchYear = static_cast<uint32_t>(ofYears) / 2'939'745 / 4;
    const uint32_t ofMonths = 2'141 * ofMarchYear + 197'913;
    const bool early = ofMarchYear >= 306;  // January or February
    const uint32_t year = 100 * century + yearOfCentury + early;
    const bool leap = year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);

    tm fields{};
    fields.tm_sec = static_cast<int>(second % 60);
    fields.tm_min = static_cast<int>(second / 60 % 60);
    fields.tm_hour = static_cast<int>(second / 3'600);
    fields.tm_mday = static_cast<int>((ofMonths & 0xFFFF) / 2'141 + 1);
    fields.tm_mon = static_cast<int>(ofMonths >> 16) - (early ? 13 : 1);
    fields.tm_year = static_cast<int>(year) - 1900;
    fields.tm_wday = static_cast<int>((days + 3) % 7);  // 1 March of the year 0 was a Wednesday
    fields.tm_yday = static_cast<int>(early ? ofMarchYear - 306 : ofMarchYear + 59 + leap);
    fields.tm_isdst = rule.daylight;
    return fields;
}

int LocalOffset(__int64 seconds) { return Rules().At(seconds).offset; }

__int64 LocalSeconds(const tm& fields, int offset) {
    const __int64 seconds = Rules().FromLocal(LocalSecondsOf(fields), std::clamp(fields.tm_isdst, -1, 1), offset);
    if (seconds >= First() && seconds <= Last()) return seconds;
    tm copy = fields;  // of a time that the table knows nothing of
    return _mktime64(&copy);
}

void RefreshLocalZone() { PublishRules(); }

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
