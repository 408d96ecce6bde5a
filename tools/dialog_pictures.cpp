// Draws the module's dialogs as their users see them, in both languages: dialog_pictures FOLDER. To be looked at.
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "afx/app.h"
#include "afx/dc.h"
#include "chart/value_list_ctrl.h"
#include "frame/ref_count.h"
#include "platform/picture.h"
#include "res/ids.h"
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

bool Keep(CWnd& window, const std::string& path) {
    window.ShowWindow(SW_SHOW);
    for (MSG message; PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE);) DispatchMessageA(&message);
    window.RedrawWindow(nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW | RDW_ALLCHILDREN);
    CRect whole;
    window.GetWindowRect(whole);
    CWindowDC dc(&window);
    if (OrvikSavePixels(dc, CRect(0, 0, whole.Width(), whole.Height()), path.c_str())) return true;
    std::fprintf(stderr, "%s: error %lu\n", path.c_str(), static_cast<unsigned long>(GetLastError()));
    return false;
}

bool DrawAll(CWnd& owner, const Words& words, const std::string& folder) {
    const auto path = [&](const char* name) { return folder + "/" + name + "-" + words.code + ".png"; };
    bool good = true;
    CProgressDlgParams params;
    params.m_strCaption = words.caption, params.m_strMessage = words.message, params.m_strMessage2 = words.message2;
    for (const char* form : {"progress", "progress-one-line", "progress-plain"}) {
        if (form != std::string("progress")) params.m_strMessage2 = "";
        if (form == std::string("progress-plain")) params.m_bShowCancel = params.m_bShowPercentage = FALSE;
        CProgressDialog progress(&owner);
        good &= progress.Create(params, &owner) != FALSE;
        progress.SetPos(42);
        good &= Keep(progress, path(form));
    }

    AxisProperties properties(&owner, words);
    good &= properties.Create(IDD_ORVIK_PROPERTIES, &owner) != FALSE;
    properties.ShowWindow(SW_SHOW);
    properties.GetPropList().SetFocus();
    good &= Keep(properties, path("properties"));
    good &= properties.GetPropList().EditItem() != FALSE;
    good &= Keep(properties, path("properties-choices"));
    properties.GetPropList().EndEditItem(FALSE);
    properties.GetPropList().SetCurSel(properties.GetPropList().GetProperty(1)->GetSubItem(0));
    good &= properties.GetPropList().EditItem() != FALSE;
    good &= Keep(properties, path("properties-edit"));
    properties.GetPropList().EndEditItem(FALSE);
    properties.DestroyWindow();

    CValueListCtrl list;
    good &= list.Create(WS_CHILD | WS_VISIBLE | WS_BORDER | LVS_REPORT, CRect(0, 0, 300, 120), &owner, 5) != FALSE;
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
    good &= Keep(list, path("values"));
    list.DestroyWindow();
    return good;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: dialog_pictures FOLDER\n");
        return 1;
    }
    CWinApp app("Dialog pictures");
    CWnd owner;
    bool good =
        owner.CreateEx(0, AfxRegisterWndClass(0), "owner", WS_POPUP | WS_VISIBLE, 40, 30, 600, 500, nullptr, nullptr) != FALSE;
    for (const Words& words : kWords) {
        SetThreadUILanguage(MAKELANGID(words.language, SUBLANG_DEFAULT));
        SetThreadLocale(MAKELCID(MAKELANGID(words.language, SUBLANG_DEFAULT), SORT_DEFAULT));
        NlsToolsRegister();
        good = DrawAll(owner, words, argv[1]) && good;
    }
    owner.DestroyWindow();
    return good ? 0 : 1;
}
