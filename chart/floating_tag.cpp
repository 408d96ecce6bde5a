#include "chart/floating_tag.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include "afx/geometry.h"
#include "propdb/property_db_interface.h"
#include "res/ids.h"

namespace {

// Coordinates stay within what drawing calls accept, whatever fractions a file holds.
constexpr __int64 kFarthest = 0x10000000;

LONG Clamped(__int64 pixels) { return static_cast<LONG>(std::clamp(pixels, -kFarthest, kFarthest)); }
__int64 Length(LONG from, LONG to) { return static_cast<__int64>(to) - from; }

// Rounded; the plot's own edge for a fraction that is not a number.
LONG Place(LONG from, LONG to, float fraction) {
    const double pixels = static_cast<double>(Length(from, to)) * static_cast<double>(fraction) + static_cast<double>(from) + 0.5;
    if (std::isnan(pixels)) return from;
    return static_cast<LONG>(std::clamp(pixels, -static_cast<double>(kFarthest), static_cast<double>(kFarthest)));
}

float Fraction(LONG from, LONG to, LONG at) {
    return static_cast<float>(Length(from, at)) / static_cast<float>(Length(from, to));
}

}  // namespace

CFloatingTag::CFloatingTag(CFloatingTagManager* manager) : m_manager(manager) { m_text.LoadString(IDS_NEW_TAG); }

CFloatingTag::CFloatingTag(CFloatingTagManager* manager, const RECT& plot, const RECT& tag) : CFloatingTag(manager) {
    SetRect(plot, tag);
}

void CFloatingTag::SetRect(const RECT& plot, const RECT& tag) {
    m_height = Clamped(Length(tag.top, tag.bottom));
    m_width = Clamped(Length(tag.left, tag.right));
    if (Length(plot.left, plot.right) <= 0 || Length(plot.top, plot.bottom) <= 0) return;
    m_left = Fraction(plot.left, plot.right, tag.left);
    m_right = Fraction(plot.left, plot.right, tag.right);
    m_top = Fraction(plot.top, plot.bottom, tag.top);
    m_bottom = Fraction(plot.top, plot.bottom, tag.bottom);
}

void CFloatingTag::GetRect(const RECT& plot, RECT& tag) const {
    tag.left = Place(plot.left, plot.right, m_left);
    tag.top = Place(plot.top, plot.bottom, m_top);
    tag.right = tag.left + m_width;
    tag.bottom = tag.top + m_height;
}

BOOL CFloatingTag::HitTest(const RECT& plot, POINT point) const {
    CRect tag;
    GetRect(plot, tag);
    return tag.PtInRect(point);
}

void CFloatingTag::OnDBGet(IPropertyDB* db) {
    db->GetValue("sText", m_text);
    db->GetValue("fLeft", m_left);
    db->GetValue("fTop", m_top);
}

void CFloatingTag::OnDBSet(IPropertyDB* db) const {
    db->SetValue("sText", static_cast<const char*>(m_text));
    db->SetValue("fLeft", m_left);
    db->SetValue("fTop", m_top);
}

CFloatingTagManager::CFloatingTagManager() = default;
CFloatingTagManager::~CFloatingTagManager() { RemoveAllTags(); }

CFloatingTag* CFloatingTagManager::CreateTag(const RECT& plot, const RECT& tag) {
    auto fresh = std::make_unique<CFloatingTag>(this, plot, tag);
    m_tags.Add(fresh.get());
    return fresh.release();
}

void CFloatingTagManager::RemoveTag(CFloatingTag* tag) {
    if (m_tags.Remove(tag)) delete tag;
}

void CFloatingTagManager::RemoveAllTags() {
    for (INT_PTR i = 0; i < m_tags.GetSize(); ++i) delete GetTag(i);
    m_tags.RemoveAll();
}

CFloatingTag* CFloatingTagManager::HitTestTags(const RECT& plot, POINT point) const {
    for (INT_PTR i = m_tags.GetSize(); i-- > 0;)
        if (GetTag(i)->HitTest(plot, point)) return GetTag(i);
    return nullptr;
}
