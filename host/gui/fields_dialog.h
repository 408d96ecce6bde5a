// What the dialogs of fields share: each is filled with what is shown, refuses what cannot be, and takes only what its user has
// changed, so that no value is rounded for having been looked at. A refusal is told once, and the field has the focus again.
// House text. User-interface thread; the parent outlives them.
#pragma once

#include <string>
#include <vector>

#include "toolkit/bcgp_dialog.h"

class FieldsDialog : public CBCGPDialog {
protected:
    FieldsDialog(UINT id, CWnd* parent, std::vector<int> fields)
        : CBCGPDialog(id, parent), m_fields(std::move(fields)), m_texts(m_fields.size()) {}
    BOOL OnInitDialog() override;
    // Whether a field's text is another than at first.
    bool IsChanged(int field) const;
    CString TextOf(int field) const;
    // Tells why the exchange fails, and fails at the field.
    [[noreturn]] void Refuse(CDataExchange* exchange, int field, const std::string& house) const;

    std::string m_title;  // the template's own when empty

private:
    std::vector<int> m_fields;
    std::vector<CString> m_texts;
};
