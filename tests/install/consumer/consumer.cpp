#include <cstdio>

#include "propdb/property_db.h"
#include "time/time_span.h"

int main() {
    CPropertyDB db;
    db.SetValue("Logger.tInterval", CVXTTimeSpan(90, TST_MINUTES));
    CVXTTimeSpan interval;
    if (!db.GetValue("Logger.tInterval", interval)) return 1;
    return std::puts(interval.Format(RF_HM)) < 0;
}
