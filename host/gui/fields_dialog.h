// What the dialogs of fields share: each is filled with what is shown, refuses what cannot be, and takes only what its user has
// changed, so that no value is rounded for having been looked at. A refusal is told once, names the field by the words beside it,
// and the field has the focus again with its text selected.
// House text. User-interface thread; the parent outlives them.
#pragma once

#include <string>
#include <vector>

#include "time/time_point.h"
#include "time/time_span.h"
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

    // The module's exchanges (ui/dialog_data_exchange.h), which here say of a text that cannot be read whose it is, and show one
    // that can: what stood in the field at first.
    void ExchangeDate(CDataExchange* exchange, int field, CVXTTime& value) const;
    void ExchangeTime(CDataExchange* exchange, int field, CVXTTime& value) const;
    void ExchangeSpan(CDataExchange* exchange, int field, CVXTTimeSpan& value) const;
    void ExchangeReal(CDataExchange* exchange, int field, double& value, const char* picture) const;
    void ExchangePicture(CDataExchange* exchange, int field, CString& picture) const;
    void ExchangeCount(CDataExchange* exchange, int field, UINT& value) const;

    std::string m_title;  // the template's own when empty

private:
    CString FirstText(int field) const;
    std::string NameOf(int field) const;
    [[noreturn]] void RefuseText(CDataExchange* exchange, int field, UINT what, CString example) const;

    std::vector<int> m_fields;
    std::vector<CString> m_texts;
};
