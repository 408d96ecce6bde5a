// Progress in both forms: the dialog and the bar, with what the user and the system may do meanwhile.
#include <algorithm>
#include <tuple>

#include "afx/controls.h"
#include "res/ids.h"
#include "tests/support/dialog_fixture.h"
#include "toolkit/progress_dlg.h"
#include "ui/progress_bar.h"
#include "ui/progress_dialog.h"

namespace {

class Progress : public DialogTest {
protected:
    static HWND Control(const CWnd& dialog, int id) { return GetDlgItem(dialog, id); }
    static bool Shown(const CWnd& dialog, int id) {
        return (GetWindowLongPtrA(Control(dialog, id), GWL_STYLE) & WS_VISIBLE) != 0;
    }
    static RECT Place(const CWnd& dialog, int id) { return PlaceIn(dialog, Control(dialog, id)); }
    static int Height(const CWnd& dialog) {
        RECT window;
        dialog.GetWindowRect(&window);
        return static_cast<int>(window.bottom - window.top);
    }
    static std::string Percent(const CWnd& dialog) { return TextOf(Control(dialog, IDC_ORVIK_PERCENT)); }
    // What a progress dialog says, from its title to its button.
    static std::string Texts(HWND dialog) {
        std::string all = TextOf(dialog);
        for (const int id : {IDC_ORVIK_PERCENT, IDC_ORVIK_MESSAGE, IDC_ORVIK_MESSAGE2, IDCANCEL})
            all += "|" + TextOf(GetDlgItem(dialog, id));
        return all;
    }
    CProgressDlgParams Params() const {
        CProgressDlgParams params;
        params.m_strCaption = "Download", params.m_strMessage = "Reading", params.m_strMessage2 = "Block 1";
        return params;
    }
    static LRESULT Quit() {
        MSG message;
        while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE))
            if (message.message == WM_QUIT) return static_cast<LRESULT>(message.wParam);
        return -1;
    }
};

// The one progress dialog of the toolkit that this thread has open.
HWND FindBar() {
    HWND found = nullptr;
    EnumThreadWindows(
        GetCurrentThreadId(),
        [](HWND window, LPARAM out) -> BOOL {
            if (GetDlgItem(window, IDC_ORVIK_PROGRESS) == nullptr) return TRUE;
            *reinterpret_cast<HWND*>(out) = window;
            return FALSE;
        },
        reinterpret_cast<LPARAM>(&found));
    return found;
}

// Notes what the system would have been asked, and how its owner stood when it went.
class Watched : public CProgressDialog {
public:
    using CProgressDialog::CProgressDialog;
    BOOL Create(UINT id, CWnd* parent) override { return !refused && CProgressDialog::Create(id, parent); }
    using CProgressDialog::Create;
    LRESULT DefWindowProc(UINT message, WPARAM wParam, LPARAM lParam) override {
        if (message == WM_SYSCOMMAND) {
            asked.push_back(wParam);
            return 0;
        }
        if (message == WM_DESTROY) ownerEnabled = ::IsWindowEnabled(::GetWindow(m_hWnd, GW_OWNER)) != FALSE;
        return CProgressDialog::DefWindowProc(message, wParam, lParam);
    }
    void ReEnableParent() override { ++enabled, CProgressDialog::ReEnableParent(); }
    bool refused = false, ownerEnabled = false;
    int enabled = 0;
    std::vector<WPARAM> asked;
};

}  // namespace

