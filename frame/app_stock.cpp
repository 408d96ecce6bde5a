#include "frame/app_stock.h"

#include <initializer_list>

#include "afx/module.h"
#include "res/ids.h"
#include "toolkit/global_data.h"

HCURSOR hZoomCursor = nullptr, hZoomXCursor = nullptr, hZoomYCursor = nullptr, hCursorCursor = nullptr, hDragCursor = nullptr;
HCURSOR hZoomInCursor = nullptr, hMoveXCursor = nullptr, hMoveXExtCursor = nullptr, hMoveXOrgCursor = nullptr,
        hMoveYCursor = nullptr;
HCURSOR hMoveYOrgCursor = nullptr, hMoveYExtCursor = nullptr, hTextCursor = nullptr, hTextSelectCursor = nullptr;
HCURSOR hTextMoveCursor = nullptr, hTextSnapCursor = nullptr, hCurVSplitter = nullptr, hCurSizeColumn = nullptr,
        hCurHSplitter = nullptr;
HCURSOR hCursorWait = nullptr, hCursorHand = nullptr, hSizeAllCursor = nullptr, hSizeNSCursor = nullptr, hSizeWECursor = nullptr;
HCURSOR hSizeNWSECursor = nullptr, hSizeNESWCursor = nullptr;
HICON hIconWarning = nullptr, hIconQuestion = nullptr, hIconThumbUp = nullptr, hIconThumbDown = nullptr, hIconHourGlass = nullptr;
HICON hIconError = nullptr, hIconInformation = nullptr;
LOGFONTA g_lfAppStock = {};

namespace {

constexpr int kIconSide = 32;
constexpr char kFlipClass[] = "flipwnd";

struct StockCursor {
    HCURSOR* handle;
    UINT id;
};
struct SystemCursor {
    HCURSOR* handle;
    LPCSTR id;
};
struct StockIcon {
    HICON* handle;
    UINT id;
};

const StockCursor kCursors[] = {{&hZoomXCursor, IDC_ORVIK_ZOOM_X},           {&hZoomYCursor, IDC_ORVIK_ZOOM_Y},
                                {&hCursorCursor, IDC_ORVIK_CURSOR},          {&hDragCursor, IDC_ORVIK_DRAG},
                                {&hZoomInCursor, IDC_ORVIK_ZOOM_IN},         {&hMoveXCursor, IDC_ORVIK_MOVE_X},
                                {&hMoveXExtCursor, IDC_ORVIK_MOVE_X_EXT},    {&hMoveXOrgCursor, IDC_ORVIK_MOVE_X_ORG},
                                {&hMoveYCursor, IDC_ORVIK_MOVE_Y},           {&hMoveYOrgCursor, IDC_ORVIK_MOVE_Y_ORG},
                                {&hMoveYExtCursor, IDC_ORVIK_MOVE_Y_EXT},    {&hTextCursor, IDC_ORVIK_TEXT},
                                {&hTextSelectCursor, IDC_ORVIK_TEXT_SELECT}, {&hTextMoveCursor, IDC_ORVIK_TEXT_MOVE},
                                {&hTextSnapCursor, IDC_ORVIK_TEXT_SNAP},     {&hCurVSplitter, IDC_ORVIK_V_SPLITTER},
                                {&hCurSizeColumn, IDC_ORVIK_SIZE_COLUMN},    {&hCurHSplitter, IDC_ORVIK_H_SPLITTER}};

const StockIcon kIcons[] = {{&hIconWarning, IDI_ORVIK_WARNING},        {&hIconQuestion, IDI_ORVIK_QUESTION},
                            {&hIconThumbUp, IDI_ORVIK_THUMB_UP},       {&hIconThumbDown, IDI_ORVIK_THUMB_DOWN},
                            {&hIconHourGlass, IDI_ORVIK_HOUR_GLASS},   {&hIconError, IDI_ORVIK_ERROR},
                            {&hIconInformation, IDI_ORVIK_INFORMATION}};

void LoadSystemCursors() {
    const SystemCursor cursors[] = {{&hCursorWait, IDC_WAIT},        {&hCursorHand, IDC_HAND},
                                    {&hSizeAllCursor, IDC_SIZEALL},  {&hSizeNSCursor, IDC_SIZENS},
                                    {&hSizeWECursor, IDC_SIZEWE},    {&hSizeNWSECursor, IDC_SIZENWSE},
                                    {&hSizeNESWCursor, IDC_SIZENESW}};
    for (const SystemCursor& cursor : cursors) *cursor.handle = LoadCursorA(nullptr, cursor.id);
}

void ReadFont() {
    NONCLIENTMETRICSA metrics{};
    metrics.cbSize = sizeof metrics;
    static_assert(sizeof metrics == 344, "with the padded border");
    globalData.GetNonClientMetrics(metrics);
    g_lfAppStock = metrics.lfMenuFont;
    g_lfAppStock.lfQuality = CLEARTYPE_QUALITY;
}

void RegisterFlipClass() {
    const HINSTANCE instance = AfxGetInstanceHandle();
    WNDCLASSA windowClass{};
    if (GetClassInfoA(instance, kFlipClass, &windowClass) || !GetClassInfoA(nullptr, "static", &windowClass)) return;
    windowClass.lpfnWndProc = DefWindowProcA;
    windowClass.hInstance = instance;
    windowClass.lpszClassName = kFlipClass;
    RegisterClassA(&windowClass);
}

}  // namespace

void LoadAppStock() {
    for (const StockCursor& cursor : kCursors)
        *cursor.handle = LoadCursorW(AfxFindResourceHandle(cursor.id, RT_GROUP_CURSOR), MAKEINTRESOURCEW(cursor.id));
    LoadSystemCursors();
    const HMODULE module = GetModuleHandleA("OrvikShared.dll");
    for (const StockIcon& icon : kIcons)
        *icon.handle = static_cast<HICON>(LoadImageA(module, MAKEINTRESOURCEA(icon.id), IMAGE_ICON, kIconSide, kIconSide, 0));
    ReadFont();
    RegisterFlipClass();
}

void FreeAppStock() {
    for (const HCURSOR cursor :
         {hZoomCursor, hZoomXCursor, hZoomYCursor, hCursorCursor, hDragCursor, hZoomInCursor, hMoveXCursor, hMoveXExtCursor,
          hMoveXOrgCursor, hMoveYCursor, hMoveYExtCursor, hMoveYOrgCursor, hTextCursor, hTextSelectCursor, hTextMoveCursor,
          hTextSnapCursor, hCurVSplitter, hCurHSplitter, hCurSizeColumn})
        DestroyCursor(cursor);
    // hIconThumbDown and hIconInformation live as long as the process, on purpose.
    for (const HICON icon : {hIconWarning, hIconQuestion, hIconThumbUp, hIconHourGlass, hIconError}) DestroyIcon(icon);
}
