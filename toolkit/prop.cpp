#include "toolkit/prop.h"

#include <charconv>
#include <cmath>
#include <string>

#include "platform/house_text.h"
#include "res/ids.h"
#include "toolkit/prop_list.h"

IMPLEMENT_DYNAMIC(CBCGPProp, CObject)
IMPLEMENT_DYNAMIC(CBCGPColorProp, CBCGPProp)

namespace {
CString Resource(UINT id) {
    CString text;
    text.LoadString(id);
    return text;
}

char DecimalSeparator() {
    char text[8] = "";
    GetLocaleInfoA(LOCALE_USER_DEFAULT, LOCALE_SDECIMAL, text, sizeof text);
    const bool longer = OrvikTextCodePage() == CP_UTF8 && static_cast<unsigned char>(text[0]) >= 0x80;  // than a char
    return text[0] != 0 && !longer ? text[0] : '.';
}

std::string Trimmed(const CString& text) {
    CString copy = text;
    copy.TrimLeft();
    copy.TrimRight();
    return copy.GetString();
}

// The whole text as a number, with a plain "." for decimals; "+" may stand in front.
template <class Number>
bool Read(const std::string& text, Number& number) {
    const char* first = text.data();
    const char* const last = first + text.size();
    if (first != last && *first == '+' && first + 1 != last && first[1] != '-') ++first;
    const auto [end, error] = std::from_chars(first, last, number);
    return error == std::errc() && end == last && first != last;
}
}  // namespace

CBCGPProp::CBCGPProp(const CString& strGroupName) : m_strName(strGroupName) {}

CBCGPProp::CBCGPProp(const CString& strName, const CBCGPPropValue& value, LPCSTR lpszDescr, DWORD_PTR dwData)
    : m_strName(strName), m_strDescr(lpszDescr != nullptr ? lpszDescr : ""), m_value(value), m_original(value), m_dwData(dwData) {
    if (!value.IsBool()) return;
    AddOption(Resource(IDS_YES));
    AddOption(Resource(IDS_NO));
    m_bAllowEdit = FALSE;
}

CBCGPProp::~CBCGPProp() {
    // Below first, and without recursion: nesting may be as deep as a file says.
    std::vector<std::unique_ptr<CBCGPProp>> waiting = std::move(m_subItems);
    while (!waiting.empty()) {
        const std::unique_ptr<CBCGPProp> next = std::move(waiting.back());
        waiting.pop_back();
        for (auto& below : next->m_subItems) waiting.push_back(std::move(below));
        next->m_subItems.clear();
    }
}

void CBCGPProp::Changed(bool structure) {
    if (m_pList == nullptr) return;
    structure ? m_pList->OnStructureChanged() : m_pList->RedrawProperty(this);
}

void CBCGPProp::SetName(const CString& strName) {
    m_strName = strName;
    Changed(false);
}

void CBCGPProp::SetValue(const CBCGPPropValue& value) {
    m_value = value;
    Changed(false);
}

void CBCGPProp::SetOriginalValue(const CBCGPPropValue& value) {
    m_original = value;
    Changed(false);
}

BOOL CBCGPProp::AddOption(LPCSTR lpszOption) {
    if (m_options.empty()) m_bAllowEdit = FALSE;
    m_options.emplace_back(lpszOption);
    return TRUE;
}

CString CBCGPProp::GetOption(int nIndex) const {
    return nIndex >= 0 && nIndex < GetOptionCount() ? m_options[static_cast<size_t>(nIndex)] : CString();
}

void CBCGPProp::Enable(BOOL bEnable) {
    m_bEnabled = bEnable;
    Changed(false);
}

void CBCGPProp::SetList(CBCGPPropList* pList) {
    std::vector<CBCGPProp*> waiting{this};
    while (!waiting.empty()) {
        CBCGPProp* next = waiting.back();
        waiting.pop_back();
        next->m_pList = pList;
        for (auto& below : next->m_subItems) waiting.push_back(below.get());
    }
}

BOOL CBCGPProp::AddSubItem(CBCGPProp* pProp) {
    if (pProp == nullptr || pProp->m_pParent != nullptr || pProp->m_pList != nullptr) return FALSE;
    for (const CBCGPProp* above = this; above != nullptr; above = above->m_pParent) {
        if (above == pProp) return FALSE;
    }
    pProp->m_pParent = this;
    pProp->SetList(m_pList);
    m_subItems.emplace_back(pProp);
    if (m_pList != nullptr) m_pList->OnAdded(pProp);
    return TRUE;
}

