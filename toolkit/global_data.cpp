#include "toolkit/global_data.h"

CBCGPGlobalData globalData;

// With the padded border; older systems knew 340 bytes.
static_assert(sizeof(NONCLIENTMETRICSA) == 344);

CBCGPGlobalData::CBCGPGlobalData() { CBCGPGlobalData::UpdateSysColors(); }

void CBCGPGlobalData::UpdateSysColors() {
    clrBtnFace = clrBarFace = ::GetSysColor(COLOR_BTNFACE);
    clrBtnShadow = ::GetSysColor(COLOR_BTNSHADOW);
    clrBtnHilite = ::GetSysColor(COLOR_BTNHIGHLIGHT);
    clrBtnText = clrBarText = ::GetSysColor(COLOR_BTNTEXT);
    clrWindow = ::GetSysColor(COLOR_WINDOW);
    clrWindowText = ::GetSysColor(COLOR_WINDOWTEXT);
    clrWindowFrame = ::GetSysColor(COLOR_WINDOWFRAME);
    clrHilite = ::GetSysColor(COLOR_HIGHLIGHT);
    clrTextHilite = ::GetSysColor(COLOR_HIGHLIGHTTEXT);
    clrGrayedText = ::GetSysColor(COLOR_GRAYTEXT);
}

BOOL CBCGPGlobalData::GetNonClientMetrics(NONCLIENTMETRICSA& info) const {
    info = {};
    info.cbSize = sizeof info;
    return SystemParametersInfoA(SPI_GETNONCLIENTMETRICS, sizeof info, &info, 0);
}
