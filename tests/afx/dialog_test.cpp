// Dialogs: templates, keys, data exchange, and how modal ones end. The same on both homes, with the system's own controls.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "afx/app.h"
#include "afx/common_controls.h"
#include "afx/controls.h"
#include "afx/dialog.h"
#include "afx/exception.h"
#include "afx/message_box.h"
#include "platform/house_text_internal.h"
#include "res/ids.h"
#include "tests/support/dialog_fixture.h"
#include "tests/support/raises.h"

namespace {

// A template in the extended form, built up control by control.
class Template {
public:
    explicit Template(DWORD style = WS_POPUP | WS_CAPTION | DS_SETFONT | DS_MODALFRAME) {
        Put(1, 2), Put(0xFFFF, 2), Put(0, 4), Put(0, 4), Put(style, 4), Put(0, 2);
        for (const int value : {0, 0, 160, 100}) Put(static_cast<DWORD>(value), 2);
        Put(0, 2), Put(0, 2), Text("Test");
        Put(8, 2), Put(400, 2), Put(0, 1), Put(1, 1), Text("DejaVu Sans");
    }
    Template& Add(const char* windowClass, DWORD id, DWORD style, const char* text, int y = 0) {
        while (m_bytes.size() % 4 != 0) Put(0, 1);
        Put(0, 4), Put(0, 4), Put(WS_CHILD | WS_VISIBLE | style, 4);
        for (const int value : {4, y, 60, 12}) Put(static_cast<DWORD>(value), 2);
        Put(id, 4), Text(windowClass), Text(text), Put(0, 2);
        ++m_bytes[16];
        return *this;
    }
    LPCDLGTEMPLATE Get() const { return reinterpret_cast<LPCDLGTEMPLATE>(m_bytes.data()); }

private:
    void Put(DWORD value, int size) {
        for (int i = 0; i < size; ++i) m_bytes.push_back(static_cast<unsigned char>(value >> (8 * i)));
    }
    void Text(const char* text) {
        do Put(static_cast<unsigned char>(*text), 2);
        while (*text++ != 0);
    }
    std::vector<unsigned char> m_bytes;
};

enum { kName = 100, kCount, kFlag, kRadio1, kRadio2, kLabel, kOff, kBar };

Template Fields() {
    Template out;
    out.Add("Edit", kName, WS_TABSTOP | ES_AUTOHSCROLL, "", 4)
        .Add("Edit", kCount, WS_TABSTOP | ES_AUTOHSCROLL, "", 18)
        .Add("Button", kFlag, WS_TABSTOP | BS_AUTOCHECKBOX, "&Flag", 32)
        .Add("Button", kRadio1, WS_TABSTOP | WS_GROUP | BS_AUTORADIOBUTTON, "One", 46)
        .Add("Button", kRadio2, BS_AUTORADIOBUTTON, "Two", 56)
        .Add("Button", kOff, WS_TABSTOP | WS_GROUP | WS_DISABLED, "Off", 66)
        .Add("Static", kLabel, WS_GROUP, "&Label", 70)
        .Add("Button", IDOK, WS_TABSTOP | BS_DEFPUSHBUTTON, "OK", 80)
        .Add("Button", IDCANCEL, WS_TABSTOP, "Cancel", 90);
    return out;
}

class FieldsDialog : public CDialog {
public:
    CString name;
    int count = 5, flag = 1, radio = 1;
    int exchanges = 0;
    CEdit edit;
    std::function<void(FieldsDialog&)> onInit;

    BOOL OnInitDialog() override {
        CDialog::OnInitDialog();
        if (onInit) onInit(*this);
        return TRUE;
    }
    void DoDataExchange(CDataExchange* pDX) override {
        ++exchanges;
        CDialog::DoDataExchange(pDX);
        DDX_Control(pDX, kName, edit);
        DDX_Text(pDX, kName, name), DDX_Text(pDX, kCount, count);
        DDX_Check(pDX, kFlag, flag);
        DDX_Radio(pDX, kRadio1, radio);
    }
    int Focus() const { return ::GetDlgCtrlID(::GetFocus()); }
    // Keys as the message loop would see them.
    void Key(UINT key) { EXPECT_TRUE(Translate(WM_KEYDOWN, key, 1)) << "not the dialog's"; }
    void Letter(char c) { Translate(WM_SYSCHAR, static_cast<unsigned char>(c), 0x20000001); }
    bool Translate(UINT message, WPARAM wParam, LPARAM lParam) {
        MSG read{::GetFocus(), message, wParam, lParam, 0, {}};
        return PreTranslateMessage(&read) != FALSE;
    }
};

}  // namespace

