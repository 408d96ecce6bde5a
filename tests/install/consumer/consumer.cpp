#include <cstdio>

#include "propdb/property_db.h"
#include "time/time_span.h"

int main() {
    CPropertyDB db;
    db.SetValue("Logger.tInterval", CVXTTimeSpan(90, TST_MINUTES));
    CVXTTimeSpan interval;
    return db.GetValue("Logger.tInterval", interval) && std::printf("%s\n", static_cast<const char*>(interval.Format(RF_HM))) > 0 ? 0 : 1;
}
