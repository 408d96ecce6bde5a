#include "host/gui/fields_dialog.h"

#include "afx/message_box.h"

CString FieldsDialog::TextOf(int field) const {
    CString text;
    if (CWnd* const control = GetDlgItem(field)) control->GetWindowText(text);
    return text;
}

BOOL FieldsDialog::OnInitDialog() {
    const BOOL done = CBCGPDialog::OnInitDialog();
    if (!m_title.empty()) SetWindowText(m_title.c_str());
    for (size_t i = 0; i < m_fields.size(); ++i) m_texts[i] = TextOf(m_fields[i]);
    CenterWindow();
    return done;
}

bool FieldsDialog::IsChanged(int field) const {
    for (size_t i = 0; i < m_fields.size(); ++i) {
        if (m_fields[i] == field) return TextOf(field) != m_texts[i];
    }
    return false;
}

void FieldsDialog::Refuse(CDataExchange* exchange, int field, const std::string& house) const {
    exchange->PrepareEditCtrl(field);
    AfxMessageBox(house.c_str(), MB_OK | MB_ICONEXCLAMATION);
    exchange->Fail();
}