TEST(Dialogs, TabOrderMnemonicsAndDefaultButton) {
    const Template fields = Fields();
    FieldsDialog dialog;
    ASSERT_TRUE(dialog.CreateIndirect(fields.Get()));
    dialog.ShowWindow(SW_SHOW), dialog.GotoDlgCtrl(dialog.GetDlgItem(kName));
    EXPECT_EQ(dialog.Focus(), kName);
    std::vector<int> order;
    for (int i = 0; i < 6; ++i) dialog.Key(VK_TAB), order.push_back(dialog.Focus());
    // The chosen radio button stands for its group; disabled controls and texts are passed over; the end leads to the start.
    EXPECT_EQ(order, (std::vector<int>{kCount, kFlag, kRadio2, IDOK, IDCANCEL, kName}));
    {
        const HeldKey shift(VK_SHIFT);
        dialog.Key(VK_TAB);
    }
    EXPECT_EQ(dialog.Focus(), IDCANCEL);
    EXPECT_EQ(dialog.SendDlgItemMessage(IDCANCEL, WM_GETDLGCODE) & DLGC_DEFPUSHBUTTON, DLGC_DEFPUSHBUTTON);
    EXPECT_EQ(LOWORD(dialog.GetDefID()), IDOK);  // it looks like the default one, but is not
    dialog.NextDlgCtrl();
    EXPECT_EQ(dialog.SendDlgItemMessage(IDOK, WM_GETDLGCODE) & DLGC_DEFPUSHBUTTON, DLGC_DEFPUSHBUTTON);
    EXPECT_EQ(HIWORD(dialog.GetDefID()), DC_HASDEFID);

    dialog.GotoDlgCtrl(dialog.GetDlgItem(kRadio2)), dialog.Key(VK_UP);
    EXPECT_EQ(dialog.Focus(), kRadio1);
    EXPECT_EQ(dialog.IsDlgButtonChecked(kRadio1), 1u);
    EXPECT_EQ(dialog.IsDlgButtonChecked(kRadio2), 0u);
    dialog.Key(VK_UP);  // round the group
    EXPECT_EQ(dialog.Focus(), kRadio2);

    EXPECT_EQ(dialog.IsDlgButtonChecked(kFlag), 1u);
    dialog.Letter('f');
    EXPECT_EQ(dialog.IsDlgButtonChecked(kFlag), 0u);
    dialog.Letter('L');  // a text's letter leads to the control behind it
    EXPECT_EQ(dialog.Focus(), IDOK);

    // Units go by the font: equal ones are equal pixels, and they add up.
    RECT units = {4, 8, 40, 80};
    dialog.MapDialogRect(&units);
    EXPECT_EQ(units.right, 10 * units.left);
    EXPECT_EQ(units.bottom, 10 * units.top);
    EXPECT_GT(units.left, 2);
    dialog.DestroyWindow();
    EXPECT_EQ(dialog.m_hWnd, nullptr);
}

TEST(Dialogs, AnItemIsTakenOverFromTheTemplate) {
    struct Shouting : CEdit {
        LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override {
            if (message == WM_SETTEXT && lParam != 0) return CEdit::WindowProc(message, wParam, reinterpret_cast<LPARAM>("LOUD"));
            return CEdit::WindowProc(message, wParam, lParam);
        }
    };
    Shouting edit, none;
    const Template fields = Fields();
    FieldsDialog dialog;
    dialog.onInit = [&](FieldsDialog&) { EXPECT_TRUE(edit.SubclassDlgItem(kCount, &dialog)); };
    ASSERT_TRUE(dialog.CreateIndirect(fields.Get()));
    EXPECT_FALSE(none.SubclassDlgItem(9999, &dialog));
    EXPECT_EQ(none.m_hWnd, nullptr);
    dialog.SetDlgItemText(kCount, "quiet");
    CString text;
    dialog.GetDlgItemText(kCount, text);
    EXPECT_STREQ(text, "LOUD");
    dialog.DestroyWindow();
    EXPECT_EQ(edit.m_hWnd, nullptr);
}

