// The channels beside the chart: their names, latest values (or those of the time under the
// pointer) and units, in columns that can be sized. A row has its channel's
// colour in the chart; it is grey while the chart hides the channel, and red while the latest reading is no number. A dash
// stands where there is no value.
// Space hides a channel from the chart or shows it, a double click (or Enter) opens its properties. User-interface thread.
#pragma once

#include <memory>
#include <optional>

#include "chart/value_list_ctrl.h"
#include "host/gui/chart_window.h"

class ValueList : public CValueListCtrl {
public:
    static constexpr size_t kColumns = 3;
    static constexpr LONG kLeastColumn = 24;  // pixels at 96 dots an inch, as all widths of a state are
    static constexpr COLORREF kHidden = RGB(113, 113, 113), kNoNumber = RGB(200, 0, 0);

    ValueList(ViewDocument& document, PaneOwner& owner) : m_document(document), m_owner(owner), m_header(*this) {}
    ~ValueList() override;

    BOOL CreatePane(HWND parent);
    // The document's channels, latest values and state; what has not changed is not drawn anew.
    void Update();
    // Shows the values of a time in place of the latest ones; those again for none.
    void ShowValuesAt(std::optional<PointedTime> pointed);
    // The window has come to a screen of other dots an inch.
    void DpiChanged();
    bool IsDragging() const { return m_dragging; }
    std::vector<std::string> RowTexts(size_t channel) const;  // without a word of what is hidden
    RECT ColumnRect(size_t column) const;                     // of the header, in the list's client area
    // The channel that keys are about; nothing without a session.
    std::optional<size_t> Channel() const;
    // Without selection, scrolled back.
    void Settle();
    // The widths of a state, those it does not tell being the standard ones.
    static std::vector<LONG> WidthsOf(const ViewState& state);
    // A channel hidden or shown; the last one that is shown stays.
    static ViewState Toggled(const ViewState& state, const Session& session, size_t channel);

protected:
    LRESULT OnKey(WPARAM, LPARAM);
    LRESULT OnSystemKey(WPARAM, LPARAM);
    LRESULT OnLetter(WPARAM, LPARAM) { return 0; }  // keys mean commands here, not the beginning of a name
    LRESULT OnSystemLetter(WPARAM, LPARAM);
    LRESULT OnPointer(WPARAM, LPARAM);
    LRESULT OnWheel(WPARAM, LPARAM);
    LRESULT OnWheelAcross(WPARAM, LPARAM);
    LRESULT TurnWheel(UINT message, WPARAM, LPARAM);
    LRESULT OnMenuWish(WPARAM, LPARAM);
    LRESULT OnDescribe(WPARAM, LPARAM);
    void OnTwice(NMHDR* told, LRESULT* result);
    DECLARE_MESSAGE_MAP()

private:
    // The header's dividers are dragged by the column tracker.
    class Header : public CWnd {
    public:
        explicit Header(ValueList& list) : m_list(list) {}

    protected:
        LRESULT OnPress(WPARAM, LPARAM);
        LRESULT OnPointer(WPARAM, LPARAM);
        LRESULT OnCursor(WPARAM, LPARAM);
        DECLARE_MESSAGE_MAP()

    private:
        ValueList& m_list;
    };

    bool IsHidden(size_t channel) const;
    const std::string& CellText(size_t channel, size_t column) const;
    const std::string& ShownText(size_t channel, size_t column) const;  // says of a hidden channel that it is
    double ValueOf(size_t channel) const;
    COLORREF ColourOf(size_t channel) const;
    size_t ChannelCount() const;
    // The column whose right edge is at a place of the header, kColumns for none.
    size_t EdgeAt(CPoint point) const;
    void DragEdge(size_t column, LONG y);
    void SetWidth(size_t column, LONG width);  // at 96 dots an inch
    LONG Scaled(LONG pixels) const;
    void Toggle(size_t channel);
    void ShowColumnHint();
    void ShowTip(LPARAM pointer);
    LONG WidthOf(const std::string& text) const;  // in the list's letters

    ViewDocument& m_document;
    PaneOwner& m_owner;
    Header m_header;
    CFont m_font;
    std::vector<std::unique_ptr<CValueState>> m_states;  // one a row
    mutable std::string m_text;
    std::optional<PointedTime> m_pointed;
    size_t m_column = 0;  // what the keys size
    bool m_dragging = false;
};