TEST_F(Progress, TheDialogStandsOverItsDisabledOwner) {
    CProgressDialog dialog(&owner);
    ASSERT_TRUE(dialog.Create(Params(), &owner));
    EXPECT_FALSE(owner.IsWindowEnabled());
    EXPECT_TRUE(dialog.IsWindowVisible());
    EXPECT_EQ(GetWindow(dialog, GW_OWNER), owner.m_hWnd);
    EXPECT_EQ(Texts(dialog), "Download|0 %|Reading|Block 1|Cancel");
    EXPECT_FALSE(dialog.Create(Params(), &owner)) << "one window at a time";
    RECT around, window;
    owner.GetWindowRect(&around);
    dialog.GetWindowRect(&window);
    EXPECT_NEAR(around.left + around.right, window.left + window.right, 2);
    dialog.DestroyWindow();
    EXPECT_TRUE(owner.IsWindowEnabled());

    // A hidden owner hides the dialog, until the owner is seen and something moves.
    MakeOwner(0);
    ASSERT_TRUE(dialog.Create(Params(), &owner));
    EXPECT_FALSE(dialog.IsWindowVisible());
    dialog.SetPos(1);
    EXPECT_FALSE(dialog.IsWindowVisible());
    owner.ShowWindow(SW_SHOW);
    dialog.SetPos(2);
    EXPECT_TRUE(dialog.IsWindowVisible());
    dialog.ReEnableParent();
    EXPECT_TRUE(owner.IsWindowEnabled());
    dialog.DestroyWindow();

    // An owner that was disabled by others stays so; one that is needed is taken up by the destructor.
    owner.EnableWindow(FALSE);
    {
        CProgressDialog other(&owner);
        ASSERT_TRUE(other.Create(Params(), &owner));
    }
    EXPECT_FALSE(owner.IsWindowEnabled());
    owner.EnableWindow(TRUE);
    {
        CProgressDialog other(&owner);
        ASSERT_TRUE(other.Create(Params(), &owner));
    }
    EXPECT_TRUE(owner.IsWindowEnabled());
}

TEST_F(Progress, ItsOwnerIsBackBeforeItGoesAndWhenItNeverCame) {
    Watched dialog(&owner);
    dialog.refused = true;
    EXPECT_FALSE(dialog.Create(Params(), &owner));
    EXPECT_TRUE(owner.IsWindowEnabled());
    dialog.refused = false;
    CProgressDlgParams params = Params();
    params.m_nRangeMin = -50, params.m_nRangeMax = 50, params.m_bPumpMessages = TRUE;
    ASSERT_TRUE(dialog.Create(params, &owner));
    EXPECT_TRUE(dialog.IsVisualManagerStyle());
    EXPECT_EQ(dialog.GetPos(), -50);
    EXPECT_EQ(SendMessageA(Control(dialog, IDC_ORVIK_PROGRESS), PBM_GETPOS, 0, 0), -50);
    constexpr WPARAM kMove = 0xF010;
    // Every other command of the title bar is the system's.
    SendMessageA(dialog, WM_SYSCOMMAND, kMove | 2, 0);
    EXPECT_EQ(dialog.asked, std::vector<WPARAM>{kMove | 2});
    EXPECT_FALSE(dialog.IsCancelled());
    // The lower bits of a command are the system's own. Pumping was asked for from the start.
    PostMessageA(dialog, WM_SYSCOMMAND, SC_CLOSE | 1, 0);
    dialog.SetPos(0);
    EXPECT_TRUE(dialog.IsCancelled());
    EXPECT_EQ(dialog.asked.size(), 1u);
    dialog.DestroyWindow();
    EXPECT_TRUE(dialog.ownerEnabled) << "or another program's window would be activated";
    EXPECT_EQ(dialog.enabled, 1);
}

// What is typed while the work goes on reaches other windows as letters.
TEST_F(Progress, PumpingMakesLettersOfKeys) {
    CEdit field;
    ASSERT_TRUE(field.Create(WS_CHILD | WS_VISIBLE, CRect(0, 0, 100, 20), &owner, 7));
    CProgressDialog dialog(&owner);
    ASSERT_TRUE(dialog.Create(Params(), &owner));
    PostMessageA(field, WM_KEYDOWN, VK_SPACE, 0x00390001);
    EXPECT_TRUE(dialog.PumpMessages());
    EXPECT_EQ(TextOf(field), " ");
}

