// Every dialog as its user sees it, in both languages: all texts fit, and a picture of each is written to the folder that
// ORVIK_DIALOG_PICTURES names, if it names one.
#include <cstdlib>
#include <memory>

#include "chart/value_list_ctrl.h"
#include "platform/picture.h"
#include "res/ids.h"
#include "tests/support/dialog_fixture.h"
#include "time/locale_cache.h"
#include "ui/progress_dialog.h"
#include "ui/prop_list_dialog.h"

namespace {

struct Words {
    WORD language;
    const char *code, *caption, *message, *message2, *axis, *description, *group, *name, *unit, *colour, *low, *grid, *channel,
        *value;
};
const Words kWords[] = {{LANG_ENGLISH, "en", "Download", "Reading measurements from the logger", "Block 3 of 7", "Axis",
                         "The unit that values are shown in; stored values stay as they are.", "Scale", "Name", "Unit", "Colour",
                         "Lowest value", "Show grid", "Channel", "Value"},
                        {LANG_SWEDISH, "sv", "H\xE4mtning", "L\xE4ser m\xE4tv\xE4rden fr\xE5n loggern", "Block 3 av 7", "Axel",
                         "Enheten som v\xE4rden visas i; lagrade v\xE4rden \xE4ndras inte.", "Skala", "Namn", "Enhet", "F\xE4rg",
                         "L\xE4gsta v\xE4rde", "Visa rutn\xE4t", "Kanal", "V\xE4rde"}};

class Value : public IVModelValue, public CRefCount {
public:
    explicit Value(COLORREF is) : colour(is) {}
    COLORREF GetColor() override { return colour; }
    DWORD AddRef() override { return CRefCount::AddRef(); }
    DWORD Release() override { return CRefCount::Release(); }
    COLORREF colour;
};

class AxisProperties : public CPropListDialog {
public:
    using CPropListDialog::Create;
    AxisProperties(CWnd* parent, const Words& words) : CPropListDialog(parent), m_words(words) { m_nTitleID = IDS_PROPERTY; }

protected:
    BOOL OnInitDialog() override {
        CPropListDialog::OnInitDialog();
        auto* axis = new CBCGPProp(m_words.axis);
        axis->AddSubItem(new CBCGPProp(m_words.name, "Temperatur ute"));
        auto* unit = new CBCGPProp(m_words.unit,
                                   "\xB0"
                                   "C",
                                   m_words.description);
        for (const char* each : {"\xB0"
                                 "C",
                                 "\xB0"
                                 "F",
                                 "K"})
            unit->AddOption(each);
        axis->AddSubItem(unit);
        axis->AddSubItem(new CBCGPColorProp(m_words.colour, RGB(192, 40, 40)));
        m_wndPropList.AddProperty(axis);
        auto* scale = new CBCGPProp(m_words.group);
        auto* low = new CBCGPProp(m_words.low, -20.0);
        low->SetValue(-12.5);
        scale->AddSubItem(low);
        scale->AddSubItem(new CBCGPProp(m_words.grid, true));
        m_wndPropList.AddProperty(scale);
        AdjustWindowSize();
        m_wndPropList.SetCurSel(unit);
        return TRUE;
    }

private:
    const Words& m_words;
};

class DialogPictures : public DialogTest {
protected:
    void Keep(CWnd& window, const std::string& name) {
        window.ShowWindow(SW_SHOW);
        PumpAll();
        window.RedrawWindow(nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW | RDW_ALLCHILDREN);
        const char* folder = std::getenv("ORVIK_DIALOG_PICTURES");
        if (folder == nullptr) return;
        CRect whole;
        window.GetWindowRect(whole);
        CWindowDC dc(&window);
        const std::string path = std::string(folder) + "/" + name + ".png";
        EXPECT_TRUE(OrvikSavePixels(dc, CRect(0, 0, whole.Width(), whole.Height()), path.c_str())) << path;
    }
    // Every text of a button or a line stands whole in its control, in the control's font.
    static void ExpectTextsFit(CWnd& dialog, const std::string& name) {
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
            EXPECT_LE(needed.cx, place.Width()) << name << ": " << TextOf(each);
            EXPECT_LE(needed.cy, place.Height()) << name << ": " << TextOf(each);
        }
    }
};

}  // namespace

TEST_F(DialogPictures, EveryDialogInBothLanguages) {
    RegionalSettings settings;
    settings.Swedish();
    for (const Words& words : kWords) {
        const TextLanguage language(words.language);
        NlsToolsRegister();
        const std::string end = std::string("-") + words.code;

        CProgressDlgParams params;
        params.m_strCaption = words.caption, params.m_strMessage = words.message, params.m_strMessage2 = words.message2;
        for (const char* form : {"progress", "progress-one-line", "progress-plain"}) {
            if (form != std::string("progress")) params.m_strMessage2 = "";
            if (form == std::string("progress-plain")) params.m_bShowCancel = params.m_bShowPercentage = FALSE;
            CProgressDialog progress(&owner);
            ASSERT_TRUE(progress.Create(params, &owner));
            progress.SetPos(42);
            Keep(progress, form + end);
            ExpectTextsFit(progress, form + end);
        }

        AxisProperties properties(&owner, words);
        ASSERT_TRUE(properties.Create(IDD_ORVIK_PROPERTIES, &owner));
        properties.ShowWindow(SW_SHOW);
        properties.GetPropList().SetFocus();
        Keep(properties, "properties" + end);
        ExpectTextsFit(properties, "properties" + end);
        EXPECT_TRUE(properties.GetPropList().EditItem());
        Keep(properties, "properties-choices" + end);
        properties.GetPropList().EndEditItem(FALSE);
        properties.GetPropList().SetCurSel(properties.GetPropList().GetProperty(1)->GetSubItem(0));
        EXPECT_TRUE(properties.GetPropList().EditItem());
        Keep(properties, "properties-edit" + end);
        properties.GetPropList().EndEditItem(FALSE);
        properties.DestroyWindow();

        CValueListCtrl list;
        ASSERT_TRUE(list.Create(WS_CHILD | WS_VISIBLE | WS_BORDER | LVS_REPORT, CRect(0, 0, 300, 120), &owner, 5));
        list.InsertColumn(0, words.channel, LVCFMT_LEFT, 160);
        list.InsertColumn(1, words.value, LVCFMT_RIGHT, 100);
        std::vector<std::unique_ptr<CValueState>> states;
        const COLORREF colours[] = {RGB(192, 40, 40), RGB(20, 110, 20), RGB(30, 30, 190)};
        for (int row = 0; row < 3; ++row) {
            states.push_back(std::make_unique<CValueState>(new Value(colours[row])));
            list.InsertItem(row, row == 0   ? "Temperatur ute"
                                 : row == 1 ? "Tryck"
                                            : "Fl\xF6"
                                              "de");
            list.SetItemText(row, 1,
                             row == 0   ? "-12,5 \xB0"
                                          "C"
                             : row == 1 ? "1,013 bar"
                                        : "4,2 l/min");
            list.SetItemData(row, reinterpret_cast<DWORD_PTR>(states.back().get()));
        }
        list.SelectItem(1);
        Keep(list, "values" + end);
        list.DestroyWindow();
    }
}
