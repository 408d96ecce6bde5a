// One drag of the mouse, from the press of the left button to its release: the modal loop that every gesture on a chart runs in.
// A tracker stands on the stack of a mouse-button handler: it is made, TrackCursor runs once, its result is read, it goes.
// User-interface thread. While it tracks, the loop dispatches what it does not use itself, so timers, posted events and the
// repaints of other windows go on; a handler that they reach may even destroy the window. The window's object is used at the
// start alone. A tracker's feedback is drawn by inverting pixels: the figure of one point drawn twice leaves nothing behind.
#pragma once

#include "afx/geometry.h"

class CDC;
class CWnd;

class ORVIK_API CTracker {
public:
    // Pixels that make a drag a selection; finished selections are held against it by their users.
    static const int iMinSelection;

    // The bits of the codes that OnTrack is called with, and the codes themselves.
    enum ETrackBit : UINT {
        TRACK_DRAW = 1,
        TRACK_ERASE = 2,
        TRACK_MOVE = 4,
        TRACK_REPEAT = 8,
        TRACK_CANCEL = 16,
        TRACK_REPAINT = 32
    };
    // Directions in which a movement counts.
    enum ETrackFlag : UINT { TRACK_HORIZONTAL = 1, TRACK_VERTICAL = 2 };

    CTracker() = default;
    CTracker(const CTracker&) = default;
    CTracker& operator=(const CTracker&) = default;
    virtual ~CTracker();

    virtual BOOL HitTest(CPoint point);

    // Tracks from `point` (client coordinates of the window) on. The result is
    //   0 when the user cancelled; also at once, with no hook called, when some window has the mouse already or there is no
    //   window; 1 when the button was released without a movement that counts; 2 when the pointer moved.
    // Escape and the right button cancel. A lost capture ends the drag as a release does. The quit message cancels and is posted
    // again. The end of the window cancels too, without a last OnTrack: there is nothing left to draw on. The mouse is free
    // afterwards, also when a hook throws.
    int TrackCursor(CWnd* pWnd, CPoint point);

    // Draws the figure anew at the current point, for hosts that repaint the window other than by WM_PAINT of the queue.
    void Update(CDC* pDC);

    // Clamps the point into the constrain rectangle: the lower bounds first, so an inverted one gives its right or bottom.
    virtual void OnConstrainTrack(CPoint& point);
    // Before anything is drawn. SetDelta called here holds for this drag.
    virtual void OnBeginTrack(CPoint point) = 0;
    // Draws or applies. The code is one of:
    //   1 first drawing, and Update      6 erase at the old point, then 5 draw at the new one: a movement
    //   2 released: last erase           18 cancelled: last erase
    //   8 repeated, in the rhythm of a held key       32 the window has painted itself: what it painted over is drawn again
    virtual void OnTrack(CDC* pDC, UINT code, CPoint point) = 0;
    // The capture is still held.
    virtual void OnEndTrack(CPoint point, BOOL moved, BOOL cancelled);
    // Shift or Ctrl went down or up.
    virtual void SetMode();

protected:
    void SetConstrainRect(const RECT& rect) { m_rectConstrain = rect; }
    // Where the feedback is drawn; the window's client area if empty when tracking starts.
    void SetClipRect(const RECT& rect) { m_rectClip = rect; }
    void SetHotRect(const RECT& rect) { m_rectHot = rect; }
    void SetTrackFlags(UINT flags) { m_nFlags = flags; }  // ETrackFlag; a change in a direction that is not set is ignored
    // Added to each position of the pointer, so that a grip is held where it was grabbed; 0, 0 when tracking starts.
    void SetDelta(int dx, int dy) { m_delta.cx = dx, m_delta.cy = dy; }
    void SetRepeat(int repeat) { m_bRepeat = repeat; }  // whether OnTrack is called with 8 while nothing happens

    BOOL m_bRepeat = FALSE;
    CPoint m_point;  // the last accepted position, in client coordinates
    RECT m_rectConstrain = {};
    RECT m_rectClip = {};
    RECT m_rectHot = {};
    UINT m_nFlags = 0;
    SIZE m_delta = {};

private:
    struct Session;
    void Show(Session& session, UINT code, CPoint point);
    void Run(Session& session);
    void Take(Session& session, const MSG& message);
    void MoveTo(Session& session, CPoint point);
    void Cancel(Session& session);
    void Repaint(Session& session, const MSG& message);
};