TEST_F(Progress, PercentsAreTruncatedAndBeginAgainAboveAHundred) {
    CProgressDialog dialog(&owner);
    ASSERT_TRUE(dialog.Create(Params(), &owner));
    EXPECT_EQ(Percent(dialog), "0 %");
    using Row = std::tuple<LONG, LONG, LONG, const char*>;
    for (const auto& [min, max, pos, text] :
         {Row{0, 200, 100, "50 %"}, Row{0, 200, 200, "100 %"}, Row{0, 100, 150, "50 %"}, Row{0, 100, 200, "0 %"},
          Row{0, 3, 2, "66 %"}, Row{-50, 50, 0, "50 %"}, Row{0, 100, -30, "-30 %"}, Row{0, 100, -130, "-30 %"},
          Row{0, 2'000'000'000, 1'999'999'999, "99 %"}, Row{-2'000'000'000, 2'000'000'000, 1'000'000'000, "75 %"},
          Row{7, 7, 7, "0 %"}}) {
        dialog.SetRange(min, max);
        EXPECT_EQ(dialog.GetParameters().m_nRangeMax, max);
        dialog.SetPos(pos);
        EXPECT_EQ(Percent(dialog), text) << pos << " of " << min << ".." << max;
        EXPECT_EQ(dialog.GetPos(), pos);
    }
    dialog.SetRange(0, 100), dialog.SetPos(40);
    EXPECT_EQ(dialog.SetPos(42), 40) << "the position before";
    EXPECT_EQ(dialog.OffsetPos(5), 42);
    EXPECT_EQ(dialog.GetPos(), 47);
    EXPECT_EQ(Percent(dialog), "47 %");
    EXPECT_EQ(SendMessageA(Control(dialog, IDC_ORVIK_PROGRESS), PBM_GETPOS, 0, 0), 47);
    EXPECT_EQ(SendMessageA(Control(dialog, IDC_ORVIK_PROGRESS), PBM_SETSTEP, 1, 0), 10) << "the step it was made with";
}

TEST_F(Progress, TheControlsMakeRoomForWhatIsShown) {
    MakeOwner(0);  // nothing needs to be seen
    CProgressDialog whole(&owner);
    ASSERT_TRUE(whole.Create(Params(), &owner));
    const RECT message = Place(whole, IDC_ORVIK_MESSAGE), second = Place(whole, IDC_ORVIK_MESSAGE2),
               bar = Place(whole, IDC_ORVIK_PROGRESS), percent = Place(whole, IDC_ORVIK_PERCENT), cancel = Place(whole, IDCANCEL);
    const int height = Height(whole);
    whole.DestroyWindow();
    // Nothing lies upon anything, and everything is inside, whatever is shown.
    for (int bits = 0; bits < 32; ++bits) {
        CProgressDlgParams params = Params();
        params.m_bShowCancel = (bits & 1) != 0, params.m_bShowProgress = (bits & 2) != 0,
        params.m_bShowPercentage = (bits & 4) != 0;
        if ((bits & 8) != 0) params.m_strMessage2 = "";
        params.m_nHeaderHeight = (bits & 16) != 0 ? 40 : 0;
        CProgressDialog dialog(&owner);
        ASSERT_TRUE(dialog.Create(params, &owner));
        const int down = static_cast<int>(params.m_nHeaderHeight);
        const int up = params.m_strMessage2.IsEmpty() ? static_cast<int>(second.bottom - second.top) : 0;
        EXPECT_EQ(Place(dialog, IDC_ORVIK_MESSAGE).top, message.top + down);
        EXPECT_EQ(Shown(dialog, IDC_ORVIK_PROGRESS), params.m_bShowProgress != FALSE);
        EXPECT_EQ(Shown(dialog, IDC_ORVIK_PERCENT), params.m_bShowProgress && params.m_bShowPercentage);
        EXPECT_EQ(Percent(dialog), params.m_bShowProgress && params.m_bShowPercentage ? "0 %" : "");
        EXPECT_EQ(Shown(dialog, IDCANCEL), params.m_bShowCancel != FALSE);
        EXPECT_EQ(IsWindowEnabled(Control(dialog, IDCANCEL)), params.m_bShowCancel);
        EXPECT_EQ((dialog.GetStyle() & WS_SYSMENU) != 0, params.m_bShowCancel != FALSE);
        const RECT now = Place(dialog, IDC_ORVIK_PROGRESS);
        EXPECT_EQ(now.top, bar.top + down - up);
        if (params.m_bShowProgress) {
            EXPECT_EQ(now.right, params.m_bShowPercentage ? bar.right : percent.right);
        }
        int shorter = -down;
        if (!params.m_bShowProgress) shorter += static_cast<int>(cancel.top - bar.top);
        if (params.m_bShowCancel) {
            EXPECT_EQ(Height(dialog), height - shorter);
        } else {
            EXPECT_LT(Height(dialog), height - shorter);
        }
        RECT client;
        dialog.GetClientRect(&client);
        std::vector<RECT> seen;
        for (const int id : {IDC_ORVIK_MESSAGE, IDC_ORVIK_MESSAGE2, IDC_ORVIK_PROGRESS, IDC_ORVIK_PERCENT, IDCANCEL}) {
            if (!Shown(dialog, id) || (id == IDC_ORVIK_MESSAGE2 && up > 0)) continue;
            const RECT place = Place(dialog, id);
            EXPECT_TRUE(place.top >= down && place.left >= 0 && place.right <= client.right && place.bottom <= client.bottom)
                << "control " << id << " of " << bits;
            for (const RECT& other : seen) {
                RECT common;
                EXPECT_FALSE(IntersectRect(&common, &place, &other)) << "control " << id << " of " << bits;
            }
            seen.push_back(place);
        }
    }
}

TEST_F(Progress, CancellingIsAFlagThatReadingClears) {
    CProgressDialog dialog(&owner);
    ASSERT_TRUE(dialog.Create(Params(), &owner));
    const std::function<void()> ways[] = {
        [&] { SendMessageA(dialog, WM_SYSCOMMAND, SC_CLOSE, 0); },
        [&] { SendMessageA(Control(dialog, IDCANCEL), BM_CLICK, 0, 0); },
        [&] { SendMessageA(dialog, WM_COMMAND, IDCANCEL, 0); },
        [&] {
            PostMessageA(Control(dialog, IDCANCEL), WM_KEYDOWN, VK_ESCAPE, 1);
            dialog.PumpMessages();
        },
    };
    for (const auto& way : ways) {
        EXPECT_FALSE(dialog.IsCancelled());
        way();
        EXPECT_TRUE(dialog.m_hWnd != nullptr && dialog.IsWindowVisible()) << "it stays open";
        EXPECT_TRUE(dialog.IsCancelled());
    }
    EXPECT_FALSE(dialog.IsCancelled());
    SendMessageA(dialog, WM_COMMAND, IDOK, 0);
    EXPECT_TRUE(dialog.m_hWnd != nullptr && !dialog.IsCancelled()) << "Enter is no answer";
}

TEST_F(Progress, ASecondLineIsThereFromTheStartOrNever) {
    CProgressDialog with(&owner), without(&owner);
    CProgressDlgParams params = Params();
    ASSERT_TRUE(with.Create(params, &owner));
    with.SetMessage("Writing"), with.SetMessage2("Block 2");
    EXPECT_EQ(Texts(with), "Download|0 %|Writing|Block 2|Cancel");
    with.SetMessage2(""), with.SetMessage2("Block 3");
    EXPECT_EQ(TextOf(Control(with, IDC_ORVIK_MESSAGE2)), "") << "an empty line is none";
    params.m_strMessage2 = "";
    ASSERT_TRUE(without.Create(params, &owner));
    without.SetMessage2("Block 2");
    EXPECT_EQ(TextOf(Control(without, IDC_ORVIK_MESSAGE2)), "");
    EXPECT_STREQ(without.GetParameters().m_strMessage2, "");
}

TEST_F(Progress, PumpingHandlesWhatWaitsAndStopsAtTheEnd) {
    CProgressDialog dialog(&owner);
    ASSERT_TRUE(dialog.Create(Params(), &owner));
    PumpAll();
    // Not asked to, it does not pump.
    PostMessageA(dialog, WM_SYSCOMMAND, SC_CLOSE, 0);
    dialog.SetPos(10);
    EXPECT_FALSE(dialog.IsCancelled());
    dialog.EnablePumpMessages(TRUE);
    EXPECT_EQ(dialog.SetPos(20), 10);
    EXPECT_TRUE(dialog.IsCancelled());
    // The quit message stays, and what would have been done is not.
    PostQuitMessage(7);
    EXPECT_EQ(dialog.SetPos(30), 0);
    EXPECT_EQ(dialog.OffsetPos(5), 0);
    EXPECT_EQ(dialog.GetPos(), 20);
    EXPECT_EQ(Percent(dialog), "20 %");
    EXPECT_EQ(Quit(), 7);
    EXPECT_EQ(dialog.SetPos(30), 20);
    // The owner goes, and the dialog with it.
    PostMessageA(owner, WM_CLOSE, 0, 0);
    EXPECT_EQ(dialog.SetPos(40), 0);
    EXPECT_EQ(owner.m_hWnd, nullptr);
    EXPECT_EQ(dialog.m_hWnd, nullptr);
    EXPECT_FALSE(dialog.PumpMessages());
    dialog.SetRange(0, 10), dialog.SetMessage("x"), dialog.SetMessage2("y"), dialog.RedrawHeader();
    EXPECT_EQ(dialog.SetPos(50), 0);
    EXPECT_FALSE(dialog.IsCancelled());
}

TEST_F(Progress, TheHeaderIsDrawnOverItsBand) {
    class Headed : public CProgressDialog {
    public:
        using CProgressDialog::CProgressDialog;
        void OnDrawHeader(CDC* dc, CRect band) override {
            ++drawn, place = band;
            dc->GetClipBox(clip), dc->FillSolidRect(band, RGB(10, 20, 30));
        }
        int drawn = 0;
        CRect place, clip;
    };
    Headed dialog(&owner), plain(&owner);
    CProgressDlgParams params = Params();
    params.m_nHeaderHeight = 24;
    ASSERT_TRUE(dialog.Create(params, &owner));
    dialog.UpdateWindow();
    EXPECT_GE(dialog.drawn, 1);
    const int before = dialog.drawn;
    dialog.RedrawHeader();
    EXPECT_EQ(dialog.drawn, before + 1);
    CRect client;
    dialog.GetClientRect(client);
    EXPECT_TRUE(dialog.place == CRect(0, 0, client.right, 24));
    EXPECT_EQ(dialog.clip.bottom, 24) << "nothing but the band is painted anew";
    CClientDC dc(&dialog);
    EXPECT_EQ(dc.GetPixel(5, 23), RGB(10, 20, 30));
    EXPECT_NE(dc.GetPixel(5, 24), RGB(10, 20, 30));
    dialog.DestroyWindow();
    ASSERT_TRUE(plain.Create(Params(), &owner));
    plain.UpdateWindow(), plain.RedrawHeader();
    EXPECT_EQ(plain.drawn, 0);
}

TEST_F(Progress, TheBarDrivesTheToolkitsDialog) {
    CProgressBar bar;
    EXPECT_FALSE(bar);
    EXPECT_TRUE(bar.IsAborted()) << "nobody has started it";
    bar.Feed(5, "x", nullptr, FALSE), bar.SetRange(0, 9), bar.DisableAbort(TRUE);
    bar.Start(200, "Export", "Writing", "data.csv", FALSE, &owner, TRUE);
    ASSERT_TRUE(bar);
    const HWND dialog = FindBar();
    ASSERT_NE(dialog, nullptr);
    EXPECT_FALSE(owner.IsWindowEnabled());
    EXPECT_EQ(Texts(dialog), "Export|0 %|Writing|data.csv|Cancel");
    const auto* object = dynamic_cast<CBCGPProgressDlg*>(CWnd::FromHandlePermanent(dialog));
    ASSERT_NE(object, nullptr);
    EXPECT_TRUE(object->IsDragClientAreaEnabled() && object->IsVisualManagerStyle());
    bar.Feed(50, "Still writing", nullptr, FALSE);
    EXPECT_EQ(Texts(dialog), "Export|25 %|Still writing|data.csv|Cancel");
    EXPECT_FALSE(bar.IsAborted());
    PostMessageA(dialog, WM_COMMAND, IDCANCEL, 0);
    bar.SetMessage(nullptr, TRUE);
    EXPECT_TRUE(bar.IsAborted());
    EXPECT_FALSE(bar.IsAborted());
    bar.DisableAbort(TRUE);
    EXPECT_FALSE(IsWindowEnabled(GetDlgItem(dialog, IDCANCEL)));
    SendMessageA(dialog, WM_COMMAND, IDCANCEL, 0), SendMessageA(dialog, WM_SYSCOMMAND, SC_CLOSE, 0);
    EXPECT_FALSE(bar.IsAborted()) << "by Escape and closing neither";
    bar.DisableAbort(FALSE);
    EXPECT_TRUE(IsWindowEnabled(GetDlgItem(dialog, IDCANCEL)));
    SendMessageA(dialog, WM_SYSCOMMAND, SC_CLOSE, 0);
    EXPECT_TRUE(IsWindow(dialog) && bar.IsAborted() && !bar.IsAborted());
    // Begun anew in the same window.
    bar.Start(10, "Import", "Reading", "more.csv", FALSE, &owner, TRUE);
    EXPECT_EQ(FindBar(), dialog);
    bar.Feed(5, nullptr, nullptr, FALSE);
    EXPECT_EQ(Texts(dialog), "Import|50 %|Reading|more.csv|Cancel");
    bar.SetRange(0, 20);
    EXPECT_EQ(SendMessageA(GetDlgItem(dialog, IDC_ORVIK_PROGRESS), PBM_GETRANGE, FALSE, 0), 20);
    bar.SetMessage2("last.csv", FALSE);
    EXPECT_EQ(TextOf(GetDlgItem(dialog, IDC_ORVIK_MESSAGE2)), "last.csv");
    // Its owner goes, and everything stays quiet.
    owner.DestroyWindow();
    EXPECT_FALSE(IsWindow(dialog));
    bar.Feed(7, "x", "y", TRUE), bar.SetRange(0, 5), bar.DisableAbort(TRUE);
    EXPECT_FALSE(bar.IsAborted());
}

TEST_F(Progress, ASilentBarPumpsWithoutAWindow) {
    {
        CProgressBar bar;
        bar.Start(100, "Export", "Writing", nullptr, TRUE, &owner, TRUE);
        EXPECT_TRUE(bar);
        EXPECT_FALSE(bar.IsAborted());
        EXPECT_EQ(FindBar(), nullptr);
        EXPECT_TRUE(owner.IsWindowEnabled());
        const auto waits = [&] {
            MSG message;
            return PeekMessageA(&message, owner, WM_USER, WM_USER, PM_NOREMOVE) != FALSE;
        };
        PostMessageA(owner, WM_USER, 0, 0);
        bar.Feed(50, "x", "y", FALSE);
        EXPECT_TRUE(waits());
        bar.Feed(50, "x", "y", TRUE);
        EXPECT_FALSE(waits());
        PostQuitMessage(3);
        bar.SetMessage("x", TRUE);
        EXPECT_EQ(Quit(), 3) << "left for the program's own loop";
        bar.Start(100, nullptr, nullptr, nullptr, FALSE, &owner, TRUE);
        ASSERT_NE(FindBar(), nullptr);
        SendMessageA(FindBar(), WM_COMMAND, IDCANCEL, 0);
        EXPECT_TRUE(bar.IsAborted()) << "silent no longer";
    }
    {
        CProgressBar bar;
        bar.Start(100, "Export", "Writing", nullptr, FALSE, &owner, FALSE);
        const HWND dialog = FindBar();
        ASSERT_NE(dialog, nullptr);
        EXPECT_FALSE(IsWindowVisible(GetDlgItem(dialog, IDC_ORVIK_PERCENT)));
        bar.SetMessage2("late", FALSE);
        EXPECT_EQ(TextOf(GetDlgItem(dialog, IDC_ORVIK_MESSAGE2)), "");
    }
    EXPECT_EQ(FindBar(), nullptr) << "the bar takes its dialog along";
    EXPECT_TRUE(owner.IsWindowEnabled());
}
