// What holds of local time in every zone, asked of the zone in force from 1972 to 2034: around every change of the clock, day by
// day and unit by unit. The judge is the C library's way from times to fields, which leaves nothing open.
// Reports at most one fault a rule and zone, as GoogleTest failures.
#pragma once

#include <vector>

#include "platform/win32.h"

class ZoneChecks {
public:
    ZoneChecks();  // finds the changes of the zone in force

    size_t Changes() const { return m_changes.size(); }
    // The run-time of Windows sets a skipped time back where ours moves it on: it is not asked for those.
    enum class Library { OfWindows, Ours };
    void FieldsMeanTheTimeThatHasThem(Library library = Library::OfWindows) const;
    void TheTableHasTheLibrarysFields() const;
    void FileTimesAtEitherEndLeaveTheDateAlone() const;
    void SeeksGetOnAndEnd() const;
    void DatesLandOnTheirDay() const;

private:
    struct Side {
        int offset, daylight;
        bool operator==(const Side&) const = default;
    };
    struct Change {
        __int64 at;  // seconds
        Side before, after;
    };
    static Side SideAt(__int64 seconds);
    __int64 Meant(__int64 local, int flag) const;
    template <class Check>
    static void Around(const std::vector<Change>& changes, Check check);

    std::vector<Change> m_changes;
    std::vector<Change> m_kinds;  // one of each weekday, time of day, end of a month and step
};
