// The chart as a window: pointer and keys become gestures, gestures become steps of the document's history. It draws the
// document's state and changes it only by steps. User-interface thread. The owner and the document outlive it.
#pragma once

#include "afx/dc.h"
#include "afx/wnd.h"
#include "host/gui/chart_scene.h"
#include "host/gui/empty_page.h"
#include "host/gui/line_edit.h"
#include "host/gui/menu_commands.h"
#include "host/gui/view_document.h"
#include "host/session/pointed_value.h"
#include "platform/accessible.h"

// What the panes of the window ask of the window around them.
class PaneOwner {
public:
    // The state to be, as one step of this name.
    virtual void Do(Text name, const ViewState& next) = 0;
    virtual void OnPaneCommand(UINT command) = 0;
    // A key that the pane has no use for.
    virtual void OnPaneKey(WORD key) = 0;
    // What a press at the pointer's place would do; an empty text for nothing.
    virtual void ShowHint(const std::string& text) = 0;
    // What the pointer finds at a place of a pane, where it is now (a mouse message's lParam); no text: nothing more.
    virtual void ShowTip(HWND pane, const RECT& place, const std::string& text, LPARAM pointer) = 0;
    // The values of a time, which the pointer shows; the latest ones again for none.
    virtual void ShowValuesAt(std::optional<PointedTime> pointed) = 0;
    // A menu for what has the focus, at a place of the screen.
    virtual void ShowContextMenu(POINT screen) = 0;
    // A drag has ended: what had to wait for it can be done.
    virtual void OnDragEnd() = 0;

protected:
    ~PaneOwner() = default;
};

class ChartWindow : public CWnd {
public:
    ChartWindow(ViewDocument& document, PaneOwner& owner) : m_document(document), m_owner(owner) {}
    ~ChartWindow() override;

    BOOL CreatePane(HWND parent);
    // The document has another session, more readings, or another state.
    void DataChanged();
    void StateChanged();
    // Around a change of the session's readings.
    void BeforeReadings();
    // Whoever looks at the end of the readings goes on looking at it.
    void AfterReadings();
    // The window has come to a screen of other dots an inch.
    void LooksChanged() { Redraw(); }  // colours, or dots an inch

    bool IsDragging() const { return m_dragging; }
    bool IsWriting() const { return m_writing; }
    // Commands that are about the chart; false for others.
    bool Command(UINT command);
    bool CanCommand(UINT command) const;
    Focus GetFocusMark() const { return m_focus; }
    void SetFocusMark(Focus focus);
    const ViewParts& Parts() const { return m_scene.Parts(); }
    // The value axis that commands are about: the one with the focus, else the first one, by its place in the state; nothing
    // without axes. And what an axis, or the time axis, shows now.
    std::optional<size_t> AxisPlace() const;
    ViewRange ShownRange(size_t place) const;
    ViewRange ShownTimes() const { return m_scene.RangeOf(kTimeAxis); }
    CTimeAxis& TimeAxis() { return m_scene.TimeAxis(); }
    void Prepare() { UpToDate(); }
    // The chart at another size, on another DC, at 96 dots an inch.
    void DrawOn(CDC& dc, const RECT& bounds);
    // What is being written in a tag is kept, or left.
    void EndWriting(bool keep);
    // What the pointer shows, for who does not see the list beside.
    void ShowValuesAt(std::optional<PointedTime> pointed) { m_pointed = pointed; }
    // The pointer rests there, on the screen, and what is shown may have become another time: by a drag, the wheel, new readings.
    void PointAgain(POINT screen);

protected:
    LRESULT OnPaintMessage(WPARAM, LPARAM);
    LRESULT OnErase(WPARAM, LPARAM) { return 1; }
    LRESULT OnSized(WPARAM, LPARAM);
    LRESULT OnPress(WPARAM, LPARAM);
    LRESULT OnDoublePress(WPARAM, LPARAM);
    LRESULT OnPointer(WPARAM, LPARAM);
    LRESULT OnLeave(WPARAM, LPARAM);
    LRESULT OnWheel(WPARAM, LPARAM);
    LRESULT OnWheelAcross(WPARAM, LPARAM);
    LRESULT OnMenuWish(WPARAM, LPARAM);
    LRESULT OnCursor(WPARAM, LPARAM);
    LRESULT OnKey(WPARAM, LPARAM);
    LRESULT OnSystemKey(WPARAM, LPARAM);
    LRESULT OnLetter(WPARAM, LPARAM);
    LRESULT OnSystemLetter(WPARAM, LPARAM);
    LRESULT OnRubber(WPARAM, LPARAM);
    LRESULT OnDescribe(WPARAM, LPARAM);
    LRESULT OnAct(WPARAM, LPARAM);
    DECLARE_MESSAGE_MAP()

private:
    // A notch of the wheel, or a key, narrows a range to 0.8 of its span, or widens it back.
    static constexpr double kNarrower = 0.2, kWider = -0.25;
    static constexpr double kPanned = 0.1;  // of the times, by a notch of the wheel across

    class Drag;
    struct Picture {  // the window's pixels, so that what comes to light again needs no drawing
        CDC dc;
        CBitmap bitmap;
        CBitmap* before = nullptr;
        SIZE size = {};
        void Resize(CDC& like, SIZE wanted);
        void Drop();
    };

    void DragPlot(CPoint point);
    void DragSelection(CPoint point, CZoomSelection::EHitCode handle);
    void DragTag(CPoint point, int tag);
    void DragAxisInterval(CPoint point, int axis);
    void DragAxisEnd(CPoint point, int axis);
    void DragAxisPlace(CPoint point, int axis);
    void Do(Text name, const ViewState& next) { m_owner.Do(name, next); }
    void ResetAxis(int axis);
    void ZoomFocus(double part);
    void MoveFocus(int dx, int dy, bool shift, bool control);
    void ZoomToSelection();
    void AddTag(CPoint corner);
    void EditTag(int tag);
    void BeginWriting(int tag, CPoint at, const std::string& text);
    void CopyWriting();
    void DrawWriting(CDC& dc) const;
    void Redraw();
    void UpToDate();
    std::optional<PointedTime> TimeUnder(POINT point) const;
    HCURSOR CursorAt(const Hit& hit) const;
    std::string HintAt(const Hit& hit) const;
    bool OnWritingKey(WORD key);
    bool OnEmptyKey(WORD key);
    std::string Summary();
    std::string PointedValues() const;

    ViewDocument& m_document;
    PaneOwner& m_owner;
    ChartScene m_scene;
    EmptyPage m_empty;  // in the scene's place without data
    Focus m_focus;
    Picture m_picture;
    bool m_drawn = false;  // picture and parts are those of the state and the size
    bool m_dragging = false;
    bool m_atEnd = false;       // the last reading was in view
    bool m_ignoreMenu = false;  // the right button has just cancelled a drag
    int m_wheel = 0;            // what is left of a notch
    int m_wheelAcross = 0;
    bool m_writing = false;
    int m_writtenTag = -1;  // -1: a new one
    CPoint m_writtenAt;
    LineEdit m_edit;
    OrvikTypedText m_typed;
    std::optional<PointedTime> m_pointed;
    std::string m_summary;  // in words; empty when it is to be made anew
};
