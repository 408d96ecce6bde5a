// The shared library as a host sees it: loaded by the system, reached through its exports only.
#include <gtest/gtest.h>

#include <memory>
#include <tuple>

#include "afx/module.h"
#include "afx/string.h"
#include "frame/app_stock.h"
#include "frame/module.h"
#include "frame/numeric_arrays.h"
#include "frame/version.h"
#include "platform/win32.h"
#include "time/time_point.h"
#include "ui/version_info.h"

namespace {

HCURSOR* const kLoadedCursors[] = {&hZoomXCursor,    &hZoomYCursor,    &hCursorCursor,     &hDragCursor,     &hZoomInCursor,
                                   &hMoveXCursor,    &hMoveXExtCursor, &hMoveXOrgCursor,   &hMoveYCursor,    &hMoveYOrgCursor,
                                   &hMoveYExtCursor, &hTextCursor,     &hTextSelectCursor, &hTextMoveCursor, &hTextSnapCursor,
                                   &hCurVSplitter,   &hCurSizeColumn,  &hCurHSplitter,     &hCursorWait,     &hCursorHand,
                                   &hSizeAllCursor,  &hSizeNSCursor,   &hSizeWECursor,     &hSizeNWSECursor, &hSizeNESWCursor};
HICON* const kIcons[] = {&hIconWarning,   &hIconQuestion, &hIconThumbUp,    &hIconThumbDown,
                         &hIconHourGlass, &hIconError,    &hIconInformation};

}  // namespace

TEST(Module, TextsAndClassesAreReachedThroughTheEntry) {
    SetThreadUILanguage(MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US));
    SetThreadLocale(MAKELCID(MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US), SORT_DEFAULT));
    CString text;
    EXPECT_TRUE(text.LoadString(836));  // the program itself has no texts
    EXPECT_STREQ(text, "Receive timeout");
    const std::unique_ptr<CObject> made(CRuntimeClass::CreateObject("CInt64Array"));
    ASSERT_TRUE(made);
    EXPECT_TRUE(made->IsKindOf(RUNTIME_CLASS(CInt64Array)));
    EXPECT_TRUE(CRuntimeClass::FromName("CVXTTime"));
}

TEST(Module, InitModuleSharesTheApplicationsSetting) {
    int setting = 0;
    AFX_MODULE_STATE* app = AfxGetAppModuleState();
    app->m_pApplicationSetting = &setting;
    AFX_MODULE_STATE own;
    own.m_hCurrentInstanceHandle = own.m_hCurrentResourceHandle = GetModuleHandleA(nullptr);
    AfxSetModuleState(&own);
    OrvikShared_InitModule();
    EXPECT_EQ(own.m_pApplicationSetting, &setting);
    int other = 0;
    own.m_pApplicationSetting = &other;
    OrvikShared_InitModule();
    EXPECT_EQ(own.m_pApplicationSetting, &other);  // one that is there stays
    AfxSetModuleState(nullptr);
    app->m_pApplicationSetting = nullptr;
}

TEST(Module, StockIsLoadedAndFreed) {
    for (HCURSOR* cursor : kLoadedCursors) EXPECT_FALSE(*cursor);
    LoadAppStock();
    EXPECT_FALSE(hZoomCursor);  // never loaded
    for (HCURSOR* cursor : kLoadedCursors) EXPECT_TRUE(*cursor);
    for (HICON* icon : kIcons) EXPECT_TRUE(*icon);
    ICONINFO info{};
    ASSERT_TRUE(GetIconInfo(hDragCursor, &info));
    EXPECT_EQ(info.xHotspot, 2u);

    EXPECT_EQ(g_lfAppStock.lfQuality, 5);
    NONCLIENTMETRICSA metrics{};
    metrics.cbSize = sizeof metrics;
    ASSERT_TRUE(SystemParametersInfoA(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0));
    EXPECT_STREQ(g_lfAppStock.lfFaceName, metrics.lfMenuFont.lfFaceName);
    EXPECT_EQ(g_lfAppStock.lfHeight, metrics.lfMenuFont.lfHeight);

    WNDCLASSA flip{}, label{};
    ASSERT_TRUE(GetClassInfoA(AfxGetInstanceHandle(), "flipwnd", &flip));
    ASSERT_TRUE(GetClassInfoA(nullptr, "static", &label));
    EXPECT_EQ(std::tuple(flip.lpfnWndProc, flip.hInstance, flip.cbWndExtra),
              std::tuple(WNDPROC{DefWindowProcA}, AfxGetInstanceHandle(), label.cbWndExtra));

    const HICON down = hIconThumbDown, warning = hIconWarning;
    FreeAppStock();
    EXPECT_EQ(hIconWarning, warning);  // handles keep their values
    EXPECT_TRUE(GetIconInfo(down, &info));
    EXPECT_TRUE(GetIconInfo(hIconInformation, &info));
    EXPECT_FALSE(GetIconInfo(warning, &info));
}
