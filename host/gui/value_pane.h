// The channels beside the chart: a mark in the channel's colour, its name, its latest value and its unit, in columns that can be
// sized. A click on the mark, or Space, hides a channel from the chart or shows it. User-interface thread.
#pragma once

#include "afx/wnd.h"
#include "host/gui/chart_window.h"

class ValuePane : public CWnd {
public:
    static constexpr size_t kColumns = 3;
    static constexpr LONG kLeastColumn = 24;

    ValuePane(ViewDocument& document, PaneOwner& owner) : m_document(document), m_owner(owner) {}

    BOOL CreatePane(HWND parent);
    void Redraw();
    bool IsDragging() const { return m_dragging; }
    RECT ColumnRect(size_t column) const;  // of the header
    // The widths of a state, those it does not tell being the standard ones.
    static std::vector<LONG> WidthsOf(const ViewState& state);
    // A channel hidden or shown; the last one that is shown stays.
    static ViewState Toggled(const ViewState& state, const Session& session, size_t channel);

protected:
    LRESULT OnPaintMessage(WPARAM, LPARAM);
    LRESULT OnErase(WPARAM, LPARAM) { return 1; }
    LRESULT OnSized(WPARAM, LPARAM);
    LRESULT OnPress(WPARAM, LPARAM);
    LRESULT OnPointer(WPARAM, LPARAM);
    LRESULT OnCursor(WPARAM, LPARAM);
    LRESULT OnKey(WPARAM, LPARAM);
    LRESULT OnFocusChange(WPARAM, LPARAM);
    DECLARE_MESSAGE_MAP()

private:
    void Draw(CDC& dc, const RECT& client) const;
    std::string CellText(size_t channel, size_t column) const;
    size_t ChannelCount() const;
    // The column whose right edge is at a place of the header, kColumns for none.
    size_t EdgeAt(CPoint point) const;
    void SetWidth(size_t column, LONG width);
    void Toggle(size_t channel);

    ViewDocument& m_document;
    PaneOwner& m_owner;
    size_t m_row = 0;  // what the keys are about
    size_t m_column = 0;
    bool m_dragging = false;
};
