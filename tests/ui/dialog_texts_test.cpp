// The texts of the module's dialogs have the room that they need, in both languages.
#include "res/ids.h"
#include "tests/support/dialog_fixture.h"
#include "ui/progress_dialog.h"
#include "ui/prop_list_dialog.h"

namespace {

class DialogTexts : public DialogTest {
protected:
    // Every text of a button or a line stands whole in its control, in the control's font.
    static void ExpectTextsFit(CWnd& dialog) {
        for (HWND each = GetWindow(dialog, GW_CHILD); each != nullptr; each = GetWindow(each, GW_HWNDNEXT)) {
            char kind[32] = "";
            GetClassNameA(each, kind, sizeof kind);
            if (!IsWindowVisible(each) || (lstrcmpiA(kind, "Button") != 0 && lstrcmpiA(kind, "Static") != 0)) continue;
            if (TextOf(each).empty()) continue;
            CWnd* const control = CWnd::FromHandle(each);
            CClientDC dc(control);
            const HGDIOBJ before = ::SelectObject(dc.m_hDC, control->GetFont()->m_hObject);
            const CSize needed = dc.GetTextExtent(TextOf(each).c_str());
            ::SelectObject(dc.m_hDC, before);
            CRect place;
            control->GetClientRect(place);
            EXPECT_LE(needed.cx, place.Width()) << TextOf(each);
            EXPECT_LE(needed.cy, place.Height()) << TextOf(each);
        }
    }
};

}  // namespace

TEST_F(DialogTexts, StandWholeInBothLanguages) {
    for (const WORD language : {WORD{LANG_ENGLISH}, WORD{LANG_SWEDISH}}) {
        const TextLanguage texts(language);
        CProgressDlgParams params;
        CProgressDialog progress(&owner);
        ASSERT_TRUE(progress.Create(params, &owner));
        ExpectTextsFit(progress);
        CPropListDialog properties(&owner);
        ASSERT_TRUE(properties.Create(IDD_ORVIK_PROPERTIES, &owner));
        properties.ShowWindow(SW_SHOW);
        ExpectTextsFit(properties);
    }
}