TEST(Dialogs, ExchangeDataAndRefuseIt) {
    TellingApp app;
    const Template fields = Fields();
    FieldsDialog dialog;
    dialog.name = orvik::detail::HouseFrom1252("r\xE4knare").c_str();
    ASSERT_TRUE(dialog.CreateIndirect(fields.Get()));
    dialog.ShowWindow(SW_SHOW);
    CString text;
    dialog.GetDlgItemText(kName, text);
    EXPECT_EQ(text.GetView(), orvik::detail::HouseFrom1252("r\xE4knare"));
    EXPECT_EQ(dialog.GetDlgItemInt(kCount), 5u);
    EXPECT_EQ(dialog.edit.m_hWnd, ::GetDlgItem(dialog.m_hWnd, kName));
    struct Row {
        const char* text;
        bool good;
        int value;
    };
    for (const Row& c :
         {Row{"7", true, 7}, Row{" -12 ", true, -12}, Row{"", false, 0}, Row{"x", false, 0}, Row{"3x", false, 0},
          Row{"2147483648", false, 0}, Row{"-2147483648", true, -2147483647 - 1}, Row{"99999999999999999999999", false, 0}}) {
        dialog.count = 1;
        app.told.clear();
        dialog.GotoDlgCtrl(dialog.GetDlgItem(IDCANCEL)), dialog.SetDlgItemText(kCount, c.text);
        EXPECT_EQ(dialog.UpdateData(TRUE) != FALSE, c.good) << c.text;
        EXPECT_EQ(dialog.count, c.good ? c.value : 1) << c.text;
        EXPECT_EQ(app.told.size(), c.good ? 0u : 1u) << c.text;  // told once
        EXPECT_EQ(dialog.Focus(), c.good ? IDCANCEL : kCount) << c.text;
        if (c.good) continue;
        EXPECT_EQ(dialog.SendDlgItemMessage(kCount, EM_GETSEL), MAKELONG(0, std::string(c.text).size())) << c.text;
    }
    dialog.SetDlgItemText(kCount, "8"), dialog.CheckRadioButton(kRadio1, kRadio2, kRadio1);
    dialog.CheckDlgButton(kFlag, BST_UNCHECKED);
    EXPECT_TRUE(dialog.UpdateData());
    EXPECT_EQ(dialog.radio, 0);
    EXPECT_EQ(dialog.flag, 0);
    CDataExchange exchange(&dialog, TRUE);
    EXPECT_TRUE(Raises<CNotSupportedException>([&] { exchange.PrepareCtrl(9999); }));
}

TEST(Dialogs, ModalEnds) {
    TellingApp app;
    const Template fields = Fields();
    const auto run = [&](std::function<void(FieldsDialog&)> onInit, CWnd* parent = nullptr) {
        FieldsDialog dialog;
        dialog.onInit = std::move(onInit);
        EXPECT_TRUE(dialog.InitModalIndirect(fields.Get(), parent));
        const INT_PTR result = dialog.DoModal();
        EXPECT_EQ(dialog.m_hWnd, nullptr);
        return result;
    };
    const auto post = [](UINT message, WPARAM wParam) {
        return [=](FieldsDialog& dialog) { dialog.PostMessage(message, wParam); };
    };
    EXPECT_EQ(run(post(WM_COMMAND, IDOK)), IDOK);
    EXPECT_EQ(run(post(WM_COMMAND, IDCANCEL)), IDCANCEL);
    EXPECT_EQ(run(post(WM_CLOSE, 0)), IDCANCEL);
    EXPECT_EQ(run([](FieldsDialog& dialog) { dialog.EndDialog(77); }), 77);
    const auto refused = [](FieldsDialog& dialog) {
        dialog.SetDlgItemText(kCount, "bad");
        for (const int id : {IDOK, IDCANCEL}) dialog.PostMessage(WM_COMMAND, static_cast<WPARAM>(id));  // it stays at first
    };
    EXPECT_EQ(run(refused), IDCANCEL);
    EXPECT_EQ(app.told.size(), 1u);
    const auto escape = [](FieldsDialog& dialog) { ::PostMessageA(::GetDlgItem(dialog, kName), WM_KEYDOWN, VK_ESCAPE, 1); };
    EXPECT_EQ(run(escape), IDCANCEL);

    // The quit message ends the dialog and is there for the loop outside.
    EXPECT_EQ(run([](FieldsDialog&) { ::PostQuitMessage(3); }), -1);
    MSG message = {};
    ASSERT_TRUE(::PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE));
    EXPECT_EQ(message.message, static_cast<UINT>(WM_QUIT));
    EXPECT_EQ(message.wParam, 3u);

    // The owner is disabled meanwhile, and may be destroyed under the dialog.
    CWnd owner;
    ASSERT_TRUE(owner.CreateEx(0, nullptr, "owner", WS_POPUP, 0, 0, 300, 200, nullptr, nullptr));
    owner.ShowWindow(SW_SHOW);
    const auto look = [&](FieldsDialog& dialog) {
        EXPECT_FALSE(owner.IsWindowEnabled());
        dialog.PostMessage(WM_COMMAND, IDOK);
    };
    EXPECT_EQ(run(look, &owner), IDOK);
    EXPECT_TRUE(owner.IsWindowEnabled());
    struct Destroyer {
        static void CALLBACK Now(HWND window, UINT, UINT_PTR id, DWORD) {
            ::KillTimer(window, id);
            ::DestroyWindow(window);
        }
    };
    EXPECT_EQ(run([&](FieldsDialog&) { ::SetTimer(owner.m_hWnd, 1, 10, &Destroyer::Now); }, &owner), -1);
    EXPECT_EQ(owner.m_hWnd, nullptr);

    CDialog missing(59999u);
    EXPECT_EQ(missing.DoModal(), -1);
    EXPECT_FALSE(missing.Create(59999u));
}
