// Free text comments on the plot of a chart. A tag's place is kept relative to the plot, so that it stays at the same spot when
// the chart is resized, its size in pixels. A manager owns the tags of one chart and draws them in their order, the last one on
// top. User-interface thread. Rectangles and points are pixels of the window that shows the chart.
#pragma once

#include "afx/string.h"
#include "chart/ordered_pointers.h"

class CDC;
class CFloatingTagManager;
class IPropertyDB;

class ORVIK_API CFloatingTag {
public:
    // Over the whole plot, without size, with a text for new tags.
    explicit CFloatingTag(CFloatingTagManager* manager);
    CFloatingTag(CFloatingTagManager* manager, const RECT& plot, const RECT& tag);

    // In an empty plot only the size is taken; the place stays as it was.
    void SetRect(const RECT& plot, const RECT& tag);
    void GetRect(const RECT& plot, RECT& tag) const;
    BOOL HitTest(const RECT& plot, POINT point) const;
    // In the DC's font and text colour: a light label with a thin frame, a stronger one while the tag has the focus. The text is
    // wrapped within the rectangle, with an ellipsis where it does not fit. A tag without size draws nothing.
    // Its margins and frame follow the dots an inch.
    void Render(const RECT& plot, CDC* pDC) const { Render(plot, pDC, 96); }
    void Render(const RECT& plot, CDC* pDC, UINT dpi) const;

    void SetFocus(BOOL focus) { m_focus = focus; }
    BOOL HasFocus() const { return m_focus; }
    const CString& GetText() const { return m_text; }
    void SetText(LPCSTR text) { m_text = text; }
    CFloatingTagManager* GetManager() const { return m_manager; }

    // "sText", "fLeft" and "fTop" of the current folder: place and text, not the size. What is not there stays as it is.
    void OnDBGet(IPropertyDB* db);
    void OnDBSet(IPropertyDB* db) const;

private:
    friend class CFloatingTagManager;

    CFloatingTagManager* m_manager;
    // Parts of the plot's width and height, from its left top.
    float m_left = 0.0f;
    float m_top = 0.0f;
    float m_right = 1.0f;
    float m_bottom = 1.0f;
    LONG m_height = 0;
    LONG m_width = 0;
    CString m_text;
    BOOL m_focus = FALSE;
};

class ORVIK_API CFloatingTagManager {
public:
    CFloatingTagManager();
    ~CFloatingTagManager();
    CFloatingTagManager(const CFloatingTagManager&) = delete;
    CFloatingTagManager& operator=(const CFloatingTagManager&) = delete;

    // The manager owns what it returns, until RemoveTag or a load.
    CFloatingTag* CreateTag(const RECT& plot, const RECT& tag);
    void RemoveTag(CFloatingTag* tag);  // another manager's tag, or null, is left alone
    void RemoveAllTags();
    INT_PTR GetTagCount() const { return m_tags.GetSize(); }
    CFloatingTag* GetTag(INT_PTR index) const { return static_cast<CFloatingTag*>(m_tags[index]); }

    void RenderTags(const RECT& plot, CDC* pDC) const;
    // The topmost tag at the point, or null.
    CFloatingTag* HitTestTags(const RECT& plot, POINT point) const;

    // The folders "Comment #0", "Comment #1", ... of the current folder, in the tags' order; storing replaces earlier ones.
    // Loading takes every child folder for a tag, the numbered ones first and by their numbers.
    void OnDBSet(IPropertyDB* db) const;
    void OnDBGet(IPropertyDB* db);
    // An older layout: the comments of all charts in one folder, each with its chart's name as "sContext", or "*" for all charts,
    // and with its text as rich text.
    void OnDBGet_Orvik5(IPropertyDB* db, LPCSTR context);

private:
    orvik::detail::OrderedPointers m_tags;
};
