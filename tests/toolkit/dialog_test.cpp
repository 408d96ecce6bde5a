// The toolkit's dialog and its layout.
#include "toolkit/bcgp_dialog.h"

#include "res/ids.h"
#include "tests/support/dialog_fixture.h"
#include "toolkit/global_data.h"

namespace {

class Sheet : public CBCGPDialog {
public:
    using CBCGPDialog::Create;
    Sheet() { EnableLayout(), EnableVisualManagerStyle(); }
};

class ToolkitDialog : public DialogTest {
protected:
    void SetUp() override {
        DialogTest::SetUp();
        ASSERT_TRUE(sheet.Create(IDD_ORVIK_PROPERTIES, &owner));
        sheet.ShowWindow(SW_SHOW);
    }
    CRect Place(int id) const { return PlaceIn(sheet, GetDlgItem(sheet, id)); }
    void Grow(int cx, int cy) {
        CRect window;
        sheet.GetWindowRect(window), sheet.MoveWindow(window.left, window.top, window.Width() + cx, window.Height() + cy);
    }
    Sheet sheet;
};

}  // namespace

TEST_F(ToolkitDialog, AnchorsMoveAndSizeByTheirShare) {
    using Layout = CBCGPStaticLayout;
    Layout& layout = *sheet.GetLayout();
    layout.SetMinSize(CSize(0, 0));
    EXPECT_FALSE(layout.AddAnchor(4711u, Layout::e_MoveTypeBoth, Layout::e_SizeTypeNone));
    ASSERT_TRUE(layout.AddAnchor(UINT{IDOK}, Layout::e_MoveTypeBoth, Layout::e_SizeTypeNone));
    ASSERT_TRUE(
        layout.AddAnchor(UINT{IDC_ORVIK_CLOSE}, Layout::e_MoveTypeHorz, Layout::e_SizeTypeVert, CPoint(50, 50), CSize(25, 25)));
    ASSERT_TRUE(layout.AddAnchor(UINT{IDC_ORVIK_GRID_PLACE}, Layout::e_MoveTypeNone, Layout::e_SizeTypeBoth));
    CRect window;
    sheet.GetWindowRect(window);
    const CRect ok = Place(IDOK), close = Place(IDC_ORVIK_CLOSE), grid = Place(IDC_ORVIK_GRID_PLACE);
    Grow(40, 80);
    EXPECT_TRUE(Place(IDOK) == ok + CPoint(40, 80));
    EXPECT_TRUE(Place(IDC_ORVIK_CLOSE) == CRect(close.left + 20, close.top, close.right + 20, close.bottom + 20));
    EXPECT_TRUE(Place(IDC_ORVIK_GRID_PLACE) == CRect(grid.left, grid.top, grid.right + 40, grid.bottom + 80));
    // There and back by odd steps, and through no room at all.
    for (int i = 0; i < 7; ++i) Grow(3, -7);
    Grow(-4000, -4000), Grow(400, 400);
    sheet.MoveWindow(window);
    EXPECT_TRUE(Place(IDOK) == ok);
    EXPECT_TRUE(Place(IDC_ORVIK_CLOSE) == close);
    EXPECT_TRUE(Place(IDC_ORVIK_GRID_PLACE) == grid);
}

TEST_F(ToolkitDialog, TheSizeAtFirstIsTheSmallestForItsUser) {
    CRect window;
    sheet.GetWindowRect(window);
    MINMAXINFO limits = {};
    sheet.SendMessage(WM_GETMINMAXINFO, 0, reinterpret_cast<LPARAM>(&limits));
    EXPECT_EQ(limits.ptMinTrackSize.x, window.Width());
    EXPECT_EQ(limits.ptMinTrackSize.y, window.Height());
    sheet.EnableLayout(FALSE);
    EXPECT_EQ(sheet.GetLayout(), nullptr);
    Grow(10, 10);
}

TEST_F(ToolkitDialog, LooksAndDraggingAreSwitches) {
    const auto hit = [&] {
        CRect client;
        sheet.GetClientRect(client), sheet.ClientToScreen(client);
        return sheet.SendMessage(WM_NCHITTEST, 0, MAKELPARAM(client.left + 3, client.top + 3));
    };
    EXPECT_EQ(hit(), HTCLIENT);
    sheet.EnableDragClientArea();
    EXPECT_EQ(hit(), HTCAPTION);
    const COLORREF before = globalData.clrBarFace;
    globalData.clrBarFace = RGB(200, 220, 240);
    const auto background = [&] {
        sheet.RedrawWindow(nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW);
        CClientDC dc(&sheet);
        return dc.GetPixel(3, 3);
    };
    EXPECT_EQ(background(), RGB(200, 220, 240));
    // Of the texts, those that cannot be used are grey.
    const HWND text = GetDlgItem(sheet, IDC_ORVIK_GRID_PLACE);
    for (const BOOL usable : {TRUE, FALSE}) {
        CClientDC dc(&sheet);
        EnableWindow(text, usable);
        sheet.SendMessage(WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(dc.m_hDC), reinterpret_cast<LPARAM>(text));
        EXPECT_EQ(dc.GetTextColor(), usable ? globalData.clrBarText : globalData.clrGrayedText);
        EXPECT_EQ(dc.GetBkColor(), RGB(200, 220, 240));
    }
    sheet.EnableVisualManagerStyle(FALSE);
    EXPECT_EQ(background(), GetSysColor(COLOR_BTNFACE));
    globalData.clrBarFace = before;
}
