// Dialogs on displays of other densities: everything is as much larger as the letters are.
#include <cmath>

#include "res/ids.h"
#include "tests/support/dialog_fixture.h"
#include "ui/progress_dialog.h"
#include "ui/prop_list_dialog.h"

namespace {

class Banded : public CProgressDialog {
public:
    using CProgressDialog::CProgressDialog;
    void OnDrawHeader(CDC*, CRect rect) override { band = rect; }
    CRect band;
};

class Density : public DialogTest {
protected:
    void TearDown() override {
        OrvikSetSystemDpi(USER_DEFAULT_SCREEN_DPI);
        DialogTest::TearDown();
    }
    // The client area and every control of the dialog in it.
    static std::vector<CRect> Places(const CWnd& dialog) {
        CRect client;
        dialog.GetClientRect(client);
        std::vector<CRect> places{client};
        for (HWND each = GetWindow(dialog, GW_CHILD); each != nullptr; each = GetWindow(each, GW_HWNDNEXT))
            places.emplace_back(PlaceIn(dialog, each));
        return places;
    }
    // Dialog units are whole pixels, and a letter's are rounded: 6 by 13 at 96 dots an inch.
    static void ExpectLarger(const std::vector<CRect>& now, const std::vector<CRect>& before, double factor, double most = 0) {
        ASSERT_EQ(now.size(), before.size());
        for (size_t i = 0; i < now.size(); ++i) {
            const LONG small[] = {before[i].left, before[i].top, before[i].right, before[i].bottom};
            const LONG large[] = {now[i].left, now[i].top, now[i].right, now[i].bottom};
            for (int side = 0; side < 4; ++side)
                EXPECT_NEAR(large[side], small[side] * factor, most > 0 ? most : 3 + small[side] * factor * 0.12)
                    << "control " << i << " side " << side;
        }
    }
};

}  // namespace

// What a program has laid out keeps its shares, to within the rounding of a pixel or a unit.
TEST_F(Density, DialogsGrowWhereTheyComeToAnotherScreen) {
    for (const int density : {120, 144, 192, 288}) {
        SCOPED_TRACE(density);
        std::vector<CRect> places[2];
        int row[2] = {};
        for (const bool moved : {false, true}) {
            OrvikSetSystemDpi(moved ? USER_DEFAULT_SCREEN_DPI : static_cast<UINT>(density));
            MakeOwner(WS_VISIBLE);
            CProgressDlgParams params;
            params.m_strMessage = "Reading";
            CProgressDialog waiting(&owner);
            ASSERT_TRUE(waiting.Create(params, &owner));
            params.m_nHeaderHeight = 40;
            Banded banded(&owner);
            ASSERT_TRUE(banded.Create(params, &owner));
            CPropListDialog sheet(&owner);
            sheet.EnableLayout();
            ASSERT_TRUE(sheet.Create(IDD_ORVIK_PROPERTIES, &owner));
            if (moved) {
                EXPECT_TRUE(OrvikSetWindowDpi(waiting, static_cast<UINT>(density), nullptr));
                EXPECT_TRUE(OrvikSetWindowDpi(sheet, static_cast<UINT>(density), nullptr));
                EXPECT_TRUE(OrvikSetWindowDpi(banded, static_cast<UINT>(density), nullptr));
                banded.RedrawWindow(nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
                EXPECT_GT(banded.band.Height(), 40);
                EXPECT_LT(banded.band.bottom, CRect(PlaceIn(banded, *banded.GetDlgItem(IDC_ORVIK_MESSAGE))).top);
            }
            // The layout goes on from there.
            CRect window;
            sheet.GetWindowRect(window);
            sheet.SetWindowPos(nullptr, 0, 0, window.Width() + 100, window.Height() + 50, SWP_NOMOVE | SWP_NOZORDER);
            row[moved] = sheet.GetPropList().GetRowHeight();
            places[moved] = Places(waiting);
            for (const CRect& place : Places(sheet)) places[moved].push_back(place);
        }
        EXPECT_EQ(row[0], row[1]);
        ExpectLarger(places[1], places[0], 1, density / 96 + 1);
    }
}

TEST_F(Density, DialogsGrowWithTheDotsOfAnInch) {
    std::vector<CRect> progress, properties;
    int row = 0;
    for (const int density : {96, 144, 192}) {
        SCOPED_TRACE(density);
        OrvikSetSystemDpi(static_cast<UINT>(density));
        MakeOwner(WS_VISIBLE);
        CProgressDlgParams params;
        params.m_strMessage = "Reading", params.m_strMessage2 = "Block 1";
        CProgressDialog waiting(&owner);
        ASSERT_TRUE(waiting.Create(params, &owner));
        CPropListDialog sheet(&owner);
        ASSERT_TRUE(sheet.Create(IDD_ORVIK_PROPERTIES, &owner));
        CBCGPPropList& grid = sheet.GetPropList();
        grid.AddProperty(new CBCGPProp("Count", 5));
        sheet.AdjustWindowSize();
        EXPECT_EQ(CRect(PlaceIn(sheet, grid)).Height(), 6 * grid.GetRowHeight());
        LOGFONTA font = {};
        ::GetObjectA(grid.GetFont()->m_hObject, sizeof font, &font);
        EXPECT_EQ(font.lfHeight, -MulDiv(8, density, 72)) << "eight points";
        // The field stands in its cell, its letters as large as the grid's.
        grid.SetCurSel(grid.GetProperty(0));
        ASSERT_TRUE(grid.EditItem());
        EXPECT_EQ(SendMessageA(::GetFocus(), WM_GETFONT, 0, 0), grid.SendMessage(WM_GETFONT));
        grid.EndEditItem(FALSE);
        if (density == 96) {
            progress = Places(waiting), properties = Places(sheet), row = grid.GetRowHeight();
            continue;
        }
        ExpectLarger(Places(waiting), progress, density / 96.0), ExpectLarger(Places(sheet), properties, density / 96.0);
        EXPECT_NEAR(grid.GetRowHeight(), row * density / 96.0, 0.1 * row * density / 96.0);
    }
}
