// One property of the property grid: a name, a value, a description, perhaps choices, and properties below it. On the
// user-interface thread. A property owns those below it; the grid owns the topmost ones.
// A property is written and read in the user's format by FormatProperty and StringToValue; derived classes may have their own.
#pragma once

#include <memory>
#include <vector>

#include "afx/dc.h"
#include "toolkit/prop_value.h"

class CBCGPPropList;

class ORVIK_API CBCGPProp : public CObject {
    DECLARE_DYNAMIC(CBCGPProp)

public:
    // A group: a heading without a value.
    explicit CBCGPProp(const CString& strGroupName);
    CBCGPProp(const CString& strName, const CBCGPPropValue& value, LPCSTR lpszDescr = nullptr, DWORD_PTR dwData = 0);
    ~CBCGPProp() override;
    CBCGPProp(const CBCGPProp&) = delete;
    CBCGPProp& operator=(const CBCGPProp&) = delete;

    const CString& GetName() const { return m_strName; }
    void SetName(const CString& strName);
    const CString& GetDescription() const { return m_strDescr; }
    void SetDescription(const CString& strDescr) { m_strDescr = strDescr; }
    DWORD_PTR GetData() const { return m_dwData; }
    void SetData(DWORD_PTR dwData) { m_dwData = dwData; }
    BOOL IsGroup() const { return m_value.IsEmpty(); }

    const CBCGPPropValue& GetValue() const { return m_value; }
    // Without telling anybody: that is for what the user changes.
    void SetValue(const CBCGPPropValue& value);
    const CBCGPPropValue& GetOriginalValue() const { return m_original; }
    void SetOriginalValue(const CBCGPPropValue& value);
    void ResetOriginalValue() { SetValue(m_original); }
    BOOL IsModified() const { return !(m_value == m_original); }

    // Texts to choose from. Then nothing else can be typed, unless AllowEdit was called. A yes-or-no value has its two choices.
    BOOL AddOption(LPCSTR lpszOption);
    void RemoveAllOptions() { m_options.clear(); }
    int GetOptionCount() const { return static_cast<int>(m_options.size()); }
    CString GetOption(int nIndex) const;
    void AllowEdit(BOOL bAllow = TRUE) { m_bAllowEdit = bAllow; }
    BOOL IsEditAllowed() const { return m_bAllowEdit; }
    // A disabled property is grey and does not change.
    void Enable(BOOL bEnable = TRUE);
    BOOL IsEnabled() const { return m_bEnabled; }

    // Takes it over; 0, and nothing taken, for none, for one that belongs to somebody, and for one that this one stands below.
    BOOL AddSubItem(CBCGPProp* pProp);
    int GetSubItemsCount() const { return static_cast<int>(m_subItems.size()); }
    CBCGPProp* GetSubItem(int nIndex) const;
    CBCGPProp* GetParent() const { return m_pParent; }
    // Itself and everything below, whether shown or not.
    int CountWithSubItems() const;
    void Expand(BOOL bExpand = TRUE);
    BOOL IsExpanded() const { return m_bExpanded; }

    // The value as text.
    virtual CString FormatProperty() const;
    // A text as a value of the kind that the property has; FALSE, with `value` as it was, for a text that says none. Whole
    // numbers have digits and a sign; real ones the user's decimal separator, and an exponent.
    virtual BOOL StringToValue(const CString& text, CBCGPPropValue& value) const;
    // What the user is told of such a text.
    virtual CString GetErrorText() const;
    // The value in its cell; font, text colour and transparent background are set.
    virtual void OnDrawValue(CDC* pDC, CRect rect);

private:
    friend class CBCGPPropList;
    void Changed(bool structure);
    void SetList(CBCGPPropList* pList);

    CString m_strName, m_strDescr;
    CBCGPPropValue m_value, m_original;
    DWORD_PTR m_dwData = 0;
    std::vector<CString> m_options;
    std::vector<std::unique_ptr<CBCGPProp>> m_subItems;
    CBCGPProp* m_pParent = nullptr;
    CBCGPPropList* m_pList = nullptr;
    int m_nRow = -1;  // among the rows shown, -1 for none
    BOOL m_bAllowEdit = TRUE, m_bEnabled = TRUE, m_bExpanded = TRUE;
};

// A colour: a COLORREF as a whole number, written as "#RRGGBB" beside a sample of it.
class ORVIK_API CBCGPColorProp : public CBCGPProp {
    DECLARE_DYNAMIC(CBCGPColorProp)

public:
    CBCGPColorProp(const CString& strName, COLORREF color, LPCSTR lpszDescr = nullptr, DWORD_PTR dwData = 0)
        : CBCGPProp(strName, static_cast<__int64>(color), lpszDescr, dwData) {}

    COLORREF GetColor() const { return static_cast<COLORREF>(GetValue().Integer()); }
    CString FormatProperty() const override;
    BOOL StringToValue(const CString& text, CBCGPPropValue& value) const override;
    CString GetErrorText() const override;
    void OnDrawValue(CDC* pDC, CRect rect) override;
};
