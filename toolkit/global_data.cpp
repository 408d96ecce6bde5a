#include "toolkit/global_data.h"

CBCGPGlobalData globalData;

// With the padded border; older systems knew 340 bytes.
static_assert(sizeof(NONCLIENTMETRICSA) == 344);

BOOL CBCGPGlobalData::GetNonClientMetrics(NONCLIENTMETRICSA& info) const {
    info = {};
    info.cbSize = sizeof info;
    return SystemParametersInfoA(SPI_GETNONCLIENTMETRICS, sizeof info, &info, 0);
}