CBCGPProp* CBCGPProp::GetSubItem(int nIndex) const {
    return nIndex >= 0 && nIndex < GetSubItemsCount() ? m_subItems[static_cast<size_t>(nIndex)].get() : nullptr;
}

int CBCGPProp::CountWithSubItems() const {
    int count = 0;
    std::vector<const CBCGPProp*> waiting{this};
    while (!waiting.empty()) {
        const CBCGPProp* next = waiting.back();
        waiting.pop_back();
        ++count;
        for (const auto& below : next->m_subItems) waiting.push_back(below.get());
    }
    return count;
}

void CBCGPProp::Expand(BOOL bExpand) {
    if (m_bExpanded == bExpand || m_subItems.empty()) return;
    m_bExpanded = bExpand;
    Changed(true);
}

CString CBCGPProp::FormatProperty() const {
    if (m_value.IsText()) return m_value.Text();
    if (m_value.IsBool()) return GetOption(m_value.Boolean() ? 0 : 1);
    char text[64];
    char* end = text;
    if (m_value.IsInteger()) end = std::to_chars(text, text + sizeof text, m_value.Integer()).ptr;
    if (m_value.IsReal()) {
        // Digits that only the arithmetic behind a number has made are no part of it.
        const double number = m_value.Real();
        const auto narrow = static_cast<float>(number);
        end = static_cast<double>(narrow) == number
                  ? std::to_chars(text, text + sizeof text, narrow).ptr
                  : std::to_chars(text, text + sizeof text, number, std::chars_format::general, 15).ptr;
        for (char* at = text; at != end; ++at) {
            if (*at == '.') *at = DecimalSeparator();
        }
    }
    return CString(text, static_cast<int>(end - text));
}

BOOL CBCGPProp::StringToValue(const CString& text, CBCGPPropValue& value) const {
    const std::string trimmed = Trimmed(text);
    if (m_value.IsText()) {
        value = text;
        return TRUE;
    }
    if (m_value.IsBool()) {
        const bool yes = GetOption(0).Compare(trimmed.c_str()) == 0;
        if (!yes && GetOption(1).Compare(trimmed.c_str()) != 0) return FALSE;
        value = yes;
        return TRUE;
    }
    if (m_value.IsInteger()) {
        __int64 number = 0;
        if (!Read(trimmed, number)) return FALSE;
        value = number;
        return TRUE;
    }
    if (!m_value.IsReal()) return FALSE;
    std::string plain = trimmed;
    const char separator = DecimalSeparator();
    for (char& letter : plain) {
        if (letter == '.' && separator != '.') return FALSE;
        if (letter == separator) letter = '.';
    }
    double number = 0;
    if (!Read(plain, number) || !std::isfinite(number)) return FALSE;
    value = number;
    return TRUE;
}

CString CBCGPProp::GetErrorText() const { return Resource(m_value.IsInteger() ? IDS_NOT_WHOLE : IDS_BAD_NUMBER); }

void CBCGPProp::OnDrawValue(CDC* pDC, CRect rect) {
    pDC->DrawText(FormatProperty(), rect, DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS);
}

CString CBCGPColorProp::FormatProperty() const {
    CString text;
    text.Format("#%02X%02X%02X", GetRValue(GetColor()), GetGValue(GetColor()), GetBValue(GetColor()));
    return text;
}

BOOL CBCGPColorProp::StringToValue(const CString& text, CBCGPPropValue& value) const {
    const std::string trimmed = Trimmed(text);
    unsigned number = 0;
    if (trimmed.size() != 7 || trimmed[0] != '#') return FALSE;
    const auto [end, error] = std::from_chars(trimmed.data() + 1, trimmed.data() + 7, number, 16);
    if (error != std::errc() || end != trimmed.data() + 7) return FALSE;
    value = static_cast<__int64>(RGB(number >> 16, number >> 8 & 0xFF, number & 0xFF));
    return TRUE;
}

CString CBCGPColorProp::GetErrorText() const { return Resource(IDS_BAD_COLOR); }

void CBCGPColorProp::OnDrawValue(CDC* pDC, CRect rect) {
    CRect sample = rect;
    sample.DeflateRect(0, 3);
    sample.right = sample.left + sample.Height() * 3 / 2;
    const COLORREF ink = pDC->GetTextColor();
    pDC->FillSolidRect(sample, GetColor());
    pDC->Draw3dRect(sample, ink, ink);
    rect.left = sample.right + rect.Height() / 3;
    pDC->SetBkMode(TRANSPARENT);
    CBCGPProp::OnDrawValue(pDC, rect);
}
